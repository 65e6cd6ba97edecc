// The pixel under the pointer, or where the arrow keys have moved to, and what it holds after the current call.
import { Abandoned, type PixelAnswer } from '../engine/contract';
import { engine } from '../model/actions';
import { type OpenFile } from '../model/state';
import { Store } from '../model/store';

interface Cursor {
  at: { x: number; y: number } | null;
  file: number; // index among the open files
  value: PixelAnswer | null;
  byKeys: boolean; // shown on the picture, because there is no pointer
  rect: [number, number, number, number] | null; // while one is drawn
}

export const cursor = new Store<Cursor>({ at: null, file: 0, value: null, byKeys: false, rect: null });

let asked = new AbortController();

export function moveCursor(
  index: number,
  file: OpenFile | undefined,
  page: number,
  call: number,
  at: { x: number; y: number } | null,
  byKeys = false,
): void {
  asked.abort();
  asked = new AbortController();
  const { signal } = asked;
  const isSame = at && cursor.state.at && at.x === cursor.state.at.x && at.y === cursor.state.at.y;
  cursor.set({ at, file: index, byKeys, value: isSame && index === cursor.state.file ? cursor.state.value : null });
  if (!at || !file || page < 0) return;
  engine
    .ask<PixelAnswer>(file.number, { q: 'pixel', page, x: at.x, y: at.y, call }, signal)
    .then((value) => {
      if (!signal.aborted) cursor.set({ value });
    })
    .catch((error: unknown) => {
      // Outside of every band there is nothing to tell.
      if (!(error instanceof Abandoned) && !signal.aborted) cursor.set({ value: null });
    });
}
