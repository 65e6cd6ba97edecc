// The pictures that are on the screen, one or two, for keys and buttons that act on the one in use.
import { onReveal } from '../model/actions';
import { onPaintedQuery } from '../model/playback';
import { store } from '../model/state';
import type { PageCanvas } from './page_canvas';

const views = new Map<number, PageCanvas>();

export function addView(index: number, view: PageCanvas): () => void {
  views.set(index, view);
  return () => {
    if (views.get(index) === view) views.delete(index);
  };
}

export const activeView = (): PageCanvas | undefined => views.get(store.state.active) ?? views.get(0);

export function connectViews(): void {
  onReveal((rect) => activeView()?.reveal(rect));
  onPaintedQuery(() => [...views.values()].every((view) => view.isPainted()));
}
