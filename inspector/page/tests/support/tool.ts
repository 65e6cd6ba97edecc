// The command line tool, which answers independently of the engine in the page, and the call files of the tests.
import { type ChildProcess, execFileSync, spawn } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';

const page = process.env['INSPECTOR_PAGE'] ?? process.cwd();
export const root = resolve(page, '../..');
const bin = resolve(root, process.env['QNV_BIN'] ?? 'build/linux-x64/bin');
export const work = mkdtempSync(join(tmpdir(), 'qnv-inspector-'));
process.on('exit', () => rmSync(work, { recursive: true, force: true }));

export const inWork = (name: string) => join(work, name);
// Recorded pages that are kept with the sources; their blocks are stored, as the inspector takes them.
export const recorded = (name: string) => join(root, 'tests/calls/pages', name);

export function tool(args: string[], environment: Record<string, string> = {}): string {
  const program = join(bin, 'qnvtool');
  if (!existsSync(program)) throw new Error(`${program} is missing: build it, or name its folder in QNV_BIN`);
  return execFileSync(program, args, {
    cwd: work,
    encoding: 'utf8',
    maxBuffer: 1 << 28,
    env: { ...process.env, ...environment },
    stdio: ['ignore', 'pipe', 'pipe'],
  });
}

// Records what the tool itself prints, with one thread: each has a device of its own, and so a part of the page.
export function recordPrint(name: string, figures: string, options: string[], compress = false): string {
  writeFileSync(inWork(`${name}.fig`), figures);
  const file = inWork(`${name}.qnv`);
  const recorder = ['--library', join(bin, 'libqnvrec.so')];
  tool(['print', `${name}.fig`, '-q', '--jobs', '1', '-o', `${name}.ppm`, ...options, ...recorder], {
    QNVREC_FILE: file,
    QNVREC_COMPRESS: compress ? '1' : '0',
    QNVREC_LIBRARY: join(bin, 'libqnvdrv10.so'),
  });
  return file;
}

// Records a host in C.
export function recordHost(name: string, source: string): string {
  writeFileSync(inWork(`${name}.c`), source);
  const options = [`-I${join(root, 'include')}`, `-L${bin}`, '-lqnvdrv10', `-Wl,-rpath,${bin}`];
  execFileSync(process.env['CC'] ?? 'cc', [inWork(`${name}.c`), '-o', inWork(name), ...options]);
  const file = inWork(`${name}.qnv`);
  execFileSync(inWork(name), [], {
    stdio: ['ignore', 'ignore', 'pipe'], // the recorder tells its findings there
    env: {
      ...process.env,
      LD_PRELOAD: join(bin, 'libqnvrec.so'),
      QNVREC_LIBRARY: join(bin, 'libqnvdrv10.so'),
      QNVREC_FILE: file,
      QNVREC_CHECK: '1',
      QNVREC_COMPRESS: '0',
    },
  });
  return file;
}

// Serves the inspector for a file; the address is its first line.
export async function serve(file: string): Promise<{ address: string; server: ChildProcess }> {
  const server = spawn(join(bin, 'qnvtool'), ['inspect', file, '--serve'], { stdio: ['ignore', 'pipe', 'inherit'] });
  const address = await new Promise<string>((resolve, reject) => {
    let said = '';
    server.stdout.on('data', (text: Buffer) => {
      said += text.toString();
      const line = /^(http:\S+)\n/.exec(said);
      if (line?.[1]) resolve(line[1]);
    });
    server.on('exit', (code) => reject(new Error(`the server ended with ${code}`)));
  });
  return { address, server };
}

export interface Plane {
  width: number;
  height: number;
  // red, green, blue, or one value
  at(x: number, y: number): number[];
}

// A PPM or PGM picture with 255 as its largest value.
export function readPlane(path: string): Plane {
  const bytes = readFileSync(path);
  const header = /^P([56])\s(\d+) (\d+)\s(\d+)\s/.exec(bytes.subarray(0, 64).toString('latin1'));
  if (!header) throw new Error(`${path} is no picture of the expected form`);
  const channels = header[1] === '6' ? 3 : 1;
  const width = Number(header[2]);
  const start = header[0].length;
  return {
    width,
    height: Number(header[3]),
    at: (x, y) => [...bytes.subarray(start + (y * width + x) * channels, start + (y * width + x + 1) * channels)],
  };
}

let pictures = 0;

// The page as the tool renders it; of the first `calls` calls when that is given.
export function render(file: string, options: { calls?: number; page?: number; extension?: string } = {}): Plane {
  let source = file;
  if (options.calls !== undefined) {
    source = inWork('first.qnv');
    tool(['trim', file, '-o', source, '--from', '0', '--count', String(options.calls)]);
  }
  const out = inWork(`rendered-${pictures++}.${options.extension ?? 'ppm'}`);
  tool(['render', source, '-o', out, ...(options.page ? ['--page', String(options.page)] : [])]);
  return readPlane(out);
}

export interface DumpedCall {
  call: number;
  function: string;
  device?: number | string;
  returned: number;
  ns: number;
  [argument: string]: unknown;
}

export function dump(file: string, options: string[] = []): DumpedCall[] {
  return tool(['dump', file, '--json', ...options])
    .split('\n')
    .filter((line) => line !== '')
    .map((line) => JSON.parse(line) as DumpedCall);
}
