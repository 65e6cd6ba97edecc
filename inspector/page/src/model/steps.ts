// Where the next call of a kind is: any call, one that draws, the beginning of a band, one with findings.
import { kDiffers, kDraws, kHasFindings } from '../engine/contract';
import type { Columns } from './columns';

export type Unit = 'call' | 'drawing' | 'band' | 'finding';

function isStop(columns: Columns, call: number, unit: Unit): boolean {
  const flags = columns.flags[call] ?? 0;
  switch (unit) {
    case 'call':
      return true;
    case 'drawing':
      return (flags & kDraws) !== 0;
    case 'finding':
      return (flags & (kHasFindings | kDiffers)) !== 0;
    case 'band':
      // The last call of a band: the picture of the band is complete there.
      return (
        columns.page[call] !== -1 &&
        (call + 1 >= columns.count ||
          columns.band[call + 1] !== columns.band[call] ||
          columns.page[call + 1] !== columns.page[call])
      );
  }
}

// The next stop after `call` in that direction within [first, last]; null when there is none.
export function nextStop(
  columns: Columns,
  call: number,
  direction: 1 | -1,
  unit: Unit,
  first = 0,
  last = columns.count - 1,
): number | null {
  for (let i = call + direction; i >= first && i <= last; i += direction) {
    if (isStop(columns, i, unit)) return i;
  }
  return null;
}

// Functions that tell or prepare something and leave every band as it is.
const kQuietFunctions = ['QNVGetDeviceInfo', 'QNVColorInfo', 'QNVRealizeObject'];

// The last call up to `call` after which a page may look different than before; -1 when there is none.
export function lastPainting(columns: Columns, call: number): number {
  const isQuiet = (at: number) => {
    const name = columns.functions[columns.function[at] ?? 0] ?? '';
    return ((columns.flags[at] ?? 0) & kDraws) === 0 && kQuietFunctions.includes(name);
  };
  let at = call;
  while (at >= 0 && isQuiet(at)) at--;
  return at;
}

// The index of `call` in ascending `calls`, or of the first one after it.
export function indexOfCall(calls: Uint32Array, call: number): number {
  let low = 0;
  let high = calls.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if ((calls[middle] as number) < call) low = middle + 1;
    else high = middle;
  }
  return low;
}
