// Runs the engine beside the page, which stays responsive meanwhile. Requests are carried out one after the other.
import type { Job, Request, Response, Result } from './messages';
import { EngineModule } from './module';
import { unpack } from './unpack';
import { EngineStopped } from './wasi';

let engine: EngineModule | undefined;

const reasonOf = (error: unknown) => (error instanceof Error ? error.message : String(error)).replace(/\.$/, '');

async function unpackFile(base64: string): Promise<ArrayBuffer> {
  try {
    return await unpack(base64);
  } catch (error) {
    throw new Error(`the file was not stored whole in this page (${reasonOf(error)})`);
  }
}

async function carryOut(job: Job): Promise<Result> {
  if (job.kind === 'start') {
    try {
      engine = await EngineModule.start(await unpack(job.engine));
    } catch (error) {
      throw new Error(`the engine of this page cannot be started (${reasonOf(error)})`);
    }
    return null;
  }
  if (!engine) throw new Error('The engine has not been started.');
  switch (job.kind) {
    case 'openPacked':
      return engine.open(await unpackFile(job.file));
    case 'open':
      return engine.open(job.bytes);
    case 'close':
      engine.close(job.file);
      return null;
    case 'ask':
      return engine.ask(job.file, job.question);
    case 'draw':
      return engine.draw(job.file, job.question);
  }
}

function sentenceOf(error: unknown): string {
  if (error instanceof WebAssembly.RuntimeError || error instanceof EngineStopped) {
    engine = undefined; // its memory may be damaged
    return `The engine failed (${error.message}). Reload the page to start it again.`;
  }
  return reasonOf(error);
}

let last: Promise<void> = Promise.resolve();
self.onmessage = ({ data }: MessageEvent<Request>) => {
  last = last.then(async () => {
    let response: Response;
    const transfer: Transferable[] = [];
    try {
      const result = await carryOut(data.job);
      if (result !== null && typeof result === 'object') transfer.push(result.data.buffer);
      response = { id: data.id, result };
    } catch (error) {
      response = { id: data.id, error: sentenceOf(error) };
    }
    self.postMessage(response, { transfer });
  });
};
