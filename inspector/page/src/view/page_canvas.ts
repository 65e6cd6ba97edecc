// One picture of a page: what is to be painted, from state and regions, and what pointer and keys do on it.
import type { Device, Page, Rect } from '../engine/contract';
import { differences, engine, fail, setFilterRect, showFile, showPixel } from '../model/actions';
import { sentence } from '../model/format';
import { type Camera, type OpenFile, type State, store } from '../model/state';
import { lastPainting } from '../model/steps';
import { type Size, centered, fit, keepInSight, nextScale, show, zoomAt } from './camera';
import { cursor, moveCursor } from './cursor';
import { heatArrivals, heatMap } from './heat_layer';
import { type Colors, Painting, kRuler, readColors } from './painting';
import { type Region, Regions, partInSight } from './regions';
import { Rulers } from './rulers';

const kClickDistance = 4; // CSS pixels; a longer way is a drag
const kMaxDifferences = 1000;

// The call that a file shows: that of the list, or its own end when the other page is complete.
function callOf(state: State, file: OpenFile, page: Page | undefined): number {
  const active = state.files[state.active];
  if (!active || file === active) return state.call;
  const activePage = active.summary.pages[state.page];
  if (page && activePage && state.call >= activePage.lastCall) return page.lastCall;
  return Math.min(state.call, file.columns.count - 1);
}

export class PageCanvas {
  private readonly context: CanvasRenderingContext2D;
  private readonly colorRegions: Regions;
  private readonly tagRegions: Regions;
  private view: Size = { width: 0, height: 0 };
  private density = 1;
  private colors: Colors;
  private frame = 0;
  private drag: { x: number; y: number; camera: Camera; moved: boolean; from: { x: number; y: number } } | null = null;
  private readonly undo: (() => void)[] = [];
  private seen: State = store.state;
  private exact = true; // the last painting showed the current call everywhere
  private painted: unknown[] = []; // what the canvas shows
  private mark: Rect | null = null; // what the call that the canvas shows has changed
  private markPage: Page | undefined;
  private readonly rulers = new Rulers();

  constructor(
    private readonly canvas: HTMLCanvasElement,
    private readonly index: number,
  ) {
    this.context = canvas.getContext('2d') as CanvasRenderingContext2D;
    this.colors = readColors(canvas);
    const arrived = () => this.plan();
    const failed = (message: string) => fail(sentence(message));
    this.colorRegions = new Regions(engine, 'color', arrived, failed);
    this.tagRegions = new Regions(engine, 'tags', arrived, failed);
    const resize = new ResizeObserver(([entry]) => this.resize(entry));
    try {
      resize.observe(canvas, { box: 'device-pixel-content-box' });
    } catch {
      resize.observe(canvas); // browsers without it round by themselves
    }
    const onState = () => {
      if (store.state.colors !== this.seen.colors) this.readColors();
      // Not painted until the next frame.
      if (store.state.call !== this.seen.call || store.state.page !== this.seen.page) this.exact = false;
      this.seen = store.state;
      this.request(); // at once, not only with the next frame
      this.plan();
    };
    this.undo.push(
      () => resize.disconnect(),
      store.subscribe(onState),
      cursor.subscribe(() => this.plan()),
      heatArrivals.subscribe(() => this.plan()),
      () => cancelAnimationFrame(this.frame),
    );
    this.listen('pointerdown', (event) => this.press(event));
    this.listen('pointermove', (event) => this.move(event));
    this.listen('pointerup', (event) => this.release(event));
    this.listen('pointercancel', () => (this.drag = null));
    this.listen('pointerleave', () => moveCursor(this.index, undefined, -1, 0, null));
    this.listen('dblclick', (event) => this.zoom(1, this.place(event)));
    this.listen('wheel', (event) => this.wheel(event), { passive: false });
    this.listen('keydown', (event) => this.key(event));
    this.listen('blur', () => moveCursor(this.index, undefined, -1, 0, null));
  }

  close(): void {
    for (const undo of this.undo) undo();
  }

  isPainted(): boolean {
    return this.exact;
  }

  // ---- What it shows

  private file(): OpenFile | undefined {
    return store.state.files[this.index];
  }

  private page(): Page | undefined {
    return this.file()?.summary.pages[store.state.page];
  }

