// Plays a page: steps at the chosen speed, but never faster than the picture follows.
import { activeFile, store } from './state';
import { nextStop } from './steps';
import { showCall, showPageEdge } from './actions';

let frame = 0;
let owed = 0; // steps that are due, with their fraction
let lastTime = 0;
// Set by the view: whether it has painted the current call.
let isPainted: () => boolean = () => true;

export function onPaintedQuery(query: () => boolean): void {
  isPainted = query;
}

export function togglePlay(): void {
  if (store.state.isPlaying) stop();
  else play();
}

export function stop(): void {
  cancelAnimationFrame(frame);
  store.set({ isPlaying: false });
}

function play(): void {
  const { state } = store;
  const page = activeFile(state)?.summary.pages[state.page];
  if (!page) return;
  // At the end it begins again.
  if (state.call >= page.lastCall) showPageEdge('first');
  store.set({ isPlaying: true });
  owed = 0;
  lastTime = performance.now();
  frame = requestAnimationFrame(advance);
}

function advance(time: number): void {
  const { state } = store;
  const file = activeFile(state);
  const page = file?.summary.pages[state.page];
  if (!state.isPlaying || !file || !page) return;
  if (isPainted()) {
    owed = Math.min(owed + ((time - lastTime) / 1000) * state.speed, state.speed);
    lastTime = time;
    let call: number | null = state.call;
    for (; owed >= 1 && call !== null; owed -= 1) {
      const next = nextStop(file.columns, call, 1, state.playUnit, page.firstCall, page.lastCall);
      if (next === null) {
        showCall(page.lastCall);
        stop();
        return;
      }
      call = next;
    }
    if (call !== null && call !== state.call) showCall(call);
  }
  frame = requestAnimationFrame(advance);
}
