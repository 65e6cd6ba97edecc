// How long a page of 50,000 calls (A4 at 600 dpi) takes to open, to step through and to scroll in a running browser.
// Printed, never asserted: machines differ.
import assert from 'node:assert/strict';
import { after, test } from 'node:test';
import { Session, closeBrowser, writePage } from '../support/browser';
import { manyFigures } from '../support/hosts';
import { dump, recordPrint } from '../support/tool';

after(closeBrowser);

const median = (values: number[]) => [...values].sort((a, b) => a - b)[values.length >> 1] ?? 0;

test('50,000 calls', { timeout: 120_000 }, async (context) => {
  const file = recordPrint('many', manyFigures(7000), ['--dpi', '600']);
  const count = dump(file).length;
  assert.ok(count >= 50_000, `${count} calls`);
  const path = writePage('many.html', [file]);
  await (await Session.open(writePage('empty.html', []))).close(); // the browser is running
  const start = performance.now();
  const session = await Session.open(path);
  await session.ready();
  context.diagnostic(`${count} calls: open and painted after ${Math.round(performance.now() - start)} ms`);
  const { page } = session;
  // The time from the key to the frame in which the call is painted and told.
  const stepTimes = (key: string, times: number) =>
    page.evaluate(
      async (pressed, repeats) => {
        const canvas = document.querySelector<HTMLCanvasElement>('.picture canvas') as HTMLCanvasElement;
        const input = document.querySelector<HTMLInputElement>('#go-to') as HTMLInputElement;
        const taken: number[] = [];
        for (let i = 0; i < repeats; i++) {
          const from = performance.now();
          document.body.dispatchEvent(new KeyboardEvent('keydown', { key: pressed, bubbles: true }));
          await new Promise<void>((resolve) => {
            const panel = document.querySelector('.call-panel') as HTMLElement;
            let isDone = false;
            const look = () => {
              if (isDone || canvas.dataset['call'] !== input.value || panel.dataset['call'] !== input.value) return;
              isDone = true;
              observer.disconnect();
              resolve();
            };
            const observer = new MutationObserver(look);
            observer.observe(canvas, { attributes: true });
            observer.observe(panel, { attributes: true });
            // The number in the field may be the last to change, which no observer sees.
            const lookAgain = () => {
              if (!isDone) requestAnimationFrame(lookAgain);
              look();
            };
            requestAnimationFrame(lookAgain);
          });
          taken.push(performance.now() - from);
        }
        return taken;
      },
      key,
      times,
    );
  await page.keyboard.press('g');
  await page.keyboard.type('25000');
  await page.keyboard.press('Enter');
  await page.evaluate(() => (document.activeElement as HTMLElement).blur());
  await session.painted();
  for (const [what, key] of [
    ['next drawing call', '.'],
    ['previous drawing call', ','],
  ] as const) {
    const taken = await stepTimes(key, 30);
    context.diagnostic(`${what}: median ${median(taken).toFixed(1)} ms, longest ${Math.max(...taken).toFixed(1)} ms`);
  }
  const frames = await page.evaluate(async () => {
    const list = document.querySelector('.list') as HTMLElement;
    list.scrollTop = 0;
    const taken: number[] = [];
    let last = performance.now();
    for (let i = 0; i < 120; i++) {
      list.scrollTop += 400;
      await new Promise((resolve) => requestAnimationFrame(resolve));
      const now = performance.now();
      taken.push(now - last);
      last = now;
    }
    return taken;
  });
  context.diagnostic(
    `scrolling: median ${median(frames).toFixed(1)} ms a frame, longest ${Math.max(...frames).toFixed(1)} ms`,
  );
  assert.deepEqual(session.complaints, []);
  await session.close();
});
