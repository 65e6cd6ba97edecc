// The heat map of a page, asked for once and kept until another page or file is shown.
import { Abandoned, type HeatAnswer, type Page } from '../engine/contract';
import { engine, fail } from '../model/actions';
import { decodeFloats } from '../model/columns';
import { sentence } from '../model/format';
import type { Heat, OpenFile } from '../model/state';
import { Store } from '../model/store';
import { heatPixels } from './heat';

const kMaxCells = 192; // of the longer side

export interface HeatMap {
  what: Heat;
  max: number;
  canvas: OffscreenCanvas;
}

interface Kept {
  map: HeatMap | null; // null: on its way
}

const kept = new Map<string, Kept>();
// Tells legend and view when a map has arrived.
export const heatArrivals = new Store({ count: 0 });

export function heatMap(file: OpenFile, page: Page, what: Heat): HeatMap | null {
  if (what === 'none') return null;
  const key = `${file.number}/${page.page}/${what}`;
  const known = kept.get(key);
  if (known) return known.map;
  if (kept.size > 16) kept.clear();
  const entry: Kept = { map: null };
  kept.set(key, entry);
  const cell = Math.max(1, Math.ceil(Math.max(page.width, page.height) / kMaxCells));
  const columns = Math.max(1, Math.ceil(page.width / cell));
  const rows = Math.max(1, Math.ceil(page.height / cell));
  engine
    .ask<HeatAnswer>(file.number, { q: 'heat', page: page.page, what, columns, rows })
    .then((answer) => {
      // Time is shown a pixel, so that it does not depend on the size of the cells.
      const values = decodeFloats(answer.values).map((value) => (what === 'time' ? value / (cell * cell) : value));
      const max = values.reduce((most, value) => Math.max(most, value), 0);
      const canvas = new OffscreenCanvas(columns, rows);
      const pixels = heatPixels(what, values, max);
      canvas.getContext('2d')?.putImageData(new ImageData(pixels, columns, rows), 0, 0);
      entry.map = { what, max, canvas };
    })
    .catch((error: unknown) => {
      if (!(error instanceof Abandoned)) fail(sentence(error instanceof Error ? error.message : String(error)));
    })
    .finally(() => heatArrivals.set({ count: heatArrivals.state.count + 1 }));
  return null;
}
