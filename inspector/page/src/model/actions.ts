// Everything a person can do, in functions that change the state. Keys and buttons call the same ones.
import { WorkerEngine } from '../engine/client';
import {
  Abandoned,
  type CompareAnswer,
  type Painter,
  type Rect,
  type RowsAnswer,
  type Summary,
} from '../engine/contract';
import { packedEngine, takePackedFiles } from '../engine/embedded';
import { decodeCalls, decodeColumns } from './columns';
import { type Filter, isEmpty, kNoFilter, questionOf } from './filter';
import { sentence } from './format';
import { LineCache } from './lines';
import { type OpenFile, type Panel, activeFile, deviceOfPage, store } from './state';
import { type Unit, indexOfCall, nextStop } from './steps';

export const engine = new WorkerEngine();

const messageOf = (error: unknown) => sentence(error instanceof Error ? error.message : String(error));

// ---- Files

// A line that arrived changes nothing but the list; many arrive at once.
let arrivalIsPlanned = false;
function noteArrival(): void {
  if (arrivalIsPlanned) return;
  arrivalIsPlanned = true;
  requestAnimationFrame(() => {
    arrivalIsPlanned = false;
    store.set({ arrivals: store.state.arrivals + 1 });
  });
}

async function addFile(name: string, number: number): Promise<void> {
  const [summary, rows] = await Promise.all([
    engine.ask<Summary>(number, { q: 'summary' }),
    engine.ask<RowsAnswer>(number, { q: 'rows' }),
  ]);
  const file: OpenFile = {
    number,
    name,
    summary,
    columns: decodeColumns(rows),
    lines: new LineCache(engine, number, summary.calls, noteArrival),
  };
  // A third file takes the place of the second.
  const replaced = store.state.files[1];
  if (replaced) void engine.close(replaced.number);
  const files = [...store.state.files.slice(0, 1), file];
  store.set({ files, compare: null, compareError: null, difference: -1 });
  document.title = `${files.map((one) => one.name).join(', ')} – Call inspector`;
  if (files.length === 1) showPage(summary.pages.length > 0 ? 0 : -1);
  store.set({ phase: 'ready', ...(files.length === 2 ? { panel: 'compare' as const } : {}) });
  if (files.length === 2) void compareFiles();
}

export async function openEmbedded(): Promise<void> {
  const code = packedEngine();
  if (!code) {
    store.set({ error: 'This page has no engine. Write one that has with: qnvtool inspect FILE.qnv -o page.html' });
    return;
  }
  const files = takePackedFiles();
  if (files.length > 0) store.set({ phase: 'loading', loading: `Opening ${files[0]?.name}` });
  try {
    await engine.start(code);
    store.set({ hasEngine: true });
  } catch (error) {
    store.set({ phase: 'empty', error: messageOf(error) });
    return;
  }
  for (const file of files) {
    store.set({ loading: `Opening ${file.name}` });
    try {
      await addFile(file.name, await engine.openPacked(file.base64));
    } catch (error) {
      fail(`${file.name}: ${messageOf(error)}`);
    }
  }
}

export async function openChosen(chosen: Iterable<File>, replace = false): Promise<void> {
  if (!store.state.hasEngine) return;
  store.set({ error: null });
  for (const file of [...chosen].slice(0, 2)) {
    if (store.state.files.length === 0) store.set({ phase: 'loading', loading: `Opening ${file.name}` });
    try {
      const number = await engine.open(await file.arrayBuffer());
      if (replace) closeFiles();
      replace = false;
      await addFile(file.name, number);
    } catch (error) {
      fail(`${file.name}: ${messageOf(error)}`);
    }
  }
}

export function closeFiles(): void {
  for (const file of store.state.files) void engine.close(file.number);
  store.set({
    phase: 'empty',
    files: [],
    active: 0,
    page: -1,
    call: 0,
    filter: kNoFilter,
    matches: null,
    pixel: null,
    compare: null,
    camera: null,
    isPlaying: false,
  });
}

export function fail(message: string): void {
  store.set({ error: message, phase: store.state.files.length > 0 ? 'ready' : 'empty' });
}

export function showFile(active: number): void {
  const file = store.state.files[active];
  if (!file || active === store.state.active) return;
  const page = Math.min(store.state.page, file.summary.pages.length - 1);
  const call = Math.min(store.state.call, file.columns.count - 1);
  store.set({ active, page, call, matches: null, pixel: null });
  void findCalls();
}

// ---- Places

export function showCall(call: number): void {
  const file = activeFile(store.state);
  if (!file || file.columns.count === 0) return;
  const inside = Math.max(0, Math.min(file.columns.count - 1, call));
  const page = file.columns.page[inside] ?? -1;
  const leaves = page >= 0 && page !== store.state.page;
  store.set({
    call: inside,
    ...(leaves ? { page, camera: sameSize(file, page) ? store.state.camera : null, pixel: null } : {}),
  });
}

function sameSize(file: OpenFile, page: number): boolean {
  const from = file.summary.pages[store.state.page];
  const to = file.summary.pages[page];
  return from?.width === to?.width && from?.height === to?.height;
}

// The page as it is when it is complete.
export function showPage(page: number): void {
  const file = activeFile(store.state);
  if (!file) return;
  const shown = file.summary.pages[page];
  store.set({
    page: shown ? page : -1,
    pixel: null,
    camera: shown && sameSize(file, page) ? store.state.camera : null,
  });
  showCall(shown ? shown.lastCall : file.columns.count - 1);
}

