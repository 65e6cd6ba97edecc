// Pan and zoom.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { centered, fit, keepInSight, nextScale, rulerStep, show, zoomAt } from '../../src/view/camera';

const view = { width: 800, height: 600 };

test('a page that is larger than the view is reduced to fit, in the middle', () => {
  const page = { left: 0, top: 0, width: 4960, height: 7016 };
  const camera = fit(page, view);
  assert.equal(camera.scale, (600 - 32) / 7016);
  assert.equal(camera.x + view.width / 2 / camera.scale, 2480);
  assert.equal(camera.y + view.height / 2 / camera.scale, 3508);
});

test('a small page is enlarged by a whole number', () => {
  assert.equal(fit({ left: 10, top: 20, width: 200, height: 100 }, view).scale, 3);
  assert.equal(fit({ left: 0, top: 0, width: 4, height: 4 }, view).scale, 8);
});

test('zooming keeps the point under the pointer', () => {
  const before = { scale: 0.5, x: 100, y: 40 };
  const after = zoomAt(before, 8, 320, 200);
  assert.equal(before.x + 320 / before.scale, after.x + 320 / after.scale);
  assert.equal(before.y + 200 / before.scale, after.y + 200 / after.scale);
});

test('scales above real size are whole numbers, and both ends hold', () => {
  const scales: number[] = [];
  for (let scale = 1 / 64; scales.at(-1) !== scale; scale = nextScale(scale, 1)) scales.push(scale);
  assert.equal(scales.at(-1), 64);
  assert.deepEqual(
    scales.filter((scale) => scale >= 1),
    [1, 2, 3, 4, 6, 8, 12, 16, 24, 32, 48, 64],
  );
  assert.equal(nextScale(1 / 64, -1), 1 / 64);
  assert.equal(nextScale(5, -1), 4);
  assert.equal(nextScale(5, 1), 6);
});

test('the page cannot be moved out of sight', () => {
  const page = { left: 0, top: 0, width: 100, height: 100 };
  const far = keepInSight({ scale: 1, x: 5000, y: -5000 }, page, view);
  assert.deepEqual(far, { scale: 1, x: 52, y: 48 - 600 });
  const near = { scale: 1, x: -10, y: -10 };
  assert.deepEqual(keepInSight(near, page, view), near);
});

test('a rectangle is shown in the middle, at most 16 times as large', () => {
  assert.deepEqual(show([10, 20, 14, 22], view), centered(16, 12, 21, view));
  assert.equal(show([0, 0, 2000, 100], view).scale, 1 / 6);
});

test('marks of the ruler are 1, 2 or 5 times a power of ten, with room between them', () => {
  assert.equal(rulerStep(64), 1);
  assert.equal(rulerStep(16), 5);
  assert.equal(rulerStep(1), 100);
  assert.equal(rulerStep(0.3), 200);
});
