// The strip behind the slider: bands as alternating fields, the time of calls as bars, findings as dots.
import { kDraws, kHasFindings, type Page } from '../engine/contract';
import type { Columns } from '../model/columns';

export const kStripHeight = 28; // CSS pixels
const kThumb = 14; // width of the slider's thumb; the ends of its track are half of it inside

export function paintStrip(canvas: HTMLCanvasElement, columns: Columns, page: Page): void {
  const context = canvas.getContext('2d');
  if (!context) return;
  const density = devicePixelRatio || 1;
  const box = canvas.getBoundingClientRect();
  canvas.width = Math.max(1, Math.round(box.width * density));
  canvas.height = Math.round(kStripHeight * density);
  const style = getComputedStyle(canvas);
  const color = (name: string) => style.getPropertyValue(`--${name}`).trim();
  const from = (kThumb / 2) * density;
  const width = canvas.width - 2 * from;
  const calls = page.lastCall - page.firstCall + 1;
  const xOf = (call: number) => from + ((call - page.firstCall) / Math.max(1, calls - 1)) * width;
  page.bands.forEach((band, index) => {
    context.fillStyle = color(index % 2 === 0 ? 'strip-even' : 'strip-odd');
    const left = index === 0 ? 0 : xOf(band.firstCall);
    const right =
      index === page.bands.length - 1 ? canvas.width : xOf((page.bands[index + 1] as typeof band).firstCall);
    context.fillRect(left, 0, right - left, canvas.height);
  });
  // Several calls share a column of pixels; the bar is their sum, on a scale by the square root.
  const bars = new Float64Array(canvas.width);
  const drawing = new Uint8Array(canvas.width);
  const findings: number[] = [];
  for (let call = page.firstCall; call <= page.lastCall; call++) {
    const x = Math.min(canvas.width - 1, Math.round(xOf(call)));
    bars[x] = (bars[x] ?? 0) + (columns.ns[call] ?? 0);
    const flags = columns.flags[call] ?? 0;
    if (flags & kDraws) drawing[x] = 1;
    if (flags & kHasFindings && findings.at(-1) !== x) findings.push(x);
  }
  const most = bars.reduce((max, value) => Math.max(max, value), 1);
  const bar = Math.max(density, Math.min(6 * density, width / calls - density));
  bars.forEach((value, x) => {
    if (value === 0) return;
    const height = Math.max(density, Math.sqrt(value / most) * (canvas.height - 4 * density));
    context.fillStyle = color(drawing[x] ? 'strip-draws' : 'strip-other');
    context.fillRect(x - bar / 2, canvas.height - height, bar, height);
  });
  context.fillStyle = color('strip-finding');
  for (const x of findings) {
    context.beginPath();
    context.arc(x, 4 * density, 2.5 * density, 0, 2 * Math.PI);
    context.fill();
  }
}
