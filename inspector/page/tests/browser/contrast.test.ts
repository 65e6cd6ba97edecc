// axe-core finds nothing wrong with any part of the page, light and dark.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { Session, closeBrowser, writePage } from '../support/browser';
import { kChanged, kMistakes, kOverlapping } from '../support/hosts';
import { recordHost, recordPrint, recorded } from '../support/tool';

const axe = readFileSync(
  createRequire(`${process.env['INSPECTOR_PAGE']}/package.json`).resolve('axe-core/axe.min.js'),
  'utf8',
);
const kSmallPage = ['--paper', '60x40mm', '--dpi', '72', '--margin', '2', '--no-header'];
let pages: Record<string, string> = {};

before(() => {
  const first = recordPrint('first', kOverlapping, kSmallPage);
  const second = recordPrint('second', kChanged, kSmallPage);
  pages = {
    dual: writePage('dual-axe.html', [recorded('dual.qnv')]),
    mistakes: writePage('mistakes-axe.html', [recordHost('mistakes-axe', kMistakes)]),
    two: writePage('two-axe.html', [first, second]),
    none: writePage('none-axe.html', []),
  };
});
after(closeBrowser);

interface Violation {
  id: string;
  nodes: { target: string[]; failureSummary: string }[];
}

async function violations(session: Session): Promise<string[]> {
  if (!(await session.page.evaluate(() => 'axe' in window))) await session.page.evaluate(axe);
  const found = await session.page.evaluate(
    async () =>
      (await (window as unknown as { axe: { run(): Promise<{ violations: Violation[] }> } }).axe.run()).violations,
  );
  return found.flatMap(({ id, nodes }) =>
    nodes.slice(0, 3).map((node) => `${id}: ${node.target.join(' ')}: ${node.failureSummary.replace(/\s+/g, ' ')}`),
  );
}

// Keys that are pressed one after the other, and what is looked at after each group of them.
const kLooks: readonly { page: string; steps: readonly { what: string; keys: readonly string[] }[] }[] = [
  {
    page: 'dual',
    steps: [
      { what: 'no pixel', keys: ['2'] },
      { what: 'a call, tags, heat map', keys: ['1', ']', ',', 't', 'h'] },
      { what: 'a pixel', keys: ['v', 'ArrowDown', 'Enter'] },
      { what: 'costs', keys: ['3'] },
      { what: 'keys', keys: ['?'] },
    ],
  },
  {
    page: 'mistakes',
    steps: [
      { what: 'a finding', keys: ['1', 'Home', 'f'] },
      { what: 'file', keys: ['5'] },
    ],
  },
  { page: 'two', steps: [{ what: 'comparison', keys: ['d'] }] },
  { page: 'none', steps: [{ what: 'no file', keys: [] }] },
];

for (const theme of ['light', 'dark'] as const) {
  test(`no violations, ${theme}`, { timeout: 90_000 }, async () => {
    for (const { page, steps } of kLooks) {
      const session = await Session.open(pages[page] as string, { theme });
      if (page !== 'none') await session.ready();
      for (const { what, keys } of steps) {
        for (const key of keys) await session.page.keyboard.press(key as 'Enter');
        await new Promise((resolve) => setTimeout(resolve, 200));
        assert.deepEqual(await violations(session), [], `${theme}: ${what}`);
      }
      assert.deepEqual(session.complaints, []);
      await session.close();
    }
  });
}
