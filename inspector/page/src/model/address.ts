// Keeps the address in step with the state, and follows it when somebody changes it.
import { showCall, showFile, showPage, showPixel } from './actions';
import { formatPlace, parsePlace } from './hash';
import { store } from './state';

let written = '';
let timer = 0;

function write(): void {
  const { files, active, page, call, pixel, camera } = store.state;
  if (files.length === 0) return;
  written = formatPlace({ file: active, page: page >= 0 ? page : null, call, pixel, camera });
  // replaceState: a step is not a page that "back" leads to.
  try {
    history.replaceState(null, '', written);
  } catch {
    // Browsers limit how often that may be done; the next change writes it.
  }
}

export function followAddress(): void {
  const place = parsePlace(location.hash);
  if (store.state.files.length === 0) return;
  showFile(place.file);
  if (place.page !== null) showPage(place.page);
  if (place.call !== null) showCall(place.call);
  store.set({ camera: place.camera });
  if (place.pixel) void showPixel(place.pixel.x, place.pixel.y);
}

export function keepAddress(): void {
  store.subscribe(() => {
    clearTimeout(timer);
    timer = window.setTimeout(write, 250);
  });
  window.addEventListener('hashchange', () => {
    if (location.hash !== written) followAddress();
  });
}
