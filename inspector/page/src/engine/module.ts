// The engine's exports as functions of TypeScript: texts and bytes are copied into and out of its memory. Everything is
// synchronous; the worker calls it for the page, the unit tests call it directly.
import type { DrawQuestion, Pixels, Question } from './contract';
import { systemFunctions } from './wasi';

interface Exports {
  memory: WebAssembly.Memory;
  _initialize?: () => void;
  inspector_alloc(bytes: number): number;
  inspector_free(at: number): void;
  inspector_open(at: number, bytes: number): number;
  inspector_close(file: number): void;
  inspector_ask(file: number, question: number, bytes: number): number;
  inspector_draw(file: number, question: number, bytes: number): number;
  inspector_text(): number;
  inspector_text_bytes(): number;
  inspector_pixels(): number;
  inspector_width(): number;
  inspector_height(): number;
}

export class EngineModule {
  private constructor(private readonly exports: Exports) {}

  static async start(code: BufferSource): Promise<EngineModule> {
    const module = await WebAssembly.compile(code);
    let memory: WebAssembly.Memory | undefined;
    const instance = await WebAssembly.instantiate(
      module,
      systemFunctions(module, () => memory as WebAssembly.Memory),
    );
    const exports = instance.exports as unknown as Exports;
    memory = exports.memory;
    exports._initialize?.();
    return new EngineModule(exports);
  }

  open(bytes: ArrayBuffer): number {
    const at = this.put(new Uint8Array(bytes));
    const file = this.exports.inspector_open(at, bytes.byteLength); // takes the memory
    if (file < 0) throw new Error(this.text());
    return file;
  }

  close(file: number): void {
    this.exports.inspector_close(file);
  }

  // The answer as it is, JSON.
  ask(file: number, question: Question): string {
    this.send(this.exports.inspector_ask, file, question);
    return this.text();
  }

  draw(file: number, question: DrawQuestion): Pixels {
    this.send(this.exports.inspector_draw, file, question);
    const width = this.exports.inspector_width() >>> 0;
    const height = this.exports.inspector_height() >>> 0;
    const at = this.exports.inspector_pixels() >>> 0;
    const data = new Uint8ClampedArray(this.exports.memory.buffer, at, width * height * 4).slice();
    return { width, height, data: data as Uint8ClampedArray<ArrayBuffer> };
  }

  private send(call: (file: number, at: number, bytes: number) => number, file: number, question: unknown): void {
    const text = new TextEncoder().encode(JSON.stringify(question));
    const at = this.put(text);
    const answered = call(file, at, text.length);
    this.exports.inspector_free(at);
    if (answered !== 1) throw new Error(this.text());
  }

  private put(bytes: Uint8Array): number {
    const at = this.exports.inspector_alloc(bytes.length) >>> 0;
    if (at === 0) throw new Error(`There is no memory for ${bytes.length} bytes.`);
    new Uint8Array(this.exports.memory.buffer, at, bytes.length).set(bytes);
    return at;
  }

  private text(): string {
    const at = this.exports.inspector_text() >>> 0;
    const bytes = this.exports.inspector_text_bytes() >>> 0;
    return new TextDecoder().decode(new Uint8Array(this.exports.memory.buffer, at, bytes));
  }
}
