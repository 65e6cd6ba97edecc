// The filters above the list of calls.
import { useEffect, useMemo, useRef, useState } from 'preact/hooks';
import { setFilter, setFilterRect } from '../model/actions';
import { codeName } from '../model/codes';
import { kNoDetail } from '../model/columns';
import { parseColor, parseRect } from '../model/filter';
import { formatCount, shortFunction } from '../model/format';
import { type OpenFile, activeFile, store, useApp } from '../model/state';

// How many calls each function has, and which operations occur, most frequent first.
function tallyOf(file: OpenFile): { functions: number[]; codes: number[] } {
  const functions = new Array<number>(file.columns.functions.length).fill(0);
  const codes = new Map<number, number>();
  for (let i = 0; i < file.columns.count; i++) {
    const name = file.columns.function[i] as number;
    functions[name] = (functions[name] ?? 0) + 1;
    const code = file.columns.detail[i] as number;
    if (code !== kNoDetail) codes.set(code, (codes.get(code) ?? 0) + 1);
  }
  return { functions, codes: [...codes].sort((a, b) => b[1] - a[1]).map(([code]) => code) };
}

function FunctionFilter({ file, counts }: { file: OpenFile; counts: number[] }) {
  const chosen = useApp((state) => state.filter.functions);
  const box = useRef<HTMLDetailsElement>(null);
  // Like a menu, it closes when something else is used.
  useEffect(() => {
    const close = (event: Event) => {
      if (box.current && !box.current.contains(event.target as Node)) box.current.open = false;
    };
    document.addEventListener('pointerdown', close);
    document.addEventListener('focusin', close);
    return () => {
      document.removeEventListener('pointerdown', close);
      document.removeEventListener('focusin', close);
    };
  }, []);
  const names = file.columns.functions;
  const label =
    chosen.length === 0
      ? 'All functions'
      : chosen.length === 1
        ? shortFunction(names[chosen[0] as number] ?? '')
        : `${chosen.length} functions`;
  return (
    <details class="menu" ref={box}>
      <summary data-on={chosen.length > 0}>{label}</summary>
      <div
        class="menu-body"
        onKeyDown={(event) => {
          if (event.key !== 'Escape' || !box.current) return;
          event.stopPropagation();
          box.current.open = false;
          box.current.querySelector('summary')?.focus();
        }}
      >
        {names.map((name, index) => {
          const count = counts[index] ?? 0;
          if (count === 0) return null;
          return (
            <label key={name} class="check">
              <input
                type="checkbox"
                name={name}
                checked={chosen.includes(index)}
                onChange={(event) =>
                  setFilter({
                    functions: event.currentTarget.checked
                      ? [...chosen, index].sort((a, b) => a - b)
                      : chosen.filter((other) => other !== index),
                  })
                }
              />
              <span>{shortFunction(name)}</span>
              <span class="count">{formatCount(count)}</span>
            </label>
          );
        })}
      </div>
    </details>
  );
}

// Shows the rectangle, takes one that is typed, and starts drawing one.
function RectFilter() {
  const rect = useApp((state) => state.filter.rect);
  const isDrawing = useApp((state) => state.isDrawingRect);
  const hasPage = useApp((state) => state.page >= 0);
  const [typed, setTyped] = useState<string | null>(null);
  const text = typed ?? (rect ? rect.join(', ') : '');
  const isBad = typed !== null && typed.trim() !== '' && !parseRect(typed);
  return (
    <div class="field-with-button">
      <input
        class="mono"
        aria-label="Rectangle on the page: left, top, right, bottom"
        placeholder="left, top, right, bottom"
        value={text}
        aria-invalid={isBad}
        data-on={rect !== null}
        onInput={(event) => {
          setTyped(event.currentTarget.value);
          const parsed = parseRect(event.currentTarget.value);
          if (parsed || event.currentTarget.value.trim() === '') setFilterRect(parsed);
        }}
        onBlur={() => setTyped(null)}
      />
      <button
        type="button"
        aria-pressed={isDrawing}
        disabled={!hasPage}
        title="Draw a rectangle on the page (r)"
        onClick={() => store.set({ isDrawingRect: !store.state.isDrawingRect })}
      >
        Draw
      </button>
    </div>
  );
}

export function Filters() {
  const file = useApp(activeFile);
  const filter = useApp((state) => state.filter);
  const tally = useMemo(() => (file ? tallyOf(file) : null), [file]);
  if (!file || !tally) return null;
  const { summary } = file;
  const numberOf = (text: string) => (text === '' ? null : Number(text));
  const color = parseColor(filter.color);
  return (
    <form class="filters" role="search" onSubmit={(event) => event.preventDefault()}>
      <input
        id="search"
        type="search"
        placeholder="Search in calls ( / )"
        aria-label="Search in the text of calls"
        value={filter.text}
        data-on={filter.text.trim() !== ''}
        onInput={(event) => setFilter({ text: event.currentTarget.value })}
      />
      <div class="filter-grid">
        <FunctionFilter file={file} counts={tally.functions} />
        <input
          class="mono"
          list="codes"
          placeholder="Raster code"
          aria-label="Raster code or binary operation"
          value={filter.code}
          data-on={filter.code !== ''}
          onInput={(event) => setFilter({ code: event.currentTarget.value })}
        />
        <datalist id="codes">
          {tally.codes.slice(0, 100).map((code) => (
            <option key={code} value={codeName(code)} />
          ))}
        </datalist>
        <div class="color-field">
          <i class="swatch" data-empty={color === null} style={color ? { background: color } : {}} />
          <input
            class="mono"
            placeholder="#rrggbb"
            aria-label="Color, red green blue"
            maxLength={7}
            value={filter.color}
            aria-invalid={filter.color.trim() !== '' && color === null}
            data-on={color !== null}
            onInput={(event) => setFilter({ color: event.currentTarget.value })}
          />
        </div>
        <select
          aria-label="Device"
          value={filter.device ?? ''}
          data-on={filter.device !== null}
          onChange={(event) => setFilter({ device: numberOf(event.currentTarget.value) })}
        >
          <option value="">All devices</option>
          {summary.devices.map(({ number }) => (
            <option key={number} value={number}>
              Device {number}
            </option>
          ))}
        </select>
        <select
          aria-label="Page"
          value={filter.page ?? ''}
          data-on={filter.page !== null}
          onChange={(event) => setFilter({ page: numberOf(event.currentTarget.value), rect: null })}
        >
          <option value="">All pages</option>
          {summary.pages.map(({ page }) => (
            <option key={page} value={page}>
              Page {page + 1}
            </option>
          ))}
        </select>
        <label class="check" data-on={filter.findings}>
          <input
            type="checkbox"
            name="findings"
            checked={filter.findings}
            onChange={(event) => setFilter({ findings: event.currentTarget.checked })}
          />
          <span>Findings</span>
        </label>
      </div>
      <RectFilter />
    </form>
  );
}
