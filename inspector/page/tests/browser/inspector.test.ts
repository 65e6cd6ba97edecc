// The page with its engine in a browser, compared with what the command line tool says about the same files.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { Session, closeBrowser, writePage } from '../support/browser';
import { kChanged, kMistakes, kOverlapping } from '../support/hosts';
import { dump, inWork, readPlane, recordHost, recordPrint, recorded, render, serve, tool } from '../support/tool';

const kSmallPage = ['--paper', '60x40mm', '--dpi', '72', '--margin', '2', '--no-header', '--band-rows', '64'];
const kDual = recorded('dual.qnv');

let figures = '';
let changed = '';
let mistakes = '';
const pages: Record<string, string> = {};

before(() => {
  figures = recordPrint('figures', kOverlapping, kSmallPage);
  changed = recordPrint('changed', kChanged, kSmallPage);
  mistakes = recordHost('mistakes', kMistakes);
  pages['dual'] = writePage('dual.html', [kDual]);
  pages['figures'] = writePage('figures.html', [figures]);
  pages['mistakes'] = writePage('mistakes.html', [mistakes]);
  pages['two'] = writePage('two.html', [figures, changed]);
  pages['none'] = writePage('none.html', []);
});
after(closeBrowser);

// A test with a page of its own, on which nothing may be reported and nothing fetched.
function browserTest(
  name: string,
  page: string,
  run: (session: Session) => Promise<void>,
  options: { hash?: string; theme?: 'light' | 'dark'; complaints?: RegExp } = {},
): void {
  test(name, { timeout: 60_000 }, async () => {
    const session = await Session.open(pages[page] as string, options);
    try {
      if (page !== 'none') await session.ready();
      await run(session);
      assert.deepEqual(
        session.complaints.filter((text) => !options.complaints?.test(text)),
        [],
      );
    } finally {
      await session.close();
    }
  });
}

const matches = async (session: Session) => Number((await session.text('[data-test=matches]')).replaceAll(',', ''));

async function until(what: string, condition: () => Promise<boolean>): Promise<void> {
  for (let i = 0; i < 400; i++) {
    if (await condition()) return;
    await new Promise((resolve) => setTimeout(resolve, 10));
  }
  assert.fail(`never: ${what}`);
}

const untilMatches = (session: Session, count: number) =>
  until(`${count} calls in the list`, async () => (await matches(session)) === count);

browserTest('a recorded page opens complete, pixel by pixel as the tool renders it', 'figures', async (session) => {
  const expected = render(figures);
  assert.equal(await matches(session), dump(figures).length);
  await session.press('z'); // one to one
  await session.press('G', 'o');
  const places: [number, number][] = [];
  for (let y = 0; y < expected.height; y++) for (let x = 0; x < expected.width; x++) places.push([x, y]);
  const shown = await session.shown(places);
  places.forEach(([x, y], index) => assert.deepEqual(shown[index], expected.at(x, y), `pixel ${x}, ${y}`));
});

