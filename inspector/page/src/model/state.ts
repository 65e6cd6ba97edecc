// The state of the page in one object.
import type { CallAnswer, CompareAnswer, Device, Page, Painter, Summary } from '../engine/contract';
import { type Filter, kNoFilter } from './filter';
import type { Columns } from './columns';
import type { LineCache } from './lines';
import type { Unit } from './steps';
import { Store, useStore } from './store';

export interface OpenFile {
  number: number; // for the engine
  name: string;
  summary: Summary;
  columns: Columns;
  lines: LineCache;
}

// Screen pixels a page pixel, and the page coordinates of the view's left top corner.
export interface Camera {
  scale: number;
  x: number;
  y: number;
}

export type Panel = 'call' | 'pixel' | 'costs' | 'compare' | 'file';
export type Heat = 'none' | 'time' | 'overdraw';
export type Theme = 'system' | 'light' | 'dark';

export interface PixelHistory {
  file: number;
  page: number;
  x: number;
  y: number;
  painters: Painter[] | null; // null: not there yet
  error: string | null;
}

export interface State {
  phase: 'empty' | 'loading' | 'ready';
  loading: string;
  error: string | null;
  hasEngine: boolean;

  files: OpenFile[];
  active: number; // the file whose calls are listed
  page: number; // index in its summary; -1 when nothing was painted
  call: number;

  answer: CallAnswer | null; // about the current call; an earlier one until it is there
  answerError: string | null;

  filter: Filter;
  matches: Uint32Array | null; // null: all calls
  matchError: string | null;
  isDrawingRect: boolean;

  camera: Camera | null; // null: the whole page
  tags: boolean;
  tagOpacity: number;
  heat: Heat;
  outline: boolean;
  grid: boolean;

  panel: Panel;
  pixel: PixelHistory | null;
  compare: CompareAnswer | null;
  compareError: string | null;
  difference: number; // index of the rectangle that was visited last; -1 none

  isPlaying: boolean;
  playUnit: Unit;
  speed: number; // steps a second

  theme: Theme; // as chosen
  colors: 'light' | 'dark'; // as shown
  isHelpOpen: boolean;
  arrivals: number; // counts lines that arrived: the list draws itself again
}

export const kInitialState: State = {
  phase: 'empty',
  loading: '',
  error: null,
  hasEngine: false,
  files: [],
  active: 0,
  page: -1,
  call: 0,
  answer: null,
  answerError: null,
  filter: kNoFilter,
  matches: null,
  matchError: null,
  isDrawingRect: false,
  camera: null,
  tags: false,
  tagOpacity: 0.6,
  heat: 'none',
  outline: true,
  grid: true,
  panel: 'call',
  pixel: null,
  compare: null,
  compareError: null,
  difference: -1,
  isPlaying: false,
  playUnit: 'drawing',
  speed: 20,
  theme: 'system',
  colors: 'light',
  isHelpOpen: false,
  arrivals: 0,
};

export const store = new Store<State>(kInitialState);

// The selected part of the state; the component is drawn again when it is another value.
export const useApp = <Part>(select: (state: State) => Part): Part => useStore(store, select);

export const activeFile = (state: State): OpenFile | undefined => state.files[state.active];

export const shownPage = (state: State): Page | undefined => activeFile(state)?.summary.pages[state.page];

export function deviceOfPage(state: State): Device | undefined {
  const page = shownPage(state);
  return activeFile(state)?.summary.devices.find(({ number }) => number === page?.device);
}
