// The rows of a long list that are in sight.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { kMaxHeight, scrollTo, windowAt } from '../../src/ui/list_window';

test('rows in sight and some beyond', () => {
  assert.deepEqual(windowAt(0, 50_000, 24, 480), { height: 1_200_000, first: 0, count: 26, top: 0 });
  assert.deepEqual(windowAt(2400, 50_000, 24, 480), { height: 1_200_000, first: 94, count: 32, top: 94 * 24 });
  assert.deepEqual(windowAt(0, 3, 24, 480), { height: 72, first: 0, count: 3, top: 0 });
  assert.equal(windowAt(0, 0, 24, 480).count, 0);
});

test('a list that is too high for a browser reaches its first and its last row', () => {
  const rows = 2_000_000;
  const start = windowAt(0, rows, 24, 480);
  assert.equal(start.height, kMaxHeight);
  assert.equal(start.first, 0);
  const end = windowAt(kMaxHeight - 480, rows, 24, 480);
  assert.equal(end.first + end.count, rows);
  // The last row ends at the lower edge of the view.
  assert.equal(end.top + (rows - end.first) * 24, kMaxHeight);
});

test('scrolling to a row moves as little as needed', () => {
  assert.equal(scrollTo(5, 0, 50_000, 24, 480), 0);
  assert.equal(scrollTo(20, 0, 50_000, 24, 480), 24);
  assert.equal(scrollTo(99, 2400, 50_000, 24, 480), 99 * 24);
  assert.equal(scrollTo(10_000, 0, 50_000, 24, 480), (10_000 - 10) * 24);
  assert.equal(scrollTo(49_999, 0, 50_000, 24, 480), (50_000 - 20) * 24);
});

test('scrolling to a row of a list that is too high brings it into the window', () => {
  const rows = 2_000_000;
  for (const row of [0, 999_999, 1_999_999]) {
    const scroll = scrollTo(row, 0, rows, 24, 480);
    const { first, count } = windowAt(scroll, rows, 24, 480);
    assert.ok(row >= first && row < first + count, `${row} in ${first} + ${count}`);
  }
});
