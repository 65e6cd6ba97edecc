// The keys that work everywhere except while text is typed, in one table; the help dialog shows the same table.
import {
  clearPixel,
  cycleHeat,
  setPanel,
  showFile,
  showPageEdge,
  step,
  stepDifference,
  stepInList,
  stepPage,
  toggleTags,
} from '../model/actions';
import { stop, togglePlay } from '../model/playback';
import { store } from '../model/state';
import { cycleTheme } from '../model/theme';
import { cursor } from '../view/cursor';
import { activeView } from '../view/views';
import { kPanels } from './side_panel';

interface Key {
  keys: string[]; // as KeyboardEvent.key has them
  shown: string;
  what: string;
  run: () => void;
}

const focus = (selector: string) => {
  const element = document.querySelector<HTMLElement>(selector);
  element?.focus();
  if (element instanceof HTMLInputElement && element.type !== 'range') element.select();
};

// What Escape leaves, one thing at a time.
function leave(): void {
  if (store.state.isPlaying) stop();
  else if (store.state.isDrawingRect) {
    cursor.set({ rect: null });
    store.set({ isDrawingRect: false });
  } else if (store.state.error) store.set({ error: null });
  else if (store.state.pixel) clearPixel();
}

const set = store.set.bind(store);

export const kKeys: readonly { title: string; keys: readonly Key[] }[] = [
  {
    title: 'Calls',
    keys: [
      { keys: ['ArrowRight', 'l'], shown: '→', what: 'next call', run: () => step(1, 'call') },
      { keys: ['ArrowLeft'], shown: '←', what: 'previous call', run: () => step(-1, 'call') },
      { keys: ['.'], shown: '.', what: 'next drawing call', run: () => step(1, 'drawing') },
      { keys: [','], shown: ',', what: 'previous drawing call', run: () => step(-1, 'drawing') },
      { keys: ['>'], shown: '>', what: 'end of the next band', run: () => step(1, 'band') },
      { keys: ['<'], shown: '<', what: 'end of the previous band', run: () => step(-1, 'band') },
      { keys: ['f'], shown: 'f', what: 'next call with findings', run: () => step(1, 'finding') },
      { keys: ['F'], shown: 'Shift+F', what: 'previous call with findings', run: () => step(-1, 'finding') },
      { keys: ['j', 'ArrowDown'], shown: 'j or ↓', what: 'next call of the list', run: () => stepInList(1) },
      { keys: ['k', 'ArrowUp'], shown: 'k or ↑', what: 'previous call of the list', run: () => stepInList(-1) },
      { keys: ['Home'], shown: 'Home', what: 'first call of the page', run: () => showPageEdge('first') },
      { keys: ['End'], shown: 'End', what: 'last call of the page', run: () => showPageEdge('last') },
      { keys: ['g'], shown: 'g', what: 'go to a call by number', run: () => focus('#go-to') },
      { keys: [' '], shown: 'Space', what: 'play or pause', run: togglePlay },
    ],
  },
  {
    title: 'Page',
    keys: [
      { keys: [']'], shown: ']', what: 'next page', run: () => stepPage(1) },
      { keys: ['['], shown: '[', what: 'previous page', run: () => stepPage(-1) },
      { keys: ['+', '='], shown: '+', what: 'zoom in', run: () => activeView()?.zoom(1) },
      { keys: ['-', '_'], shown: '−', what: 'zoom out', run: () => activeView()?.zoom(-1) },
      { keys: ['0'], shown: '0', what: 'whole page', run: () => set({ camera: null }) },
      { keys: ['z'], shown: 'z', what: 'real size', run: () => activeView()?.zoomTo(1) },
      { keys: ['Z'], shown: 'Shift+Z', what: 'single pixels', run: () => activeView()?.zoomTo(16) },
      { keys: ['c'], shown: 'c', what: 'to what the call changed', run: revealChange },
      {
        keys: ['o'],
        shown: 'o',
        what: 'outline of what the call changed',
        run: () => set({ outline: !store.state.outline }),
      },
      { keys: ['G'], shown: 'Shift+G', what: 'grid and edges of bands', run: () => set({ grid: !store.state.grid }) },
      { keys: ['t'], shown: 't', what: 'tag plane', run: toggleTags },
      { keys: ['h'], shown: 'h', what: 'heat map: none, time, overdraw', run: cycleHeat },
    ],
  },
  {
    title: 'Elsewhere',
    keys: [
      { keys: ['/'], shown: '/', what: 'search', run: () => focus('#search') },
      {
        keys: ['r'],
        shown: 'r',
        what: 'draw a rectangle to filter by',
        run: () => set({ isDrawingRect: !store.state.isDrawingRect }),
      },
      {
        keys: ['v'],
        shown: 'v',
        what: 'focus the page; arrows move over pixels, Enter marks one',
        run: () => focus('.picture canvas'),
      },
      { keys: ['i'], shown: 'i', what: 'focus the list', run: () => focus('.list') },
      { keys: ['s'], shown: 's', what: 'focus the slider', run: () => focus('#slider') },
      ...kPanels.map(({ panel, label }, index) => ({
        keys: [String(index + 1)],
        shown: String(index + 1),
        what: `panel ${label}`,
        run: () => setPanel(panel),
      })),
      { keys: ['d'], shown: 'd', what: 'next difference of two files', run: () => stepDifference(1) },
      { keys: ['D'], shown: 'Shift+D', what: 'previous difference', run: () => stepDifference(-1) },
      { keys: ['x'], shown: 'x', what: 'the calls of the other file', run: () => showFile(1 - store.state.active) },
      { keys: ['m'], shown: 'm', what: 'theme: system, light, dark', run: cycleTheme },
      { keys: ['?'], shown: '?', what: 'these keys', run: () => set({ isHelpOpen: true }) },
      { keys: ['Escape'], shown: 'Esc', what: 'pause; leave what was begun; forget the marked pixel', run: leave },
    ],
  },
];

function revealChange(): void {
  const rect = store.state.answer?.changed.rect;
  if (rect && store.state.answer?.call === store.state.call) activeView()?.reveal(rect);
}

const kByKey = new Map(
  kKeys.flatMap(({ keys }) => keys.flatMap((key) => key.keys.map((name) => [name, key] as const))),
);

function takesKeys(target: EventTarget | null, key: string): boolean {
  if (target instanceof HTMLInputElement) {
    if (key === 'Escape') return false;
    if (target.type === 'checkbox') return key === ' ';
    if (target.type === 'range') return /^(Arrow|Home|End|Page)/.test(key);
    return true;
  }
  if (target instanceof HTMLSelectElement) return true;
  const isPressed = key === ' ' || key === 'Enter';
  return isPressed && target instanceof HTMLElement && target.matches('button, summary, a');
}

export function listenToKeys(): void {
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || event.defaultPrevented) return;
    if (store.state.isHelpOpen || takesKeys(event.target, event.key)) return;
    if (store.state.files.length === 0 && !'m?'.includes(event.key) && event.key !== 'Escape') return;
    const key = kByKey.get(event.key);
    if (!key) return;
    event.preventDefault();
    if (event.key === 'Escape' && event.target instanceof HTMLInputElement) event.target.blur();
    else key.run();
  });
}
