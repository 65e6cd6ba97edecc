// Stand-ins for the few functions of the system that the engine's C++ library is linked with. The engine reads no files
// and has no clock of its own: what it does not need answers "not supported".

const kSuccess = 0;
const kBadFile = 8;
const kNotSupported = 52;

export class EngineStopped extends Error {}

export function systemFunctions(module: WebAssembly.Module, memory: () => WebAssembly.Memory): WebAssembly.Imports {
  let unfinished = '';
  const known: Record<string, (...values: number[]) => number> = {
    // Texts of the run-time library (assertions, out of memory) go to the console, line by line.
    fd_write(file = 0, list = 0, count = 0, written = 0) {
      if (file !== 1 && file !== 2) return kBadFile;
      const view = new DataView(memory().buffer);
      let bytes = 0;
      for (let i = 0; i < count; i++) {
        const at = view.getUint32(list + i * 8, true);
        const size = view.getUint32(list + i * 8 + 4, true);
        unfinished += new TextDecoder().decode(new Uint8Array(memory().buffer, at, size));
        bytes += size;
      }
      view.setUint32(written, bytes, true);
      const lines = unfinished.split('\n');
      unfinished = lines.pop() ?? '';
      for (const line of lines) console.warn(`engine: ${line}`);
      return kSuccess;
    },
    proc_exit(code = 0) {
      throw new EngineStopped(`The engine stopped with code ${code}.`);
    },
    // A call has 64-bit arguments, which arrive as BigInt; only the place of the answer matters.
    clock_time_get(_clock = 0, _precision = 0, answer = 0) {
      new DataView(memory().buffer).setBigUint64(answer, BigInt(Math.round(performance.now() * 1e6)), true);
      return kSuccess;
    },
    environ_sizes_get(count = 0, bytes = 0) {
      const view = new DataView(memory().buffer);
      view.setUint32(count, 0, true);
      view.setUint32(bytes, 0, true);
      return kSuccess;
    },
    environ_get: () => kSuccess,
    fd_close: () => kBadFile,
    fd_fdstat_get: () => kBadFile,
    fd_seek: () => kBadFile,
    fd_read: () => kBadFile,
    fd_prestat_get: () => kBadFile,
  };
  const imports: WebAssembly.Imports = {};
  for (const { module: from, name, kind } of WebAssembly.Module.imports(module)) {
    if (kind !== 'function') continue;
    (imports[from] ??= {})[name] = known[name] ?? (() => kNotSupported);
  }
  return imports;
}
