// A page in headless Chromium, as people open it: a file on disk that holds engine and call files.
import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import { basename, join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { gzipSync } from 'node:zlib';
import { type Browser, type Page, launch } from 'puppeteer-core';
import { inWork, root } from './tool';

const kBuilt = join(root, 'inspector/built');

const packed = (path: string) => gzipSync(readFileSync(path), { level: 1 }).toString('base64');

// What the tool writes: the built page with two kinds of elements before its end.
export function writePage(name: string, files: string[]): string {
  const page = readFileSync(join(kBuilt, 'inspector.html'), 'utf8');
  const end = page.lastIndexOf('</body>');
  const element = (attributes: string, content: string) =>
    `<script type="application/octet-stream" ${attributes}>${content}</script>\n`;
  const elements = [
    element('id="qnv-engine"', packed(join(kBuilt, 'engine.wasm'))),
    ...files.map((file) => element(`class="qnv-file" data-name="${basename(file)}"`, packed(file))),
  ];
  const path = inWork(name);
  writeFileSync(path, page.slice(0, end) + elements.join('') + page.slice(end));
  return path;
}

let browser: Browser | undefined;

async function theBrowser(): Promise<Browser> {
  const known = [process.env['CHROMIUM'], '/usr/bin/chromium', '/usr/bin/chromium-browser', '/usr/bin/google-chrome'];
  const executablePath = known.find((path) => path !== undefined && existsSync(path));
  if (!executablePath) throw new Error('Chromium is not installed: run scripts/setup.sh check');
  browser ??= await launch({
    executablePath,
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--force-color-profile=srgb'],
  });
  return browser;
}

export async function closeBrowser(): Promise<void> {
  await browser?.close();
  browser = undefined;
}

export interface Pixel {
  red: number;
  green: number;
  blue: number;
}

export class Session {
  // What must stay empty: the test that opened the session looks at the end.
  readonly complaints: string[] = [];

  private constructor(readonly page: Page) {}

  // A file, or an address on this machine.
  static async open(path: string, options: { hash?: string; theme?: 'light' | 'dark' } = {}): Promise<Session> {
    const page = await (await theBrowser()).newPage();
    const session = new Session(page);
    await page.setViewport({ width: 1440, height: 900 });
    await page.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: options.theme ?? 'light' }]);
    page.on('console', (message) => {
      // The tests read the canvas back; the page never does.
      if (message.text().includes('willReadFrequently')) return;
      if (message.type() === 'error' || message.type() === 'warn') session.complaints.push(message.text());
    });
    page.on('pageerror', (error) => session.complaints.push(String(error)));
    const address = path.startsWith('http:') ? path : pathToFileURL(path).href;
    page.on('request', (request) => {
      const url = request.url();
      if (!/^(blob|data):/.test(url) && !url.startsWith(address)) session.complaints.push(`asked for ${url}`);
    });
    await page.goto(address + (options.hash ?? ''));
    return session;
  }

  async close(): Promise<void> {
    await this.page.close();
  }

  // Until a file is open and its page is painted.
  async ready(): Promise<void> {
    await this.page.waitForSelector('.list [role=option]');
    await this.painted();
  }

  // Until canvas and panel show the current call.
  async painted(): Promise<number> {
    // What was just pressed reaches the canvas with the next frame.
    await this.page.evaluate(
      () => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(() => resolve(0)))),
    );
    const call = await this.page.waitForFunction(() => {
      const input = document.querySelector<HTMLInputElement>('#go-to');
      const canvases = [...document.querySelectorAll<HTMLCanvasElement>('.picture canvas')];
      const isPainted = canvases.every(
        (canvas) => canvas.dataset['call'] !== undefined && canvas.dataset['call'] !== '',
      );
      const panel = document.querySelector<HTMLElement>('.call-panel');
      const isTold = !panel || panel.getAttribute('aria-busy') === 'false';
      const active = canvases.some((canvas) => canvas.dataset['call'] === input?.value);
      return input && isPainted && isTold && active ? input.value : false;
    });
    return Number(await call.jsonValue());
  }

  async press(...keys: string[]): Promise<number> {
    for (const key of keys) await this.page.keyboard.press(key as 'Enter');
    return this.painted();
  }

  text(selector: string): Promise<string> {
    return this.page.$eval(selector, (element) => element.textContent ?? '');
  }

  texts(selector: string): Promise<string[]> {
    return this.page.$$eval(selector, (elements) => elements.map((element) => element.textContent ?? ''));
  }

  // The middle of a page pixel on the screen.
  async screenPlace(x: number, y: number, index = 0): Promise<{ x: number; y: number }> {
    return this.page.evaluate(
      (pixelX, pixelY, which) => {
        const canvas = document.querySelectorAll<HTMLCanvasElement>('.picture canvas')[which] as HTMLCanvasElement;
        const [scale = 1, left = 0, top = 0, ruler = 0] = (canvas.dataset['camera'] ?? '').split(',').map(Number);
        const box = canvas.getBoundingClientRect();
        return {
          x: box.left + ruler + (pixelX + 0.5 - left) * scale,
          y: box.top + ruler + (pixelY + 0.5 - top) * scale,
        };
      },
      x,
      y,
      index,
    );
  }

  // The colors that the canvas shows in the middle of page pixels.
  async shown(places: [number, number][], index = 0): Promise<number[][]> {
    return this.page.evaluate(
      (wanted, which) => {
        const canvas = document.querySelectorAll<HTMLCanvasElement>('.picture canvas')[which] as HTMLCanvasElement;
        const [scale = 1, left = 0, top = 0, ruler = 0] = (canvas.dataset['camera'] ?? '').split(',').map(Number);
        const context = canvas.getContext('2d') as CanvasRenderingContext2D;
        const { width, data } = context.getImageData(0, 0, canvas.width, canvas.height);
        return wanted.map(([x, y]) => {
          const column = Math.floor(ruler + (x + 0.5 - left) * scale);
          const row = Math.floor(ruler + (y + 0.5 - top) * scale);
          return [...data.subarray((row * width + column) * 4, (row * width + column) * 4 + 3)];
        });
      },
      places,
      index,
    );
  }
}
