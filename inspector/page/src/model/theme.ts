// Light and dark: as the system says, or as chosen here. The choice is kept where the browser allows it.
import { type Theme, store } from './state';

const kKey = 'qnv-inspector-theme';
const kThemes: readonly Theme[] = ['system', 'light', 'dark'];

const systemIsDark = () => matchMedia('(prefers-color-scheme: dark)');

// Takes the theme that was chosen before, and from then on follows the system where none was.
export function startTheme(): void {
  let theme: Theme = 'system';
  try {
    const kept = localStorage.getItem(kKey);
    theme = kThemes.find((known) => known === kept) ?? 'system';
  } catch {
    // Pages that are opened as files may have no storage.
  }
  applyTheme(theme);
  systemIsDark().addEventListener('change', () => applyTheme(store.state.theme));
}

export function applyTheme(theme: Theme): void {
  const colors = theme !== 'system' ? theme : systemIsDark().matches ? 'dark' : 'light';
  document.documentElement.dataset['theme'] = colors;
  store.set({ theme, colors });
  try {
    localStorage.setItem(kKey, theme);
  } catch {
    // not kept, then
  }
}

export function cycleTheme(): void {
  applyTheme(kThemes[(kThemes.indexOf(store.state.theme) + 1) % kThemes.length] ?? 'system');
}