export function stepPage(direction: 1 | -1): void {
  const count = activeFile(store.state)?.summary.pages.length ?? 0;
  const page = store.state.page + direction;
  if (page >= 0 && page < count) showPage(page);
}

// True when there was a call to go to.
export function step(direction: 1 | -1, unit: Unit): boolean {
  const file = activeFile(store.state);
  if (!file) return false;
  const call = nextStop(file.columns, store.state.call, direction, unit);
  if (call !== null) showCall(call);
  return call !== null;
}

// Within the calls that the list shows.
export function stepInList(by: number): void {
  const file = activeFile(store.state);
  if (!file) return;
  const { matches, call } = store.state;
  if (!matches) {
    showCall(call + by);
    return;
  }
  if (matches.length === 0) return;
  let index = indexOfCall(matches, call);
  // Between two rows the next one is a step of one.
  if (matches[index] !== call && by > 0) index -= 1;
  index = Math.max(0, Math.min(matches.length - 1, index + by));
  showCall(matches[index] as number);
}

export function showPageEdge(edge: 'first' | 'last'): void {
  const file = activeFile(store.state);
  const page = file?.summary.pages[store.state.page];
  if (page) showCall(edge === 'first' ? page.firstCall : page.lastCall);
  else if (file) showCall(edge === 'first' ? 0 : file.columns.count - 1);
}

// ---- Filters

let search = new AbortController();
let searchTimer = 0;

export function setFilter(change: Partial<Filter>): void {
  store.set({ filter: { ...store.state.filter, ...change } });
  clearTimeout(searchTimer);
  searchTimer = window.setTimeout(() => void findCalls(), change.text || change.color ? 120 : 0); // not at every letter
}

export const clearFilter = () => setFilter(kNoFilter);

async function findCalls(): Promise<void> {
  search.abort();
  search = new AbortController();
  const { signal } = search;
  const file = activeFile(store.state);
  const { filter } = store.state;
  if (!file || isEmpty(filter)) {
    store.set({ matches: null, matchError: null });
    return;
  }
  try {
    const { calls } = await engine.ask<{ calls: string }>(file.number, questionOf(filter), signal);
    if (!signal.aborted) store.set({ matches: decodeCalls(calls), matchError: null });
  } catch (error) {
    if (!(error instanceof Abandoned) && !signal.aborted) store.set({ matchError: messageOf(error) });
  }
}

export function setFilterRect(rect: Rect | null): void {
  // A rectangle means pixels of the page that is shown.
  store.set({ isDrawingRect: false });
  setFilter({ rect, ...(rect ? { page: store.state.page } : {}) });
}

// ---- Pixels

let history = new AbortController();

export async function showPixel(x: number, y: number): Promise<void> {
  const file = activeFile(store.state);
  const page = store.state.page;
  if (!file || page < 0) return;
  history.abort();
  history = new AbortController();
  const { signal } = history;
  const place = { file: file.number, page, x, y };
  store.set({ pixel: { ...place, painters: null, error: null }, panel: 'pixel' });
  try {
    const question = { q: 'painters', page, x, y } as const;
    const { painters } = await engine.ask<{ painters: Painter[] }>(file.number, question, signal);
    if (!signal.aborted) store.set({ pixel: { ...place, painters, error: null } });
  } catch (error) {
    if (error instanceof Abandoned || signal.aborted) return;
    store.set({ pixel: { ...place, painters: [], error: messageOf(error) } });
  }
}

export function clearPixel(): void {
  history.abort();
  store.set({ pixel: null });
}

// ---- Two files

async function compareFiles(): Promise<void> {
  const [first, second] = store.state.files;
  if (!first || !second) return;
  try {
    const question = { q: 'compare', with: second.number } as const;
    store.set({ compare: await engine.ask<CompareAnswer>(first.number, question), compareError: null });
  } catch (error) {
    store.set({ compareError: messageOf(error) });
  }
}

// All rectangles in which the files differ, page by page.
export function differences(compare: CompareAnswer | null): { page: number; rect: Rect }[] {
  return (compare?.pages ?? []).flatMap(({ page, rects }) => rects.map((rect) => ({ page, rect })));
}

export function stepDifference(direction: 1 | -1): void {
  const all = differences(store.state.compare);
  if (all.length === 0) return;
  const last = store.state.difference;
  const difference = last < 0 ? (direction > 0 ? 0 : all.length - 1) : (last + direction + all.length) % all.length;
  const { page, rect } = all[difference] as { page: number; rect: Rect };
  store.set({ difference, panel: 'compare' });
  if (page !== store.state.page) showPage(page);
  revealRect(rect);
}

// ---- View

let reveal: (rect: Rect) => void = () => undefined;
// The view knows its size; it says how to bring a rectangle into sight.
export function onReveal(handler: (rect: Rect) => void): void {
  reveal = handler;
}
export const revealRect = (rect: Rect) => reveal(rect);

export const setPanel = (panel: Panel) => store.set({ panel });

export function cycleHeat(): void {
  const order = ['none', 'time', 'overdraw'] as const;
  store.set({ heat: order[(order.indexOf(store.state.heat) + 1) % order.length] ?? 'none' });
}

export function toggleTags(): void {
  if (deviceOfPage(store.state)?.hasTags) store.set({ tags: !store.state.tags });
}
