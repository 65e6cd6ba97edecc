// The order of requests to the engine.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import type { Job } from '../../src/engine/messages';
import { RequestQueue } from '../../src/engine/queue';

const call = (number: number): Job => ({ kind: 'ask', file: 0, question: { q: 'call', call: number } });
const page = (number: number): Job => ({
  kind: 'draw',
  file: 0,
  question: {
    d: 'page',
    page: 0,
    call: number,
    plane: 'color',
    left: 0,
    top: 0,
    width: 8,
    height: 8,
    columns: 8,
    rows: 8,
  },
});
const change = (number: number): Job => ({
  kind: 'draw',
  file: 0,
  question: { d: 'change', call: number, which: 'after' },
});

// Sends what may be sent, as the client does.
function send(queue: RequestQueue<{ job: Job }>, inFlight: { job: Job }[]): Job[] {
  const sent: Job[] = [];
  for (let request = queue.take(inFlight); request; request = queue.take(inFlight)) {
    inFlight.push(request);
    sent.push(request.job);
  }
  return sent;
}

function queueOf(...jobs: Job[]): RequestQueue<{ job: Job }> {
  const queue = new RequestQueue<{ job: Job }>();
  for (const job of jobs) queue.add({ job });
  return queue;
}

test('two requests are at the worker, in their order', () => {
  const inFlight: { job: Job }[] = [];
  const queue = queueOf(call(1), page(1), call(2));
  assert.deepEqual(send(queue, inFlight), [call(1), page(1)]);
  inFlight.shift();
  assert.deepEqual(send(queue, inFlight), [call(2)]);
});

test('small pictures come after everything else, four together', () => {
  const inFlight: { job: Job }[] = [];
  const queue = queueOf(change(1), change(2), call(1), change(3), page(1), change(4), change(5));
  assert.deepEqual(send(queue, inFlight), [call(1), page(1)]);
  inFlight.shift();
  assert.deepEqual(send(queue, inFlight), []); // the page is still computed
  inFlight.shift();
  assert.deepEqual(send(queue, inFlight), [change(1), change(2), change(3), change(4)]);
  inFlight.shift();
  assert.deepEqual(send(queue, inFlight), [change(5)]);
});

test('the next call does not wait for pictures of the one before', () => {
  const inFlight: { job: Job }[] = [];
  const queue = queueOf(change(1), change(2), change(3), change(4));
  send(queue, inFlight);
  assert.equal(inFlight.length, 4);
  queue.add({ job: call(2) });
  queue.add({ job: page(2) });
  assert.deepEqual(send(queue, inFlight), [call(2), page(2)]);
});

test('all that waits can be taken at once', () => {
  const queue = queueOf(call(1), change(1));
  assert.deepEqual(
    queue.takeAll().map(({ job }) => job),
    [call(1), change(1)],
  );
  assert.equal(queue.take([]), undefined);
});
