// Which rows of a long list are in sight. Browsers limit the height of an element: a list that would be higher is
// scrolled through faster.

export const kMaxHeight = 8_000_000; // CSS pixels, below the limit of every browser
const kBeyond = 6; // rows drawn above and below those in sight

export interface ListWindow {
  height: number; // of the whole list
  first: number;
  count: number;
  top: number; // of row `first`
}

const heightOf = (rows: number, rowHeight: number) => Math.min(kMaxHeight, rows * rowHeight);

// Rows that lie above the scroll position, with their fraction.
function rowAt(scroll: number, rows: number, rowHeight: number, viewHeight: number): number {
  const height = heightOf(rows, rowHeight);
  if (height < kMaxHeight) return scroll / rowHeight;
  const share = Math.min(1, Math.max(0, scroll / (height - viewHeight)));
  return share * (rows - viewHeight / rowHeight);
}

export function windowAt(scroll: number, rows: number, rowHeight: number, viewHeight: number): ListWindow {
  const at = rowAt(scroll, rows, rowHeight, viewHeight);
  const first = Math.max(0, Math.floor(at) - kBeyond);
  const end = Math.min(rows, Math.ceil(at + viewHeight / rowHeight) + kBeyond);
  return {
    height: heightOf(rows, rowHeight),
    first,
    count: Math.max(0, end - first),
    top: scroll + (first - at) * rowHeight,
  };
}

// The scroll position that shows a row, with as little movement as needed; far away it goes to the middle.
export function scrollTo(row: number, scroll: number, rows: number, rowHeight: number, viewHeight: number): number {
  const at = rowAt(scroll, rows, rowHeight, viewHeight);
  const inView = viewHeight / rowHeight;
  if (row >= at && row + 1 <= at + inView) return scroll;
  const isNear = row >= at - inView / 2 && row + 1 <= at + inView * 1.5;
  const target = isNear ? (row < at ? row : row + 1 - inView) : row - inView / 2;
  const inside = Math.max(0, Math.min(rows - inView, target));
  const height = heightOf(rows, rowHeight);
  if (height < kMaxHeight) return Math.max(0, inside * rowHeight);
  return (inside / (rows - inView)) * (height - viewHeight);
}
