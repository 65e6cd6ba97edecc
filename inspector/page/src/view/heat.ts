// Heat maps: numbers as colors from dark violet to yellow, told apart in gray and by people who see few colors.
import type { Heat } from '../model/state';

const kStops: readonly [number, number, number][] = [
  [40, 11, 84],
  [101, 21, 110],
  [159, 42, 99],
  [212, 72, 66],
  [245, 125, 21],
  [250, 193, 39],
  [252, 255, 164],
];

export function heatColor(share: number): [number, number, number] {
  const place = Math.max(0, Math.min(1, share)) * (kStops.length - 1);
  const index = Math.min(kStops.length - 2, Math.floor(place));
  const from = kStops[index] as [number, number, number];
  const to = kStops[index + 1] as [number, number, number];
  const mix = (a: number, b: number) => Math.round(a + (b - a) * (place - index));
  return [mix(from[0], to[0]), mix(from[1], to[1]), mix(from[2], to[2])];
}

// A few slow calls would leave all others black: times go by their square root.
export function heatShare(what: Heat, value: number, max: number): number {
  if (max <= 0) return 0;
  return what === 'time' ? Math.sqrt(value / max) : value / max;
}

// The value at a share of the legend.
export function heatValue(what: Heat, share: number, max: number): number {
  return what === 'time' ? share * share * max : share * max;
}

export const heatGradient = `linear-gradient(to right, ${kStops.map((stop) => `rgb(${stop.join(' ')})`).join(', ')})`;

// Cells where nothing was painted stay transparent.
export function heatPixels(what: Heat, values: Float32Array, max: number): Uint8ClampedArray<ArrayBuffer> {
  const pixels = new Uint8ClampedArray(values.length * 4);
  values.forEach((value, index) => {
    if (value <= 0) return;
    pixels.set(heatColor(heatShare(what, value, max)), index * 4);
    pixels[index * 4 + 3] = 255;
  });
  return pixels;
}
