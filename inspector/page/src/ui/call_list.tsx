// The list of calls: all of them, or those that the filters leave.
import type { VNode } from 'preact';
import { useRef } from 'preact/hooks';
import { kDiffers, kDraws, kHasFindings, kSkipped } from '../engine/contract';
import { clearFilter, showCall } from '../model/actions';
import { formatCount, formatTime, shortFunction } from '../model/format';
import { argumentsOf } from '../model/lines';
import { type OpenFile, activeFile, useApp } from '../model/state';
import { indexOfCall } from '../model/steps';
import { Filters } from './filters';
import { VirtualList } from './virtual_list';

const kRowHeight = 24;
const kMaxKept = 500; // drawn rows

function Marks({ flags }: { flags: number }) {
  if (flags & kDiffers) {
    return (
      <span class="mark mark-differs" title="The replay differs from the recording">
        ≠
      </span>
    );
  }
  if (flags & kHasFindings) {
    return (
      <span class="mark mark-finding" title="The checker found something">
        !
      </span>
    );
  }
  if (flags & kSkipped) {
    return (
      <span class="mark" title="Skipped: its memory was too large to be kept">
        –
      </span>
    );
  }
  return <span class="mark" />;
}

export function CallList() {
  const file = useApp(activeFile);
  const matches = useApp((state) => state.matches);
  const matchError = useApp((state) => state.matchError);
  const call = useApp((state) => state.call);
  useApp((state) => state.arrivals);
  // Preact does not look again at what it has drawn from the same object.
  const drawn = useRef(new Map<number, { file: OpenFile; line: string | undefined; row: VNode }>());
  if (!file) return null;
  const { columns, lines } = file;
  const rows = matches ? matches.length : columns.count;
  const callAt = (row: number) => (matches ? (matches[row] as number) : row);
  const near = matches ? indexOfCall(matches, call) : call;
  const selected = matches && matches[near] !== call ? -1 : near;

  const draw = (row: number) => {
    const at = callAt(row);
    const line = lines.get(at);
    const known = drawn.current.get(at);
    if (known && known.file === file && known.line === line) return known.row;
    const content = (
      <>
        <span class="row-number">{at}</span>
        <Marks flags={columns.flags[at] ?? 0} />
        <span class="row-function">{shortFunction(columns.functions[columns.function[at] ?? 0] ?? '')}</span>
        <span class="row-arguments">{line === undefined ? '' : argumentsOf(line)}</span>
        <span class="row-time">{formatTime(columns.ns[at] ?? 0)}</span>
      </>
    );
    if (drawn.current.size >= kMaxKept) drawn.current.clear();
    drawn.current.set(at, { file, line, row: content });
    return content;
  };

  return (
    <section class="calls" aria-label="Calls">
      <Filters />
      <div class="list-head">
        <span>
          {matches ? (
            <>
              <b data-test="matches">{formatCount(matches.length)}</b> of {formatCount(columns.count)} calls
            </>
          ) : (
            <>
              <b data-test="matches">{formatCount(columns.count)}</b> calls
            </>
          )}
        </span>
        {matches && (
          <button type="button" class="link" onClick={clearFilter}>
            Show all
          </button>
        )}
      </div>
      {matchError && (
        <p class="notice notice-bad" role="alert">
          {matchError}
        </p>
      )}
      {rows === 0 ? (
        <div class="empty">
          <p>{columns.count === 0 ? 'This file holds no calls.' : 'No call matches all filters.'}</p>
        </div>
      ) : (
        <VirtualList
          label="List of calls"
          rows={rows}
          rowHeight={kRowHeight}
          selected={selected}
          idOf={(row) => `call-${callAt(row)}`}
          classOf={(row) => ((columns.flags[callAt(row)] ?? 0) & kDraws ? 'row-draws' : '')}
          draw={draw}
          onSight={(first, count) => lines.want(Array.from({ length: count }, (_, index) => callAt(first + index)))}
          onSelect={(row) => showCall(callAt(row))}
        />
      )}
    </section>
  );
}
