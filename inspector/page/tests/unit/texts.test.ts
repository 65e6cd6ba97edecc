// What people type and read: filters, codes, colors, addresses, numbers.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { codeName, parseCode } from '../../src/model/codes';
import { isEmpty, kNoFilter, parseColor, parseRect, questionOf } from '../../src/model/filter';
import { cssOfBand, formatBytes, formatTime, sentence } from '../../src/model/format';
import { formatPlace, parsePlace } from '../../src/model/hash';
import { heatColor, heatPixels, heatShare, heatValue } from '../../src/view/heat';

test('raster codes by name and by number', () => {
  assert.equal(parseCode('srccopy'), 0x00cc0020);
  assert.equal(parseCode(' R2_COPYPEN '), 13);
  assert.equal(parseCode('0x00B8074A'), 0x00b8074a);
  assert.equal(parseCode('13'), 13);
  for (const text of ['', 'SRC', '0x', '99999999999', '-1', '1.5']) assert.equal(parseCode(text), null, text);
  assert.equal(codeName(0x00f00021), 'PATCOPY');
  assert.equal(codeName(1), 'R2_BLACK');
  assert.equal(codeName(0xb8074a), '0x00B8074A');
});

test('colors', () => {
  assert.equal(parseColor('#1F4e79'), '#1f4e79');
  assert.equal(parseColor('fc0'), '#ffcc00');
  for (const text of ['', '#12', '#12345', 'red']) assert.equal(parseColor(text), null, text);
  assert.equal(cssOfBand([0x79, 0x4e, 0x1f]), 'rgb(31 78 121)');
  assert.equal(cssOfBand([128]), 'rgb(128 128 128)');
  assert.equal(formatBytes([0x0a, 255, 0]), '0A FF 00');
});

test('rectangles', () => {
  assert.deepEqual(parseRect('1, 2,30 40'), [1, 2, 30, 40]);
  assert.deepEqual(parseRect('-5,-5,0,0'), [-5, -5, 0, 0]);
  for (const text of ['', '1,2,3', '1,2,1,9', '4,3,2,1', '1,2,3.5,9', 'a,b,c,d', '1,2,3,4,5']) {
    assert.equal(parseRect(text), null, text);
  }
});

test('a filter becomes a question, without what is not complete', () => {
  assert.ok(isEmpty(kNoFilter));
  assert.ok(isEmpty({ ...kNoFilter, text: '  ', code: 'SRC', color: '#12' }));
  assert.ok(!isEmpty({ ...kNoFilter, functions: [3] }));
  assert.deepEqual(
    questionOf({ ...kNoFilter, text: ' abc ', functions: [8], code: 'PATCOPY', color: '#12', findings: true }),
    {
      q: 'find',
      text: 'abc',
      function: [8],
      device: null,
      page: null,
      rect: null,
      color: null,
      rop: 0x00f00021,
      findings: true,
    },
  );
});

test('the address keeps the place', () => {
  const place = { file: 1, page: 2, call: 4711, pixel: { x: 12, y: 34 }, camera: { scale: 8, x: 100.5, y: -3 } };
  assert.equal(formatPlace(place), '#file=1&page=2&call=4711&view=8,100.5,-3&pixel=12,34');
  assert.deepEqual(parsePlace(formatPlace(place)), place);
  const nothing = { file: 0, page: null, call: null, pixel: null, camera: null };
  assert.deepEqual(parsePlace(''), nothing);
  assert.deepEqual(parsePlace('#call=x&page=1e9&pixel=1&view=0,1,2&view=,,'), nothing);
});

test('times have three digits', () => {
  assert.deepEqual([0, 999, 1500, 12_345_678, 2e9].map(formatTime), ['0 ns', '999 ns', '1.50 µs', '12.3 ms', '2.00 s']);
});

test('errors are sentences', () => {
  assert.equal(sentence('offset 12: the block is cut off'), 'Offset 12: the block is cut off.');
  assert.equal(sentence('It failed!'), 'It failed!');
  assert.equal(sentence(' '), 'Something failed, and no reason was given.');
});

test('heat maps: both ends of the scale, and nothing where nothing was painted', () => {
  assert.deepEqual(heatColor(0), [40, 11, 84]);
  assert.deepEqual(heatColor(1), [252, 255, 164]);
  assert.equal(heatShare('time', 25, 100), 0.5);
  assert.equal(heatShare('overdraw', 25, 100), 0.25);
  assert.equal(heatShare('time', 0, 0), 0);
  for (const what of ['time', 'overdraw'] as const) assert.equal(heatShare(what, heatValue(what, 0.5, 80), 80), 0.5);
  assert.deepEqual([...heatPixels('overdraw', new Float32Array([0, 2]), 2)], [0, 0, 0, 0, 252, 255, 164, 255]);
});
