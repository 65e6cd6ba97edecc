// What the engine is asked and what it answers. The engine is C++ (inspector/engine); both sides keep to these names.

// left, top, right, bottom; half-open, in pixels of the page
export type Rect = [number, number, number, number];

export interface Device {
  number: number;
  kind: 'plain24' | 'plain8' | 'scaled' | 'dual';
  bits: number;
  bandWidth: number;
  bandHeight: number;
  hasTags: boolean;
}

export interface Band {
  band: number;
  left: number;
  top: number;
  right: number;
  bottom: number;
  firstCall: number;
  lastCall: number;
}

export interface Page {
  page: number;
  device: number;
  width: number;
  height: number;
  left: number;
  top: number;
  firstCall: number;
  lastCall: number;
  bands: Band[];
}

export interface Summary {
  name?: string;
  calls: number;
  system: string;
  pointerBytes: number;
  notes: [string, string][];
  devices: Device[];
  pages: Page[];
  mistakes: { number: number; wrong: string; advice: string }[]; // all that there are
  totalNs: number;
  truncated: string; // a sentence when the file was not closed, else empty
}

// The columns of all calls as they come: base64 of little-endian arrays.
export interface RowsAnswer {
  function: string;
  device: string;
  page: string;
  band: string;
  ns: string;
  result: string;
  flags: string;
  detail: string;
  functions: string[];
}

export interface FindQuestion {
  q: 'find';
  text: string;
  function: number[] | null;
  device: number | null;
  page: number | null;
  rect: Rect | null;
  color: string | null;
  rop: number | null;
  findings: boolean;
}

export interface Field {
  name: string;
  text: string;
  color?: string;
}

export interface Argument extends Field {
  type: string;
  formula?: string;
  flags?: string[];
  fields?: Field[];
  picture?: number;
}

export interface Finding {
  mistake: number;
  argument: string;
  wrong: string;
  advice: string;
}

export interface Picture {
  id: number;
  what: 'brush' | 'source' | 'dib' | 'glyph';
  label: string;
  width: number;
  height: number;
}

export interface CallAnswer {
  call: number;
  function: string;
  device: number;
  page: number;
  band: number;
  ns: number;
  result: number | string;
  made?: boolean; // false: left out by the replay
  differs?: boolean; // the replay gave another result or another band than was recorded
  line: string;
  arguments: Argument[];
  findings: Finding[];
  changed: { rect: Rect | null; pixels: number; tags: number };
  pictures: Picture[];
}

export interface Painter {
  call: number;
  value: number[];
  tag: number | null;
  tagBefore?: number | null;
  before: number[];
  line: string;
}

export interface PixelAnswer {
  value: number[] | null;
  tag: number | null;
}

export interface HeatAnswer {
  max: number;
  values: string; // base64 of columns x rows floats: ns of a cell, or how often its pixels were written
}

export interface CostsAnswer {
  byFunction: { function: string | number; calls: number; ns: number; pixels: number }[];
  slowest: { call: number; ns: number }[];
}

export interface CompareAnswer {
  same: boolean;
  firstDifferent: number; // -1 when none is
  text: string;
  pages: { page: number; rects: Rect[]; pixels: number }[];
}

export type DrawQuestion =
  | {
      d: 'page';
      page: number;
      call: number;
      plane: 'color' | 'tags';
      left: number;
      top: number;
      width: number;
      height: number;
      columns: number;
      rows: number;
    }
  | { d: 'picture'; call: number; id: number }
  | { d: 'change'; call: number; which: 'before' | 'after' | 'outline' };

export type Question =
  | { q: 'summary' }
  | { q: 'rows' }
  | { q: 'lines'; first: number; count: number }
  | FindQuestion
  | { q: 'call'; call: number }
  | { q: 'painters'; page: number; x: number; y: number }
  | { q: 'pixel'; page: number; x: number; y: number; call: number }
  | { q: 'heat'; page: number; what: 'time' | 'overdraw'; columns: number; rows: number }
  | { q: 'costs'; page: number | null }
  | { q: 'compare'; with: number };

export interface Pixels {
  width: number;
  height: number;
  data: Uint8ClampedArray<ArrayBuffer>; // RGBA
}

// Flags of the rows.
export const kDraws = 1;
export const kHasFindings = 2;
export const kSkipped = 4;
export const kDiffers = 8;

// What a request fails with whose signal was aborted before it was sent.
export class Abandoned extends Error {
  constructor() {
    super('no longer wanted');
  }
}

// What the page asks. The real one runs in a worker (client.ts).
export interface Engine {
  // The number of the file. Fails with a sentence for people.
  open(bytes: ArrayBuffer): Promise<number>;
  close(file: number): Promise<void>;
  ask<Answer>(file: number, question: Question, signal?: AbortSignal): Promise<Answer>;
  draw(file: number, question: DrawQuestion, signal?: AbortSignal): Promise<Pixels>;
}
