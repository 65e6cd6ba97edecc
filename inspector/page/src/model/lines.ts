// The text of calls, asked for when rows come into view and kept for a while.
import type { Engine } from '../engine/contract';

// Rows that are this close are asked for together.
const kMaxGap = 12;
const kMaxKept = 20_000;
const kAhead = 100;

// "17 QNVPixel(device=1, x=3) = 0x0 [90 ns]": the list has number, function and time in columns of their own, and its
// rows are too short for the device, which is the same in most.
export function argumentsOf(line: string): string {
  const from = line.indexOf('(');
  const body = line.replace(/ \[\d+ ns\]$/, '');
  if (from < 0) return body;
  return body
    .slice(from + 1)
    .replace(/\)( = .*)?$/, '$1')
    .replace(/^device=\d+(, |$)/, '');
}

// Groups of neighbouring calls, as [first, count].
export function runsOf(calls: readonly number[]): [number, number][] {
  const runs: [number, number][] = [];
  for (const call of [...calls].sort((a, b) => a - b)) {
    const last = runs.at(-1);
    if (last && call - (last[0] + last[1]) < kMaxGap) last[1] = call - last[0] + 1;
    else runs.push([call, 1]);
  }
  return runs;
}

export class LineCache {
  private readonly lines = new Map<number, string>();
  private readonly asked = new Set<number>();

  constructor(
    private readonly engine: Engine,
    private readonly file: number,
    private readonly calls: number, // in the file
    private readonly onArrival: () => void,
  ) {}

  get(call: number): string | undefined {
    return this.lines.get(call);
  }

  want(calls: readonly number[]): void {
    const missing = calls.filter((call) => !this.lines.has(call) && !this.asked.has(call));
    for (const [start, length] of runsOf(missing)) {
      // Where all calls are listed, those that come next are wanted soon.
      const isWhole = calls.length > 1 && (calls.at(-1) as number) - (calls[0] as number) === calls.length - 1;
      const first = isWhole ? Math.max(0, start - kAhead) : start;
      const count = isWhole ? Math.min(this.calls, start + length + kAhead) - first : length;
      for (let call = first; call < first + count; call++) this.asked.add(call);
      void this.engine
        .ask<{ lines: string[] }>(this.file, { q: 'lines', first, count })
        .then(({ lines }) => {
          if (this.lines.size > kMaxKept) this.lines.clear();
          lines.forEach((line, index) => this.lines.set(first + index, line));
        })
        .catch(() => undefined) // the row stays without its text; opening a call tells the reason
        .finally(() => {
          for (let call = first; call < first + count; call++) this.asked.delete(call);
          this.onArrival();
        });
    }
  }
}
