// Light and dark: as the system says, or as chosen here. The choice is kept where the browser allows it.
import { type Theme, store } from './state';

const kKey = 'qnv-inspector-theme';
const kThemes: readonly Theme[] = ['system', 'light', 'dark'];

export function readTheme(): void {
  let theme: Theme = 'system';
  try {
    const kept = localStorage.getItem(kKey);
    theme = kThemes.find((known) => known === kept) ?? 'system';
  } catch {
    // Pages that are opened as files may have no storage.
  }
  applyTheme(theme);
}

export function applyTheme(theme: Theme): void {
  if (theme === 'system') delete document.documentElement.dataset['theme'];
  else document.documentElement.dataset['theme'] = theme;
  store.set({ theme });
  try {
    localStorage.setItem(kKey, theme);
  } catch {
    // not kept, then
  }
}

export function cycleTheme(): void {
  applyTheme(kThemes[(kThemes.indexOf(store.state.theme) + 1) % kThemes.length] ?? 'system');
}
