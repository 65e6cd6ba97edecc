// A line for each test, what they print, and at the end "N passed, N failed". Files and groups are not counted.
export default async function* report(source) {
  let passed = 0;
  let failed = 0;
  for await (const { type, data } of source) {
    const isTest = data?.details?.type === 'test' || (data?.details && data.details.type === undefined);
    const isFile = /\.mjs$/.test(data?.name ?? '');
    if (type === 'test:pass' && isTest && !isFile) {
      passed++;
      yield `  ok      ${data.name} (${Math.round(data.details.duration_ms)} ms)\n`;
    } else if (type === 'test:fail' && data.details?.error?.failureType !== 'subtestsFailed') {
      failed++;
      const error = data.details.error?.cause ?? data.details.error;
      yield `  FAILED  ${data.name}\n${String(error?.stack ?? error).replace(/^/gm, '          ')}\n`;
    } else if (
      type === 'test:diagnostic' &&
      !/^(tests|suites|pass|fail|cancelled|skipped|todo|duration_ms) /.test(data.message)
    ) {
      yield `          ${data.message}\n`;
    } else if (type === 'test:stdout' || type === 'test:stderr') {
      yield data.message;
    }
  }
  yield `${passed} passed, ${failed} failed\n`;
}
