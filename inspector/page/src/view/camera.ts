// Pan and zoom: where a page pixel is on the screen, in CSS pixels, and what a change of scale does.
import type { Rect } from '../engine/contract';
import type { Camera } from '../model/state';

export interface Size {
  width: number;
  height: number;
}

export interface PageBox extends Size {
  left: number;
  top: number;
}

export const kMaxScale = 64;
export const kMinScale = 1 / 64;
export const kGridScale = 8; // from here on every pixel has its frame
export const kBytesScale = 48; // and from here on its bytes

// Above real size a page pixel takes a whole number of screen pixels, so that all look alike.
const kSteps = [
  1 / 64,
  1 / 48,
  1 / 32,
  1 / 24,
  1 / 16,
  1 / 12,
  1 / 8,
  1 / 6,
  1 / 4,
  1 / 3,
  1 / 2,
  2 / 3,
  1,
  2,
  3,
  4,
  6,
  8,
  12,
  16,
  24,
  32,
  48,
  64,
];

export function fit(page: PageBox, view: Size, margin = 16): Camera {
  const room = Math.min((view.width - 2 * margin) / page.width, (view.height - 2 * margin) / page.height);
  const scale = Math.max(kMinScale, Math.min(8, room >= 1 ? Math.floor(room) : room));
  return centered(scale, page.left + page.width / 2, page.top + page.height / 2, view);
}

export function centered(scale: number, x: number, y: number, view: Size): Camera {
  return { scale, x: x - view.width / 2 / scale, y: y - view.height / 2 / scale };
}

export function nextScale(scale: number, direction: 1 | -1): number {
  if (direction > 0) return kSteps.find((step) => step > scale * 1.01) ?? kMaxScale;
  return [...kSteps].reverse().find((step) => step < scale * 0.99) ?? kMinScale;
}

// The point under (screenX, screenY) stays where it is.
export function zoomAt(camera: Camera, scale: number, screenX: number, screenY: number): Camera {
  const x = camera.x + screenX / camera.scale;
  const y = camera.y + screenY / camera.scale;
  return { scale, x: x - screenX / scale, y: y - screenY / scale };
}

// Some of the page always stays in sight.
export function keepInSight(camera: Camera, page: PageBox, view: Size): Camera {
  const keep = Math.min(48, view.width / 4, view.height / 4) / camera.scale;
  const limit = (value: number, low: number, high: number) => Math.max(Math.min(low, high), Math.min(high, value));
  return {
    scale: camera.scale,
    x: limit(camera.x, page.left + keep - view.width / camera.scale, page.left + page.width - keep),
    y: limit(camera.y, page.top + keep - view.height / camera.scale, page.top + page.height - keep),
  };
}

// Shows the rectangle in the middle, as large as fits, but no larger than 16 times.
export function show(rect: Rect, view: Size): Camera {
  const width = Math.max(1, rect[2] - rect[0]);
  const height = Math.max(1, rect[3] - rect[1]);
  const room = Math.min((view.width * 0.6) / width, (view.height * 0.6) / height);
  const scale = [...kSteps].reverse().find((step) => step <= Math.min(16, room)) ?? kMinScale;
  return centered(scale, (rect[0] + rect[2]) / 2, (rect[1] + rect[3]) / 2, view);
}

// Distance of the marks on a ruler, in page pixels: 1, 2 or 5 times a power of ten, at least minimum screen pixels.
export function rulerStep(scale: number, minimum = 56): number {
  const least = minimum / scale;
  const power = 10 ** Math.floor(Math.log10(Math.max(1, least)));
  return [1, 2, 5, 10].map((factor) => factor * power).find((step) => step >= least) ?? power * 10;
}