browserTest('filters and search give the calls that the tool lists', 'dual', async (session) => {
  const { page } = session;
  const all = dump(kDual);
  const count = (test: (text: string) => boolean) =>
    tool(['dump', kDual])
      .split('\n')
      .filter((line) => line !== '' && test(line.toLowerCase())).length;
  await session.press('/');
  await page.keyboard.type('HS_cross');
  const found = count((line) => line.includes('hs_cross'));
  assert.ok(found > 0);
  await untilMatches(session, found);
  await page.click('.list-head .link');
  await untilMatches(session, all.length);

  await page.click('.menu summary');
  await page.click('input[name=QNVDevExtTextOut]');
  const texts = all.filter((call) => call.function === 'QNVDevExtTextOut');
  await untilMatches(session, texts.length);
  await page.click('input[name=QNVStretchDIBits]');
  await untilMatches(session, texts.length + all.filter((call) => call.function === 'QNVStretchDIBits').length);
  await page.click('.list-head .link');
  await untilMatches(session, all.length);

  // The calls with the device, and the one that made it.
  await page.select('select[aria-label=Device]', '1');
  const made = all.filter((call) => call.function === 'QNVEnable');
  await untilMatches(session, dump(kDual, ['--device', '1']).length + made.length);
  await page.click('.list-head .link');

  await untilMatches(session, all.length);
  await page.type('input[aria-label^="Raster code"]', 'SRCCOPY');
  await untilMatches(session, dump(kDual, ['--rop', 'SRCCOPY']).length);
  await page.click('.list-head .link');

  // Records hold blue, green, red from the highest byte on; people write red first.
  await untilMatches(session, all.length);
  await page.type('input[aria-label^="Color"]', '#1f4e79');
  const colored = dump(kDual, ['--color', '0x794e1f']).map(({ call }) => call);
  assert.ok(colored.length > 0);
  await untilMatches(session, colored.length);
  await page.$eval('.list', (list) => (list.scrollTop = 0));
  await until('the first of them', async () => (await session.texts('.row .row-number'))[0] === String(colored[0]));
  const numbers = (await session.texts('.row .row-number')).map(Number);
  assert.deepEqual(numbers, colored.slice(0, numbers.length));
});

browserTest('a rectangle on the page leaves the calls that change something in it', 'figures', async (session) => {
  const { page } = session;
  await session.press('z');
  await page.keyboard.press('r');
  const from = await session.screenPlace(55, 50);
  const to = await session.screenPlace(64, 58);
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.mouse.move(to.x, to.y, { steps: 3 });
  await page.mouse.up();
  const field = 'input[aria-label^="Rectangle"]';
  assert.equal(await page.$eval(field, (input) => (input as HTMLInputElement).value), '55, 50, 65, 59');
  await until('fewer calls', async () => (await matches(session)) < dump(figures).length);
  const listed = new Set((await session.texts('.row .row-number')).map(Number));
  assert.equal(listed.size, await matches(session));
  // Each call whose picture differs from the one before it inside the rectangle has to be listed.
  const calls = dump(figures);
  let before = '';
  let changing = 0;
  calls.forEach((call) => {
    if (!/Output|BitBlt|Text/.test(call.function)) return;
    const picture = render(figures, { calls: call.call + 1 });
    const part: number[] = [];
    for (let y = 50; y < 59; y++) for (let x = 55; x < 65; x++) part.push(...picture.at(x, y));
    const now = part.join();
    if (before !== '' && now !== before) {
      changing++;
      assert.ok(listed.has(call.call), `call ${call.call} is listed`);
    }
    before = now;
  });
  assert.ok(changing >= 3);
});

browserTest('keys step through the calls', 'dual', async (session) => {
  const all = dump(kDual);
  const draws = (call: number) => /Output|Text|DIB|BitBlt|Pixel/.test(all[call]?.function ?? '');
  await session.press('Home');
  const first = await session.press('Home');
  assert.equal(await session.press('ArrowRight'), first + 1);
  assert.equal(await session.press('ArrowRight', 'ArrowRight'), first + 3);
  assert.equal(await session.press('ArrowLeft'), first + 2);
  const drawing = await session.press('.');
  assert.equal(
    drawing,
    all.findIndex((call) => call.call > first + 2 && draws(call.call)),
  );
  assert.ok(draws(await session.press('.')));
  assert.equal(await session.press(','), drawing);
  assert.equal(await session.press('j'), drawing + 1);
  assert.equal(await session.press('k'), drawing);
  const last = await session.press('End');
  assert.ok(last > drawing);
  // Every band ends where the next one begins.
  await session.press('Home');
  const ends = [await session.press('>'), await session.press('>')];
  for (const end of ends) {
    const next = all.slice(end + 1).find((call) => call.device === 1);
    assert.equal(next?.function, 'QNVControl', `after call ${end}`);
  }
  assert.equal(await session.press('g', '1', '2', '3', 'Enter'), 123);
  assert.match(await session.text('.call-head h2'), /^123 /);
});

