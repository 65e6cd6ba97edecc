// Asks about the current call whenever it is another one, for the panel and for the outline on the picture.
import { Abandoned, type CallAnswer } from '../engine/contract';
import { engine } from './actions';
import { sentence } from './format';
import { activeFile, store } from './state';

let asked = '';
let current = new AbortController();

async function ask(): Promise<void> {
  const file = activeFile(store.state);
  const { call } = store.state;
  const wanted = file && file.columns.count > 0 ? `${file.number}/${call}` : '';
  if (wanted === asked) return;
  asked = wanted;
  current.abort();
  current = new AbortController();
  const { signal } = current;
  if (!file || wanted === '') {
    store.set({ answer: null, answerError: null });
    return;
  }
  try {
    const answer = await engine.ask<CallAnswer>(file.number, { q: 'call', call }, signal);
    if (!signal.aborted) store.set({ answer, answerError: null });
  } catch (error) {
    if (error instanceof Abandoned || signal.aborted) return;
    store.set({ answer: null, answerError: sentence(error instanceof Error ? error.message : String(error)) });
  }
}

export function followCurrentCall(): void {
  store.subscribe(() => void ask());
}