  private call(): number {
    const file = this.file();
    return file ? callOf(store.state, file, this.page()) : 0;
  }

  camera(): Camera {
    const page = this.page();
    if (!page) return { scale: 1, x: 0, y: 0 };
    return store.state.camera ?? fit(page, this.view);
  }

  private setCamera(camera: Camera): void {
    const page = this.page();
    if (page) store.set({ camera: keepInSight(camera, page, this.view) });
  }

  zoom(direction: 1 | -1, at?: { x: number; y: number }): void {
    this.zoomTo(nextScale(this.camera().scale, direction), at);
  }

  // Around a place on the screen: the pointer's, else the cursor of the keys, else the middle.
  zoomTo(scale: number, at?: { x: number; y: number }): void {
    const camera = this.camera();
    const pixel = cursor.state.at ?? store.state.pixel;
    const middle = { x: this.view.width / 2, y: this.view.height / 2 };
    let around = at ?? middle;
    if (!at && pixel) {
      const x = (pixel.x + 0.5 - camera.x) * camera.scale;
      const y = (pixel.y + 0.5 - camera.y) * camera.scale;
      if (x >= 0 && y >= 0 && x < this.view.width && y < this.view.height) around = { x, y };
    }
    this.setCamera(zoomAt(camera, scale, around.x, around.y));
  }

  reveal(rect: Rect): void {
    this.setCamera(show(rect, this.view));
  }

  // ---- Painting

  private readColors(): void {
    this.colors = readColors(this.canvas);
    this.plan();
  }

  // The canvas gets exactly the pixels that it has on the screen: stretched by a fraction, single pixels of the page
  // would have different widths.
  private resize(entry: ResizeObserverEntry | undefined): void {
    this.density = devicePixelRatio || 1;
    const box = this.canvas.getBoundingClientRect();
    const exact = entry?.devicePixelContentBoxSize?.[0];
    this.canvas.width = Math.max(1, exact?.inlineSize ?? Math.round(box.width * this.density));
    this.canvas.height = Math.max(1, exact?.blockSize ?? Math.round(box.height * this.density));
    this.view = {
      width: Math.max(1, this.canvas.width / this.density - kRuler),
      height: Math.max(1, this.canvas.height / this.density - kRuler),
    };
    this.painted = [];
    this.request();
    this.paint(); // at once: a resized canvas is empty
  }

  private plan(): void {
    this.frame ||= requestAnimationFrame(() => {
      this.frame = 0;
      this.paint();
    });
  }

  private request(): void {
    const page = this.page();
    if (!page || this.view.width === 0) return;
    this.regionsOf(this.colorRegions, page);
    if (store.state.tags && this.device(page)?.hasTags) this.regionsOf(this.tagRegions, page);
  }

  private device(page: Page): Device | undefined {
    return this.file()?.summary.devices.find(({ number }) => number === page.device);
  }

  // What is in sight of a plane, or what was, the lowest first; exact says whether it is what the current call left.
  private regionsOf(regions: Regions, page: Page): { shown: Region[]; exact: boolean } {
    const file = this.file();
    const part = partInSight(this.camera(), page, this.view, this.density);
    if (!file || !part) return { shown: [], exact: true };
    const region = regions.get(file.number, page.page, lastPainting(file.columns, this.call()), part);
    return region ? { shown: [region], exact: true } : { shown: regions.before(), exact: false };
  }

