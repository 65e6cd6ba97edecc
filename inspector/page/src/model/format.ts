// Numbers, times and colors as text.
import type { Device } from '../engine/contract';

const kNumber = new Intl.NumberFormat('en-US');

export const formatCount = (count: number) => kNumber.format(count);

// Three significant digits: "681 ns", "1.99 µs", "12.3 ms".
export function formatTime(ns: number): string {
  for (const [unit, size] of [
    ['s', 1e9],
    ['ms', 1e6],
    ['µs', 1e3],
  ] as const) {
    if (ns >= size) return `${(ns / size).toPrecision(3)} ${unit}`.replace(/(\d{4})\.\d* /, '$1 ');
  }
  return `${Math.round(ns)} ns`;
}

export function formatBytes(values: readonly number[]): string {
  return values.map((value) => value.toString(16).toUpperCase().padStart(2, '0')).join(' ');
}

// Band byte order is blue, green, red, or one gray byte.
export function cssOfBand(values: readonly number[]): string {
  const [blue = 0, green = blue, red = blue] = values;
  return `rgb(${red} ${green} ${blue})`;
}

export function describeDevice(device: Device): string {
  const kind = {
    plain24: 'color',
    plain8: 'gray',
    scaled: 'resolution-mapping',
    dual: 'color and tags',
  }[device.kind];
  return `${kind}, ${device.bits} bits, bands of ${device.bandWidth} × ${device.bandHeight}`;
}

// "QNVDevBitBlt" is "DevBitBlt" where room is scarce.
export const shortFunction = (name: string) => name.replace(/^QNV/, '');

// Errors become sentences: a capital letter, and a full stop.
export function sentence(text: string): string {
  const trimmed = text.trim();
  if (trimmed === '') return 'Something failed, and no reason was given.';
  const first = trimmed.charAt(0).toUpperCase() + trimmed.slice(1);
  return /[.!?]$/.test(first) ? first : `${first}.`;
}
