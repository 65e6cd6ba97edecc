// How often each mistake was found. Calls are asked about one at a time, so that whatever else is wanted comes between.
import { type CallAnswer, kHasFindings } from '../engine/contract';
import { engine } from './actions';
import type { OpenFile } from './state';

export const kMaxTallied = 300; // calls

export interface TalliedMistake {
  number: number;
  wrong: string;
  advice: string;
  count: number;
}

export async function tallyFindings(
  file: OpenFile,
  signal: AbortSignal,
  tell: (found: TalliedMistake[]) => void,
): Promise<void> {
  const counts = new Map<number, number>();
  let asked = 0;
  for (let call = 0; call < file.columns.count && asked < kMaxTallied; call++) {
    if (((file.columns.flags[call] ?? 0) & kHasFindings) === 0) continue;
    asked++;
    try {
      const { findings } = await engine.ask<CallAnswer>(file.number, { q: 'call', call }, signal);
      for (const { mistake } of findings) counts.set(mistake, (counts.get(mistake) ?? 0) + 1);
    } catch {
      if (signal.aborted) return;
    }
    if (signal.aborted) return;
  }
  tell(
    file.summary.mistakes
      .map((mistake) => ({ ...mistake, count: counts.get(mistake.number) ?? 0 }))
      .filter(({ count }) => count > 0),
  );
}
