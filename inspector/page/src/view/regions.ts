// The parts of the page that the engine draws: what is in sight, rounded outwards, so that small movements need nothing
// new. There is one part for all of the view, because the engine paints only what changed while it is asked for the same
// part after one call and another. An older part stays until the right one is there, so that steps do not flicker.
import { Abandoned, type Engine } from '../engine/contract';
import type { Camera } from '../model/state';
import type { PageBox, Size } from './camera';

const kGrain = 256; // pixels of the picture that edges are rounded to
const kMaxKept = 64 << 20; // bytes

// Page pixels, reduced by 2^level.
export interface Part {
  left: number;
  top: number;
  width: number;
  height: number;
  level: number;
}

export interface Region extends Part {
  canvas: OffscreenCanvas;
  data: Uint8ClampedArray; // RGBA
}

// Null when nothing of the page is in sight.
export function partInSight(camera: Camera, page: PageBox, view: Size, density: number): Part | null {
  const level = Math.max(0, Math.floor(Math.log2(1 / (camera.scale * density)) + 0.01));
  const grain = kGrain * 2 ** level;
  const begin = (at: number, start: number) => start + Math.max(0, Math.floor((at - start) / grain)) * grain;
  const end = (at: number, start: number, size: number) =>
    Math.min(start + size, start + Math.ceil((at - start) / grain) * grain);
  const left = begin(camera.x, page.left);
  const top = begin(camera.y, page.top);
  const right = end(camera.x + view.width / camera.scale, page.left, page.width);
  const bottom = end(camera.y + view.height / camera.scale, page.top, page.height);
  return right > left && bottom > top ? { left, top, width: right - left, height: bottom - top, level } : null;
}

// The regions of one plane of one file.
export class Regions {
  private readonly kept = new Map<string, Region>(); // the longest unused first
  private bytes = 0;
  private last: Region | undefined;
  private whole: Region | undefined; // the last one with all of the page
  private shownPage = -1;
  private pending: { key: string; controller: AbortController } | undefined;

  constructor(
    private readonly engine: Engine,
    private readonly plane: 'color' | 'tags',
    private readonly onArrival: () => void,
    private readonly onError: (message: string) => void,
  ) {}

  // The right region, or undefined; then it has been asked for.
  get(file: number, page: number, call: number, part: Part): Region | undefined {
    if (page !== this.shownPage) {
      this.shownPage = page;
      this.last = undefined;
      this.whole = undefined;
    }
    const key = [file, page, call, part.left, part.top, part.width, part.height, part.level].join('/');
    const region = this.kept.get(key);
    if (region) {
      this.kept.delete(key);
      this.kept.set(key, region);
      this.last = region;
      return region;
    }
    if (this.pending?.key !== key) this.request(key, file, page, call, part);
    return undefined;
  }

  // What to show until then, the lowest first: they are of other calls, or show another part.
  before(): Region[] {
    return [this.whole, this.last].filter((region) => region !== undefined);
  }

  private request(key: string, file: number, page: number, call: number, part: Part): void {
    this.pending?.controller.abort();
    const pending = { key, controller: new AbortController() };
    this.pending = pending;
    const { left, top, width, height, level } = part;
    const columns = Math.ceil(width / 2 ** level);
    const rows = Math.ceil(height / 2 ** level);
    const question = { d: 'page', page, call, plane: this.plane, left, top, width, height, columns, rows } as const;
    this.engine
      .draw(file, question, pending.controller.signal)
      .then((pixels) => {
        const canvas = new OffscreenCanvas(pixels.width, pixels.height);
        canvas.getContext('2d')?.putImageData(new ImageData(pixels.data, pixels.width, pixels.height), 0, 0);
        this.keep(key, page, { ...part, canvas, data: pixels.data });
      })
      .catch((error: unknown) => {
        if (!(error instanceof Abandoned)) this.onError(error instanceof Error ? error.message : String(error));
      })
      .finally(() => {
        if (this.pending === pending) this.pending = undefined;
        this.onArrival();
      });
  }

  private keep(key: string, page: number, region: Region): void {
    this.kept.set(key, region);
    this.bytes += region.data.length;
    if (page === this.shownPage) {
      this.last = region;
      if (!this.whole || region.width * region.height >= this.whole.width * this.whole.height) this.whole = region;
    }
    for (const [old, { data }] of this.kept) {
      if (this.bytes <= kMaxKept || this.kept.size === 1) return;
      this.kept.delete(old);
      this.bytes -= data.length;
    }
  }
}
