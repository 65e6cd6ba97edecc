// Runs the tests: bundles them with what they test, gives them to node's test runner, and ends with "N passed, N failed".
//   node tests/run.mjs [--unit | --browser]
import { spawn } from 'node:child_process';
import { readdirSync, rmSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const here = dirname(fileURLToPath(import.meta.url));
const out = join(here, '../node_modules/.cache/tests');
const only = process.argv[2]?.replace('--', '');
const folders = only ? [only] : ['unit', 'browser'];
const sources = folders.flatMap((folder) =>
  readdirSync(join(here, folder))
    .filter((name) => name.endsWith('.test.ts'))
    .map((name) => join(here, folder, name)),
);

rmSync(out, { recursive: true, force: true });
await build({
  entryPoints: sources,
  outdir: out,
  outExtension: { '.js': '.mjs' },
  bundle: true,
  platform: 'node',
  format: 'esm',
  target: 'node18',
  packages: 'external',
  sourcemap: 'inline',
  logLevel: 'warning',
});
const built = readdirSync(out, { recursive: true, withFileTypes: false })
  .map(String)
  .filter((name) => name.endsWith('.mjs'))
  .map((name) => join(out, name));

const runner = spawn(
  process.execPath,
  ['--enable-source-maps', '--test', `--test-reporter=${join(here, 'reporter.mjs')}`, ...built],
  { stdio: 'inherit', env: { ...process.env, INSPECTOR_PAGE: join(here, '..') } },
);
runner.on('exit', (code) => process.exit(code ?? 1));