  private paint(): void {
    const { state } = store;
    const file = this.file();
    const page = this.page();
    const camera = this.camera();
    if (!file || !page) {
      new Painting(this.context, camera, this.view, this.density, this.colors).clear();
      this.painted = [];
      this.exact = true;
      return;
    }
    const device = this.device(page);
    const colors = this.regionsOf(this.colorRegions, page);
    const hasTags = state.tags && device?.hasTags;
    const tags = hasTags ? this.regionsOf(this.tagRegions, page) : { shown: [], exact: true };
    const exact = colors.exact && tags.exact;
    const isActive = state.files[state.active] === file;
    // The mark moves together with the picture.
    const { answer } = state;
    if (page !== this.markPage) this.mark = null;
    this.markPage = page;
    if (exact && (!isActive || answer?.call === state.call)) {
      this.mark = isActive && answer?.page === page.page ? answer.changed.rect : null;
    }
    this.exact = exact;
    const heat = heatMap(file, page, state.heat);
    const { pixel } = state;
    // Painting takes longer than all else of a step: only what shows something else than the last one is done.
    const at = cursor.state.file === this.index ? cursor.state.at : null;
    const shows = [
      file,
      page,
      camera.scale,
      camera.x,
      camera.y,
      this.view,
      this.density,
      this.colors,
      ...colors.shown,
      null,
      ...tags.shown,
      hasTags ? state.tagOpacity : 0,
      heat,
      state.grid,
      state.outline ? this.mark : null,
      state.filter.rect,
      state.filter.page,
      cursor.state.rect,
      pixel && pixel.page === page.page ? `${pixel.x},${pixel.y}` : '',
      at ? `${at.x},${at.y},${cursor.state.byKeys}` : '',
      state.files.length,
      state.compare,
      state.difference,
    ];
    if (shows.length !== this.painted.length || shows.some((one, index) => !Object.is(one, this.painted[index]))) {
      this.painted = shows;
      const painting = new Painting(this.context, camera, this.view, this.density, this.colors);
      painting.clear(page);
      for (const region of colors.shown) painting.region(region);
      for (const region of tags.shown) painting.region(region, state.tagOpacity);
      if (heat) painting.image(heat.canvas, page.left, page.top, page.width, page.height, 0.75);
      const top = colors.shown.at(-1);
      if (top) painting.bytes(top, page, device?.kind === 'plain8');
      if (state.grid) {
        painting.grid(page);
        painting.bandEdges(
          page.bands.slice(1).map((band) => band.top),
          page,
        );
      }
      this.paintMarks(painting, state, page);
      this.rulers.paint(painting, page, at);
    }
    this.canvas.dataset['call'] = exact ? String(this.call()) : '';
    // Where page pixels are on the canvas, for tests.
    this.canvas.dataset['camera'] = `${camera.scale},${camera.x},${camera.y},${kRuler}`;
  }

  private paintMarks(painting: Painting, state: State, page: Page): void {
    const { colors } = this;
    if (state.files.length === 2) {
      const all = differences(state.compare);
      let drawn = 0;
      all.forEach(({ page: number, rect }, index) => {
        if (number !== state.page || drawn++ > kMaxDifferences) return;
        painting.frame(rect, colors.difference, { thick: index === state.difference });
      });
    }
    if (state.filter.rect && state.filter.page === state.page) {
      painting.frame(state.filter.rect, colors.pixel, { dashed: true });
    }
    if (cursor.state.rect) painting.frame(cursor.state.rect, colors.pixel, { dashed: true });
    if (state.outline && this.mark) painting.frame(this.mark, colors.mark);
    if (state.pixel && state.pixel.page === page.page) {
      const { x, y } = state.pixel;
      painting.frame([x, y, x + 1, y + 1], colors.pixel, { thick: true });
    }
    const { at, byKeys, file: index } = cursor.state;
    if (at && byKeys && index === this.index) painting.frame([at.x, at.y, at.x + 1, at.y + 1], colors.mark);
  }

  // ---- Pointer and keys

  private listen<Name extends keyof HTMLElementEventMap>(
    name: Name,
    handler: (event: HTMLElementEventMap[Name]) => void,
    options?: AddEventListenerOptions,
  ): void {
    this.canvas.addEventListener(name, handler, options);
    this.undo.push(() => this.canvas.removeEventListener(name, handler, options));
  }

  // Relative to the picture, without rulers.
  private place(event: MouseEvent): { x: number; y: number } {
    const box = this.canvas.getBoundingClientRect();
    return { x: event.clientX - box.left - kRuler, y: event.clientY - box.top - kRuler };
  }

  private pixelAt(place: { x: number; y: number }): { x: number; y: number } | null {
    const page = this.page();
    if (!page || place.x < 0 || place.y < 0) return null;
    const camera = this.camera();
    const x = Math.floor(camera.x + place.x / camera.scale);
    const y = Math.floor(camera.y + place.y / camera.scale);
    const isInside = x >= page.left && y >= page.top && x < page.left + page.width && y < page.top + page.height;
    return isInside ? { x, y } : null;
  }

  private press(event: PointerEvent): void {
    if (event.button !== 0 && event.button !== 1) return;
    this.canvas.setPointerCapture(event.pointerId);
    this.drag = { x: event.clientX, y: event.clientY, camera: this.camera(), moved: false, from: this.place(event) };
  }

