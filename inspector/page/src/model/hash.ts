// What is looked at, in the part of the address behind "#", so that it can be kept as a bookmark or sent to somebody.

export interface Place {
  file: number;
  page: number | null;
  call: number | null;
  pixel: { x: number; y: number } | null;
  camera: { scale: number; x: number; y: number } | null; // null: the whole page
}

const kWhole = /^-?\d{1,9}$/;
const kNumber = /^-?\d{1,9}(\.\d{1,6})?$/;

export function parsePlace(hash: string): Place {
  const values = new URLSearchParams(hash.replace(/^#/, ''));
  const whole = (name: string) => {
    const text = values.get(name);
    return text !== null && kWhole.test(text) ? Number(text) : null;
  };
  const list = (name: string, count: number) => {
    const parts = values.get(name)?.split(',') ?? [];
    return parts.length === count && parts.every((part) => kNumber.test(part)) ? parts.map(Number) : null;
  };
  const pixel = list('pixel', 2);
  const camera = list('view', 3);
  return {
    file: whole('file') ?? 0,
    page: whole('page'),
    call: whole('call'),
    pixel: pixel ? { x: Math.floor(pixel[0] as number), y: Math.floor(pixel[1] as number) } : null,
    camera:
      camera && (camera[0] as number) > 0
        ? { scale: camera[0] as number, x: camera[1] as number, y: camera[2] as number }
        : null,
  };
}

export function formatPlace(place: Place): string {
  const round = (value: number, digits: number) => String(Number(value.toFixed(digits)));
  const parts: string[] = [];
  if (place.file !== 0) parts.push(`file=${place.file}`);
  if (place.page !== null) parts.push(`page=${place.page}`);
  if (place.call !== null) parts.push(`call=${place.call}`);
  if (place.camera) {
    parts.push(`view=${round(place.camera.scale, 4)},${round(place.camera.x, 1)},${round(place.camera.y, 1)}`);
  }
  if (place.pixel) parts.push(`pixel=${place.pixel.x},${place.pixel.y}`);
  return parts.length > 0 ? `#${parts.join('&')}` : '';
}