browserTest('every call has the arguments that the tool shows', 'figures', async (session) => {
  const calls = dump(figures);
  const lines = tool(['dump', figures]).split('\n');
  await session.press('Home');
  for (const call of calls.filter(({ function: name }) => /Output|Text/.test(name)).slice(0, 6)) {
    await session.page.click('#go-to', { clickCount: 3 });
    await session.page.keyboard.type(String(call.call));
    assert.equal(await session.press('Enter'), call.call);
    assert.match(await session.text('.call-head h2'), new RegExp(`^${call.call} ${call.function}`));
    assert.equal((await session.text('.whole-line')).trim(), lines[call.call]?.trim());
    const names = await session.page.$$eval('.arguments th', (cells) =>
      cells.map((cell) => cell.firstChild?.textContent),
    );
    for (const name of Object.keys(call)) {
      if (!['call', 'function', 'thread', 'returned', 'ns'].includes(name)) assert.ok(names.includes(name), name);
    }
  }
});

browserTest('what a call changed is what the tool renders before and after it', 'figures', async (session) => {
  const calls = dump(figures).filter((call) => call.function === 'QNVOutput');
  const { call } = calls[2] as { call: number };
  await session.page.click('#go-to', { clickCount: 3 });
  await session.page.keyboard.type(String(call));
  await session.press('Enter');
  const before = render(figures, { calls: call });
  const now = render(figures, { calls: call + 1 });
  let pixels = 0;
  const box = [Infinity, Infinity, 0, 0] as [number, number, number, number];
  for (let y = 0; y < now.height; y++) {
    for (let x = 0; x < now.width; x++) {
      if (now.at(x, y).join() === before.at(x, y).join()) continue;
      pixels++;
      box[0] = Math.min(box[0], x);
      box[1] = Math.min(box[1], y);
      box[2] = Math.max(box[2], x + 1);
      box[3] = Math.max(box[3], y + 1);
    }
  }
  assert.ok(pixels > 0);
  await until('pictures', async () => (await session.page.$$('.change-pictures canvas[style]')).length === 3);
  const text = (await session.texts('.part p')).find((part) => / in \(/.test(part)) ?? '';
  assert.match(text, new RegExp(`^${pixels.toLocaleString('en-US')} pixels? in \\(${box.join(', ')}\\)`));
});

browserTest('the slider and play move through the page', 'dual', async (session) => {
  const { page } = session;
  const last = await session.press('End');
  await session.press('s');
  assert.equal(await page.evaluate(() => document.activeElement?.id), 'slider');
  assert.equal(await session.press('ArrowLeft'), last - 1);
  const first = await session.press('Home');
  assert.ok(first < 5);
  const box = await (await page.$('.slider'))?.boundingBox();
  assert.ok(box);
  await page.mouse.click(box.x + box.width / 2, box.y + box.height / 2);
  const middle = await session.painted();
  assert.ok(Math.abs(middle - (first + last) / 2) <= 8, `${middle} is the middle of ${first} and ${last}`);
  await page.evaluate(() => (document.activeElement as HTMLElement).blur());
  await page.select('select[aria-label="Play by"]', 'drawing');
  await page.select('select[aria-label=Speed]', '100');
  await page.evaluate(() => (document.activeElement as HTMLElement).blur());
  await page.keyboard.press('Space');
  await until(
    'playing goes on',
    async () => Number(await page.$eval('#go-to', (input) => (input as HTMLInputElement).value)) > middle + 5,
  );
  await page.keyboard.press('Space');
  await until(
    'a pause',
    async () => (await page.$eval('.play', (button) => button.getAttribute('aria-label'))) === 'Play',
  );
  const paused = await session.painted();
  await new Promise((resolve) => setTimeout(resolve, 100));
  assert.equal(await session.painted(), paused);
});

browserTest(
  'a click on a pixel lists every call that changed it, with the values that the tool renders',
  'figures',
  async (session) => {
    const { page } = session;
    const calls = dump(figures);
    await session.press('z');
    const places: [number, number][] = [
      [60, 45],
      [66, 55],
      [40, 40],
      [150, 100],
    ];
    // The answer of the tool: render the page after every call, and see where the pixel changes.
    const expected = new Map(places.map((place) => [place.join(), [] as { call: number; value: number[] }[]]));
    let previous = render(figures, {
      calls: (calls.find(({ function: name }) => name === 'QNVEnable')?.call ?? 0) + 1,
    });
    for (const { call, function: name } of calls) {
      if (!/Output|Text|BitBlt/.test(name)) continue;
      const now = render(figures, { calls: call + 1 });
      for (const [x, y] of places) {
        const value = now.at(x, y);
        const isNew = value.join() !== (previous.at(x, y).join() || '255,255,255');
        if (isNew) expected.get(`${x},${y}`)?.push({ call, value });
      }
      previous = now;
    }
    for (const [x, y] of places) {
      const place = await session.screenPlace(x, y);
      await page.mouse.click(place.x, place.y);
      await until(`pixel ${x}, ${y}`, async () => {
        const title = await page.$eval(
          '.side-body',
          (body) => body.querySelector('.pixel-panel[aria-busy=false] h2')?.textContent,
        );
        return title === `Pixel ${x}, ${y}`;
      });
      const painters = await page.$$eval('.painter', (entries) =>
        entries.map((entry) => ({
          call: Number((entry as HTMLElement).dataset['call']),
          values: [...entry.querySelectorAll('.bytes')].map((bytes) => bytes.textContent ?? ''),
        })),
      );
      const drawing = painters.filter(({ call }) => calls[call]?.function !== 'QNVControl');
      const bytes = (value: number[]) =>
        [...value]
          .reverse()
          .map((byte) => byte.toString(16).toUpperCase().padStart(2, '0'))
          .join(' ');
      assert.deepEqual(
        drawing.filter(({ values }) => values[0] !== values[1]).map(({ call, values }) => `${call} ${values[1]}`),
        expected.get(`${x},${y}`)?.map(({ call, value }) => `${call} ${bytes(value)}`),
        `pixel ${x}, ${y}`,
      );
    }
    assert.ok((expected.get('60,45')?.length ?? 0) >= 3);
    // An entry leads to its call.
    const first = await session.screenPlace(60, 45);
    await page.mouse.click(first.x, first.y);
    await until('painters', async () => (await page.$$('.painter')).length > 0);
    const target = await page.$eval('.painter', (entry) => (entry as HTMLElement).dataset['call']);
    await page.click('.painter');
    assert.equal(await session.painted(), Number(target));
  },
);

browserTest(
  'zoomed to single pixels the canvas shows their colors, and the line below it their bytes',
  'figures',
  async (session) => {
    const { page } = session;
    const expected = render(figures);
    await session.press('z');
    const target = await session.screenPlace(62, 48);
    await page.mouse.move(target.x, target.y);
    for (let i = 0; i < 8; i++) await page.keyboard.press('+');
    await session.painted();
    const scale = await page.$eval('.picture canvas', (canvas) =>
      Number((canvas as HTMLElement).dataset['camera']?.split(',')[0]),
    );
    assert.equal(scale, 24);
    const places: [number, number][] = [];
    for (let y = 44; y < 52; y++) for (let x = 58; x < 66; x++) places.push([x, y]);
    const shown = await session.shown(places);
    places.forEach(([x, y], index) => assert.deepEqual(shown[index], expected.at(x, y), `pixel ${x}, ${y}`));
    // Between the middles of two pixels lies the grid.
    const over = await session.screenPlace(63, 47);
    await page.mouse.move(over.x, over.y);
    const bytes = [...expected.at(63, 47)]
      .reverse()
      .map((byte) => byte.toString(16).toUpperCase().padStart(2, '0'))
      .join(' ');
    await until('bytes of the pixel', async () => (await session.texts('[data-test=pixel-bytes]'))[0] === bytes);
    assert.match(await session.text('.pixel-line'), /x 63 y 47/);
  },
);

browserTest('tags are those of the tool, and can be laid over the page', 'dual', async (session) => {
  const { page } = session;
  // Images are on the second page.
  await session.press(']');
  tool(['render', kDual, '--page', '2', '-o', inWork('dual.ppm'), '--tags', inWork('dual-tags.pgm')]);
  const tags = readPlane(inWork('dual-tags.pgm'));
  const places: [number, number][] = [];
  const seen = new Map<number, [number, number]>();
  for (let y = 0; y < tags.height; y += 3) {
    for (let x = 0; x < tags.width; x += 3) {
      const [tag = 0] = tags.at(x, y);
      if (!seen.has(tag)) seen.set(tag, [x, y]);
    }
  }
  assert.ok(seen.size >= 2, 'the page has several tags');
  for (const [tag, [x, y]] of seen) {
    const place = await session.screenPlace(x, y);
    await page.mouse.move(place.x, place.y);
    const scale = await page.$eval('.picture canvas', (canvas) =>
      Number((canvas as HTMLElement).dataset['camera']?.split(',')[0]),
    );
    if (scale < 1) await session.press('z');
    const again = await session.screenPlace(x, y);
    await page.mouse.move(again.x, again.y);
    await until(`tag ${tag} at ${x}, ${y}`, async () => {
      const line = await session.text('.pixel-line');
      return line.includes(`x ${x} y ${y}`) && new RegExp(`tag ${tag}(?!\\d)`).test(line);
    });
    places.push([x, y]);
  }
  await session.press('0', 'o');
  await session.page.mouse.move(5, 5);
  const without = await session.shown(places);
  await session.press('t');
  const over = await session.shown(places);
  assert.notDeepEqual(over, without);
  await page.$eval('.opacity', (input) => {
    (input as HTMLInputElement).value = '0';
    input.dispatchEvent(new Event('input', { bubbles: true }));
  });
  await new Promise((resolve) => setTimeout(resolve, 100));
  assert.deepEqual(await session.shown(places), without);
});

browserTest('heat maps have a legend and cover what was painted', 'figures', async (session) => {
  await session.press('z', 'o');
  const places: [number, number][] = [
    [60, 45], // under figures
    [3, 3], // white paper
  ];
  const [, paper] = await session.shown(places);
  await session.press('h');
  await until('legend', async () => /ns|µs|ms/.test((await session.texts('.legend-scale'))[0] ?? ''));
  await new Promise((resolve) => setTimeout(resolve, 100));
  const [painted] = await session.shown(places);
  assert.notDeepEqual(painted, render(figures).at(60, 45));
  await session.press('h');
  await until('legend of overdraw', async () => /×/.test((await session.texts('.legend-scale'))[0] ?? ''));
  await session.press('h');
  assert.deepEqual(await session.texts('.legend'), []);
  await new Promise((resolve) => setTimeout(resolve, 50));
  assert.deepEqual((await session.shown(places))[1], paper);
});

browserTest('two files: the pixels that differ, and the way through them', 'two', async (session) => {
  const { page } = session;
  const first = render(figures);
  const second = render(changed);
  const differing: [number, number][] = [];
  for (let y = 0; y < first.height; y++) {
    for (let x = 0; x < first.width; x++) if (first.at(x, y).join() !== second.at(x, y).join()) differing.push([x, y]);
  }
  assert.ok(differing.length > 0);
  await until('comparison', async () => (await session.texts('.compare-panel h3')).some((text) => /differ/.test(text)));
  const [title = ''] = await session.texts('.compare-panel h3');
  assert.ok(
    title.startsWith(`${differing.length.toLocaleString('en-US')} pixels differ`),
    `${title}: ${differing.length}`,
  );
  const rects = (await session.texts('.compare-panel .slow .mono')).map(
    (text) => text.match(/\d+/g)?.map(Number) ?? [],
  );
  for (const [x, y] of differing) {
    const isOutlined = rects.some(([l = 0, t = 0, r = 0, b = 0]) => x >= l && y >= t && x < r && y < b);
    assert.ok(isOutlined, `pixel ${x}, ${y} lies in an outline`);
  }
  await session.press('d');
  assert.equal((await session.texts('.compare-panel [aria-current=true]')).length, 1);
  await session.press('d');
  await session.press('D');
  const current = await page.$$eval('.compare-panel .slow', (rows) =>
    rows.findIndex((row) => row.getAttribute('aria-current') === 'true'),
  );
  assert.equal(current, 0);
  // Each side shows its own file.
  await session.press('0', 'o');
  // A pixel inside the largest outline, away from the lines themselves.
  const area = ([l = 0, t = 0, r = 0, b = 0]: number[]) => (r - l) * (b - t);
  const [l = 0, t = 0, r = 0, b = 0] = rects.reduce((most, rect) => (area(rect) > area(most) ? rect : most), []);
  const [x = 0, y = 0] = differing.find(([px, py]) => px > l + 3 && px < r - 4 && py > t + 3 && py < b - 4) ?? [];
  assert.ok(x > 0, 'there is such a pixel');
  await session.press('z');
  assert.deepEqual((await session.shown([[x, y]], 0))[0], first.at(x, y));
  assert.deepEqual((await session.shown([[x, y]], 1))[0], second.at(x, y));
  // The first call that differs is one that the tool reports as well.
  const link = await page.$eval('.compare-panel p .link', (button) => Number(button.textContent));
  let said = '';
  try {
    tool(['diff', figures, changed]);
  } catch (error) {
    said = String((error as { stdout?: string }).stdout);
  }
  assert.match(said, new RegExp(`\\b${link}\\b`));
});

browserTest('several devices and pages, and what the checker found', 'mistakes', async (session) => {
  const { page } = session;
  await session.press('5');
  const pagesShown = await page.$$eval('select[aria-label="Page shown"] option', (options) => options.length);
  assert.equal(pagesShown, 3);
  assert.match((await session.texts('.file-panel')).join(), /color, 24 bits.*gray, 8 bits/s);
  const check = dumpFindings();
  await until(
    'counted mistakes',
    async () => (await session.texts('.file-panel .finding b'))[0] === `Mistake 2, ${check} times`,
  );
  await page.click('.filters input[name=findings]');
  await untilMatches(session, check);
  await session.press('1', 'f');
  await session.press('Home');
  await session.press('f');
  assert.match((await session.texts('.finding')).join(), /Mistake 2.*clip.*record is null/s);
  await session.press(']');
  assert.match(
    await page.$eval('select[aria-label="Page shown"]', (select) => (select as HTMLSelectElement).value),
    /^1$/,
  );
  const place = await session.screenPlace(6, 6);
  await page.mouse.move(place.x, place.y);
  await until('gray byte', async () => (await session.texts('[data-test=pixel-bytes]'))[0] === '80');
});

// Calls with findings, as the tool counts them.
function dumpFindings(): number {
  let said = '';
  try {
    said = tool(['check', mistakes, '--show', '1000']);
  } catch (error) {
    said = String((error as { stdout?: string }).stdout);
  }
  return new Set([...said.matchAll(/\bcall (\d+)/g)].map(([, call]) => call)).size;
}

browserTest(
  'the address leads back to the same place',
  'dual',
  async (session) => {
    const { page } = session;
    assert.equal(await session.painted(), 200);
    const camera = await page.$eval('.picture canvas', (canvas) => (canvas as HTMLElement).dataset['camera']);
    assert.equal(camera, '16,100,50,20');
    await until('marked pixel', async () => (await session.texts('.pixel-panel h2'))[0] === 'Pixel 104, 56');
    await session.press('ArrowRight');
    await until('address', async () => (await page.evaluate(() => location.hash)).includes('call=201'));
  },
  { hash: '#page=0&call=200&view=16,100,50&pixel=104,56' },
);

test('the pages that the tool writes and serves show the files they are made for', { timeout: 60_000 }, async () => {
  const compressed = recordPrint('compressed', kOverlapping, kSmallPage, true);
  const expected = render(compressed);
  tool(['inspect', compressed, '-o', 'written.html']);
  tool(['inspect', compressed, changed, '-o', 'both.html']);
  const { address, server } = await serve(compressed);
  try {
    for (const path of [inWork('written.html'), address]) {
      const session = await Session.open(path);
      await session.ready();
      assert.equal(await matches(session), dump(compressed).length, path);
      await session.press('z', 'G', 'o');
      const places: [number, number][] = Array.from({ length: expected.width }, (_, x) => [x, 50]);
      const row = places.map(([x, y]) => expected.at(x, y));
      assert.deepEqual(await session.shown(places), row, path);
      assert.deepEqual(session.complaints, [], path);
      await session.close();
    }
    const session = await Session.open(inWork('both.html'));
    await session.ready();
    assert.deepEqual(await session.texts('.picture figcaption'), ['A compressed.qnv', 'B changed.qnv']);
    assert.deepEqual(session.complaints, []);
    await session.close();
  } finally {
    server.kill('SIGINT');
  }
});

test('a damaged file gives a sentence', { timeout: 60_000 }, async () => {
  const bytes = Buffer.from(readFileSync(figures));
  const middle = Math.floor(bytes.length / 2);
  bytes.writeUInt8(bytes.readUInt8(middle) ^ 0xff, middle);
  writeFileSync(inWork('damaged.qnv'), bytes);
  writeFileSync(inWork('text.qnv'), 'no call file at all, but long enough to hold a header of one');
  for (const name of ['damaged.qnv', 'text.qnv']) {
    const session = await Session.open(writePage('damaged.html', [inWork(name)]));
    await session.page.waitForSelector('.error-line');
    const said = await session.text('.error-line span');
    assert.match(said, new RegExp(`^${name}: .*at byte \\d+.*\\.$`, 'i'));
    assert.match(await session.text('.open-box h2'), /Open a call file/);
    assert.deepEqual(session.complaints, []);
    await session.close();
  }
});

test('a page that was stored badly says so', { timeout: 60_000 }, async () => {
  const whole = readFileSync(pages['figures'] as string, 'utf8');
  const cases = [
    { find: /(id="qnv-engine">.{1000}).{200}/, said: /^The engine of this page cannot be started \(.+\)\.$/ },
    { find: /(id="qnv-engine">)[^<]*/, said: /^This page has no engine\..*qnvtool inspect/ },
    {
      find: /(class="qnv-file"[^>]*>.{1000}).{200}/,
      said: /^figures\.qnv: The file was not stored whole in this page \(.+\)\.$/,
    },
  ];
  for (const { find, said } of cases) {
    const broken = whole.replace(find, '$1');
    assert.notEqual(broken, whole);
    writeFileSync(inWork('broken.html'), broken);
    const session = await Session.open(inWork('broken.html'));
    await session.page.waitForSelector('.error-line');
    assert.match(await session.text('.error-line span'), said);
    assert.deepEqual(session.complaints, []);
    await session.close();
  }
});

test('a file that was cut off shows what is there, and says so', { timeout: 60_000 }, async () => {
  const whole = readFileSync(kDual);
  writeFileSync(inWork('cut.qnv'), whole.subarray(0, whole.length - 3000));
  const session = await Session.open(writePage('cut.html', [inWork('cut.qnv')]));
  await session.page.waitForSelector('.toolbar .one-file');
  await session.page.keyboard.press('5');
  assert.match(await session.text('.file-panel .notice-warn'), /at byte \d+/i);
  assert.deepEqual(session.complaints, []);
  await session.close();
});

browserTest('the theme is that of the system until one is chosen', 'figures', async (session) => {
  const { page } = session;
  // The background of the page, and of the canvas in a corner.
  const shows = (theme: string, ...colors: string[]) =>
    until(`${theme} colors`, async () => {
      await session.painted();
      const seen = await page.evaluate(() => {
        const canvas = document.querySelector<HTMLCanvasElement>('.picture canvas') as HTMLCanvasElement;
        const context = canvas.getContext('2d') as CanvasRenderingContext2D;
        const { data } = context.getImageData(canvas.width - 1, canvas.height - 1, 1, 1);
        const corner = `rgb(${[...data.subarray(0, 3)].join(', ')})`;
        return [document.documentElement.dataset['theme'], getComputedStyle(document.body).backgroundColor, corner];
      });
      return seen.join() === [theme, ...colors].join();
    });
  const light = ['light', 'rgb(243, 245, 247)', 'rgb(228, 232, 237)'] as const;
  const dark = ['dark', 'rgb(20, 24, 29)', 'rgb(13, 16, 20)'] as const;
  const system = (value: string) => page.emulateMediaFeatures([{ name: 'prefers-color-scheme', value }]);
  await shows(...light);
  await system('dark');
  await shows(...dark);
  await page.select('select[aria-label=Theme]', 'light');
  await shows(...light);
  await page.reload();
  await session.ready();
  await shows(...light);
  await system('light');
  await page.select('select[aria-label=Theme]', 'dark');
  await shows(...dark);
  await page.select('select[aria-label=Theme]', 'system');
  await shows(...light);
});

browserTest('a page without files opens one that is chosen, and a second one to compare', 'none', async (session) => {
  const { page } = session;
  assert.match(await session.text('.open-box h2'), /Open a call file/);
  await page.waitForSelector('.open-box button:not(:disabled)');
  const choose = async (selector: string, file: string) => {
    const [chooser] = await Promise.all([page.waitForFileChooser(), page.click(selector)]);
    await chooser.accept([file]);
  };
  await choose('.open-box button', figures);
  await session.ready();
  assert.equal(await matches(session), dump(figures).length);
  await session.press('4');
  await choose('.compare-panel button, .empty button', changed);
  await page.waitForSelector('.picture + .picture');
  assert.equal((await page.$$('.picture canvas')).length, 2);
});

browserTest('keys reach everything, and a dialog lists them', 'figures', async (session) => {
  const { page } = session;
  await page.keyboard.press('?');
  await page.waitForSelector('dialog[open]');
  assert.ok((await session.texts('dialog kbd')).length > 30);
  await page.keyboard.press('Escape');
  await page.waitForFunction(() => !document.querySelector('dialog[open]'));
  // Tab goes through every part, with a visible focus.
  const parts = new Set<string>();
  await page.evaluate(() => (document.activeElement as HTMLElement).blur());
  for (let i = 0; i < 60; i++) {
    await page.keyboard.press('Tab');
    const at = await page.evaluate(() => {
      const element = document.activeElement as HTMLElement;
      const part = element.closest('.toolbar, .filters, .list, .picture, .tabs, .side-body, .timeline');
      return {
        part: part?.classList[0] ?? '',
        outline: getComputedStyle(element).outlineStyle,
        name: element.outerHTML.slice(0, 80),
      };
    });
    if (at.part === '') continue;
    parts.add(at.part);
    assert.notEqual(at.outline, 'none', `focus shows on ${at.name}`);
  }
  assert.deepEqual([...parts].sort(), ['filters', 'list', 'picture', 'side-body', 'tabs', 'timeline', 'toolbar']);
  // A pixel is marked without a pointer.
  await page.evaluate(() => (document.activeElement as HTMLElement).blur());
  await session.press('v', 'ArrowRight', 'ArrowDown', 'Enter');
  await until('marked pixel', async () => (await session.texts('.pixel-panel h2')).length === 1);
});
