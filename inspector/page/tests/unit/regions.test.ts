// The part of a page that is drawn for a view.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { partInSight } from '../../src/view/regions';

const page = { left: 100, top: 0, width: 3000, height: 2000 };
const view = { width: 800, height: 600 };

test('edges are rounded outwards, and cut to the page', () => {
  const cases = [
    { camera: { scale: 1, x: 100, y: 0 }, part: [100, 0, 1024, 768, 0] },
    { camera: { scale: 1, x: 400, y: 300 }, part: [356, 256, 1024, 768, 0] },
    { camera: { scale: 16, x: 420, y: 310 }, part: [356, 256, 256, 256, 0] },
    { camera: { scale: 0.25, x: 50, y: -100 }, part: [100, 0, 3000, 2000, 2] },
    { camera: { scale: 1, x: 2900, y: 1800 }, part: [2916 - 256, 1792, 440, 208, 0] },
  ];
  for (const { camera, part } of cases) {
    const { left, top, width, height, level } = partInSight(camera, page, view, 1) ?? assert.fail('in sight');
    assert.deepEqual([left, top, width, height, level], part, JSON.stringify(camera));
  }
});

test('a small movement needs nothing new', () => {
  const camera = { scale: 2, x: 700, y: 500 };
  assert.deepEqual(partInSight({ ...camera, x: 710 }, page, view, 1), partInSight(camera, page, view, 1));
});

test('screens with more pixels get less reduced pictures', () => {
  const camera = { scale: 0.5, x: 100, y: 0 };
  assert.equal(partInSight(camera, page, view, 1)?.level, 1);
  assert.equal(partInSight(camera, page, view, 2)?.level, 0);
});

test('beside the page there is nothing to draw', () => {
  assert.equal(partInSight({ scale: 1, x: 3200, y: 0 }, page, view, 1), null);
  assert.equal(partInSight({ scale: 1, x: -900, y: 0 }, page, view, 1), null);
});