  private move(event: PointerEvent): void {
    const at = this.place(event);
    const pixel = this.pixelAt(at);
    const { state } = cursor;
    if (pixel?.x !== state.at?.x || pixel?.y !== state.at?.y || state.file !== this.index) {
      moveCursor(this.index, this.file(), store.state.page, this.call(), pixel);
    }
    if (!this.drag) return;
    const dx = event.clientX - this.drag.x;
    const dy = event.clientY - this.drag.y;
    if (Math.hypot(dx, dy) >= kClickDistance) this.drag.moved = true;
    if (!this.drag.moved) return;
    if (store.state.isDrawingRect) {
      cursor.set({ rect: this.rectBetween(this.drag.from, at) });
    } else {
      const { camera } = this.drag;
      this.setCamera({ scale: camera.scale, x: camera.x - dx / camera.scale, y: camera.y - dy / camera.scale });
    }
  }

  private release(event: PointerEvent): void {
    const { drag } = this;
    this.drag = null;
    if (!drag) return;
    if (store.state.isDrawingRect) {
      cursor.set({ rect: null });
      if (drag.moved) setFilterRect(this.rectBetween(drag.from, this.place(event)));
      return;
    }
    const pixel = this.pixelAt(this.place(event));
    if (!drag.moved && event.button === 0 && pixel) this.pick(pixel);
  }

  private pick(pixel: { x: number; y: number }): void {
    showFile(this.index);
    void showPixel(pixel.x, pixel.y);
  }

  // Cut to the page; at least one pixel.
  private rectBetween(from: { x: number; y: number }, to: { x: number; y: number }): Rect | null {
    const page = this.page();
    if (!page) return null;
    const camera = this.camera();
    const within = (value: number, start: number, size: number) =>
      Math.max(start, Math.min(start + size - 1, Math.floor(value)));
    const x = [from.x, to.x].map((value) => within(camera.x + value / camera.scale, page.left, page.width));
    const y = [from.y, to.y].map((value) => within(camera.y + value / camera.scale, page.top, page.height));
    return [Math.min(...x), Math.min(...y), Math.max(...x) + 1, Math.max(...y) + 1];
  }

  private wheel(event: WheelEvent): void {
    event.preventDefault();
    if (event.deltaY === 0) return;
    if (event.shiftKey) {
      const camera = this.camera();
      this.setCamera({ ...camera, y: camera.y + event.deltaY / camera.scale });
      return;
    }
    this.zoom(event.deltaY < 0 ? 1 : -1, this.place(event));
  }

  private key(event: KeyboardEvent): void {
    const page = this.page();
    if (!page || event.ctrlKey || event.metaKey || event.altKey) return;
    const by = event.shiftKey ? 10 : 1;
    const direction = { ArrowLeft: [-by, 0], ArrowRight: [by, 0], ArrowUp: [0, -by], ArrowDown: [0, by] }[event.key];
    if (direction) {
      event.preventDefault();
      event.stopPropagation();
      const camera = this.camera();
      const middle = {
        x: Math.floor(camera.x + this.view.width / 2 / camera.scale),
        y: Math.floor(camera.y + this.view.height / 2 / camera.scale),
      };
      const from = cursor.state.at ?? store.state.pixel;
      const at = from ? { x: from.x + (direction[0] as number), y: from.y + (direction[1] as number) } : middle;
      const inside = {
        x: Math.max(page.left, Math.min(page.left + page.width - 1, at.x)),
        y: Math.max(page.top, Math.min(page.top + page.height - 1, at.y)),
      };
      moveCursor(this.index, this.file(), store.state.page, this.call(), inside, true);
      this.follow(inside);
    } else if (event.key === 'Enter') {
      event.preventDefault();
      if (cursor.state.at) this.pick(cursor.state.at);
    }
  }

  // Moves the view when the cursor of the keys leaves it.
  private follow(pixel: { x: number; y: number }): void {
    const camera = this.camera();
    const x = (pixel.x + 0.5 - camera.x) * camera.scale;
    const y = (pixel.y + 0.5 - camera.y) * camera.scale;
    if (x >= 0 && y >= 0 && x < this.view.width && y < this.view.height) return;
    this.setCamera(centered(camera.scale, pixel.x, pixel.y, this.view));
  }
}
