// The picture of a page in tiles, made when they come into view and kept for a while. A tile of another call stays until
// the right one is there, so that steps do not flicker.
import { Abandoned } from '../engine/client';
import type { Engine } from '../engine/contract';
import type { PageBox } from './camera';

export const kTileSize = 512;
const kMaxKept = 128;

export interface TilePlace {
  file: number;
  page: number;
  plane: 'color' | 'tags';
  level: number; // the page is reduced by 2^level
  column: number;
  row: number;
}

export interface Tile {
  call: number;
  canvas: OffscreenCanvas;
  data: Uint8ClampedArray; // RGBA
  // what it shows, in page pixels
  left: number;
  top: number;
  width: number;
  height: number;
}

const slotOf = (place: TilePlace) =>
  `${place.file}/${place.page}/${place.plane}/${place.level}/${place.column}/${place.row}`;

export class Tiles {
  private readonly kept = new Map<string, Tile>(); // by slot and call; the longest unused first
  private readonly latest = new Map<string, Tile>(); // by slot
  private pending = new Map<string, AbortController>();

  constructor(
    private readonly engine: Engine,
    private readonly onArrival: () => void,
    private readonly onError: (message: string) => void,
  ) {}

  // The tile as it is after `call`; if it is not there yet it is asked for.
  get(place: TilePlace, call: number, page: PageBox): Tile | undefined {
    const key = `${slotOf(place)}@${call}`;
    const tile = this.kept.get(key);
    if (tile) {
      this.kept.delete(key);
      this.kept.set(key, tile);
      this.latest.set(slotOf(place), tile);
      return tile;
    }
    if (!this.pending.has(key)) this.request(place, call, page, key);
    return undefined;
  }

  // The same part of the page after another call.
  stale(place: TilePlace): Tile | undefined {
    return this.latest.get(slotOf(place));
  }

  isWaiting(): boolean {
    return this.pending.size > 0;
  }

  // Forgets requests of other calls that have not been sent.
  keepOnly(file: number, call: number): void {
    for (const [key, controller] of this.pending) {
      if (key.startsWith(`${file}/`) && !key.endsWith(`@${call}`)) {
        controller.abort();
        this.pending.delete(key);
      }
    }
  }

  private request(place: TilePlace, call: number, page: PageBox, key: string): void {
    const span = kTileSize * 2 ** place.level;
    const left = page.left + place.column * span;
    const top = page.top + place.row * span;
    const width = Math.min(span, page.left + page.width - left);
    const height = Math.min(span, page.top + page.height - top);
    if (width <= 0 || height <= 0) return;
    const controller = new AbortController();
    this.pending.set(key, controller);
    const columns = Math.max(1, Math.ceil(width / 2 ** place.level));
    const rows = Math.max(1, Math.ceil(height / 2 ** place.level));
    this.engine
      .draw(
        place.file,
        { d: 'page', page: place.page, call, plane: place.plane, left, top, width, height, columns, rows },
        controller.signal,
      )
      .then((pixels) => {
        const canvas = new OffscreenCanvas(pixels.width, pixels.height);
        canvas.getContext('2d')?.putImageData(new ImageData(pixels.data, pixels.width, pixels.height), 0, 0);
        const tile: Tile = { call, canvas, data: pixels.data, left, top, width, height };
        this.kept.set(key, tile);
        this.latest.set(slotOf(place), tile);
        this.forgetOld();
      })
      .catch((error: unknown) => {
        if (!(error instanceof Abandoned)) this.onError(error instanceof Error ? error.message : String(error));
      })
      .finally(() => {
        // Another request of the same tile may have taken its place.
        if (this.pending.get(key) === controller) this.pending.delete(key);
        this.onArrival();
      });
  }

  private forgetOld(): void {
    for (const [key, tile] of this.kept) {
      if (this.kept.size <= kMaxKept) return;
      this.kept.delete(key);
      const slot = key.slice(0, key.indexOf('@'));
      if (this.latest.get(slot) === tile) this.latest.delete(slot);
    }
  }
}
