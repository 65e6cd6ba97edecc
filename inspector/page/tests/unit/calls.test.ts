// Columns, steps, texts of calls.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { kDiffers, kDraws, kHasFindings } from '../../src/engine/contract';
import { decodeCalls, decodeColumns, decodeFloats } from '../../src/model/columns';
import { LineCache, argumentsOf, runsOf } from '../../src/model/lines';
import { indexOfCall, lastPainting, nextStop } from '../../src/model/steps';
import { StandIn } from '../support/stand_in';

const base64 = (array: { buffer: ArrayBufferLike }) => Buffer.from(array.buffer).toString('base64');

// Calls 0 and 1 on no page, 2 to 4 in band 0, 5 and 6 in band 1 of page 0, 7 on page 1.
const columns = decodeColumns({
  functions: ['QNVColorInfo', 'QNVControl'],
  function: base64(new Uint8Array([0, 0, 1, 1, 1, 1, 1, 1])),
  device: base64(new Uint16Array([0, 0, 1, 1, 1, 1, 1, 300])),
  page: base64(new Int16Array([-1, -1, 0, 0, 0, 0, 0, 1])),
  band: base64(new Uint16Array([0, 0, 0, 0, 0, 1, 1, 0])),
  ns: base64(new Uint32Array([1, 2, 3, 4, 5, 6, 7, 4_000_000_000])),
  result: base64(new Uint32Array([0, 0, 0, 0, 0, 0, 0, 0xfffffffe])),
  flags: base64(new Uint8Array([0, 0, 0, kDraws, kHasFindings, kDraws, kDiffers, kDraws])),
  detail: base64(new Uint32Array([0xffffffff, 0, 0, 0, 0, 0, 0, 0x00cc0020])),
});

test('columns are decoded as little-endian numbers', () => {
  assert.equal(columns.count, 8);
  assert.equal(columns.device[7], 300);
  assert.deepEqual([...columns.page], [-1, -1, 0, 0, 0, 0, 0, 1]);
  assert.equal(columns.ns[7], 4_000_000_000);
  assert.equal(columns.result[7], 0xfffffffe);
  assert.equal(columns.detail[7], 0x00cc0020);
  assert.deepEqual([...decodeCalls(base64(new Uint32Array([3, 70_000])))], [3, 70_000]);
  assert.deepEqual([...decodeFloats(base64(new Float32Array([0.5, -2])))], [0.5, -2]);
});

test('steps stop at the next call of the kind', () => {
  const cases = [
    { unit: 'call', from: 0, by: 1, to: 1 },
    { unit: 'call', from: 0, by: -1, to: null },
    { unit: 'call', from: 7, by: 1, to: null },
    { unit: 'drawing', from: 0, by: 1, to: 3 },
    { unit: 'drawing', from: 3, by: 1, to: 5 },
    { unit: 'drawing', from: 5, by: -1, to: 3 },
    { unit: 'drawing', from: 3, by: -1, to: null },
    { unit: 'band', from: 0, by: 1, to: 4 },
    { unit: 'band', from: 4, by: 1, to: 6 },
    { unit: 'band', from: 6, by: 1, to: 7 },
    { unit: 'finding', from: 0, by: 1, to: 4 },
    { unit: 'finding', from: 4, by: 1, to: 6 },
    { unit: 'finding', from: 6, by: 1, to: null },
  ] as const;
  for (const { unit, from, by, to } of cases) {
    assert.equal(nextStop(columns, from, by, unit), to, `${unit} from ${from} by ${by}`);
  }
});

test('steps stay within the calls of a page', () => {
  assert.equal(nextStop(columns, 6, 1, 'drawing', 2, 6), null);
  assert.equal(nextStop(columns, 2, -1, 'call', 2, 6), null);
});

test('calls that paint nothing do not make another picture', () => {
  assert.deepEqual(
    [0, 1, 2].map((call) => lastPainting(columns, call)),
    [-1, -1, 2],
  );
});

test('a call is found among others, or the one after it', () => {
  const calls = new Uint32Array([2, 5, 9]);
  assert.deepEqual(
    [0, 2, 3, 5, 9, 10].map((call) => indexOfCall(calls, call)),
    [0, 0, 1, 1, 2, 3],
  );
});

test('the list shows the arguments of a line', () => {
  assert.equal(argumentsOf('17 QNVPixel(device=1, clip=(0, 1)) = 0x0 [90 ns]'), 'clip=(0, 1) = 0x0');
  assert.equal(argumentsOf('3 QNVDisable(device=1) [5 ns]'), '');
  assert.equal(argumentsOf('0 QNVEnable(description=kind 1) = device 1 [5 ns]'), 'description=kind 1 = device 1');
  assert.equal(argumentsOf('cut off'), 'cut off');
});

test('calls that are close are asked for together', () => {
  assert.deepEqual(runsOf([9, 3, 4, 5, 400]), [
    [3, 7],
    [400, 1],
  ]);
  assert.deepEqual(runsOf([]), []);
});

test('every line is asked for once, and told when it is there', async () => {
  const engine = new StandIn();
  let arrivals = 0;
  const lines = new LineCache(engine, 0, 60, () => arrivals++);
  lines.want([10, 11, 12]);
  lines.want([11, 12]);
  assert.equal(lines.get(10), undefined);
  await new Promise((resolve) => setTimeout(resolve));
  assert.equal(arrivals, 1);
  assert.equal(lines.get(12), '12 QNVPixel(x=1) = 0x0 [90 ns]');
  lines.want([10, 11, 12]);
  // The whole list is shown: its neighbours are asked for at the same time.
  assert.deepEqual(engine.asked, [{ q: 'lines', first: 0, count: 60 }]);
  const filtered = new LineCache(engine, 0, 60, () => arrivals++);
  filtered.want([10, 40]);
  assert.deepEqual(engine.asked.slice(1), [
    { q: 'lines', first: 10, count: 1 },
    { q: 'lines', first: 40, count: 1 },
  ]);
});
