// A list of any length that draws only the rows in sight.
import type { ComponentChildren } from 'preact';
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks';
import { scrollTo, windowAt } from './list_window';

interface Props {
  label: string;
  rows: number;
  rowHeight: number;
  selected: number; // -1: none
  idOf: (row: number) => string;
  draw: (row: number) => ComponentChildren;
  classOf: (row: number) => string;
  onSight: (first: number, count: number) => void;
  onSelect: (row: number) => void;
}

export function VirtualList(props: Props) {
  const { rows, rowHeight, selected } = props;
  const box = useRef<HTMLDivElement>(null);
  const [scroll, setScroll] = useState(0);
  // The same as scroll. To ask the element for it makes the browser compute its layout.
  const scrolled = useRef(0);
  const moveTo = (position: number) => {
    scrolled.current = position;
    setScroll(position);
  };
  const [height, setHeight] = useState(600);

  useEffect(() => {
    const element = box.current;
    if (!element) return;
    const observer = new ResizeObserver(() => setHeight(element.clientHeight));
    observer.observe(element);
    return () => observer.disconnect();
  }, []);

  useLayoutEffect(() => {
    const element = box.current;
    if (!element || selected < 0) return;
    const target = scrollTo(selected, scrolled.current, rows, rowHeight, height);
    if (Math.abs(target - scrolled.current) < 1) return;
    element.scrollTop = target;
    moveTo(element.scrollTop);
  }, [selected, rows, height]);

  const shown = windowAt(Math.min(scroll, Math.max(0, rows * rowHeight - height)), rows, rowHeight, height);
  useEffect(() => props.onSight(shown.first, shown.count));

  const move = (event: KeyboardEvent) => {
    if (event.ctrlKey || event.metaKey || event.altKey || rows === 0) return;
    const page = Math.max(1, Math.floor(height / rowHeight) - 1);
    const by = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -rows, End: rows }[event.key];
    if (by === undefined) return;
    event.preventDefault();
    event.stopPropagation();
    props.onSelect(Math.max(0, Math.min(rows - 1, (selected < 0 ? -1 : selected) + by)));
  };

  const drawn = Array.from({ length: shown.count }, (_, index) => shown.first + index);
  return (
    <div
      ref={box}
      class="list"
      role="listbox"
      tabIndex={0}
      aria-label={props.label}
      {...(selected >= shown.first && selected < shown.first + shown.count
        ? { 'aria-activedescendant': props.idOf(selected) }
        : {})}
      onScroll={(event) => moveTo(event.currentTarget.scrollTop)}
      onKeyDown={move}
    >
      <div class="list-space" style={{ height: `${shown.height}px` }} role="presentation">
        {drawn.map((row, index) => (
          <div
            key={row}
            id={props.idOf(row)}
            class={`row ${props.classOf(row)}`}
            style={{ height: `${rowHeight}px`, top: `${shown.top + index * rowHeight}px` }}
            role="option"
            aria-selected={row === selected}
            aria-posinset={row + 1}
            aria-setsize={rows}
            onClick={() => props.onSelect(row)}
          >
            {props.draw(row)}
          </div>
        ))}
      </div>
    </div>
  );
}
