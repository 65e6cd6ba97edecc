// The page's side of the engine: a queue of requests to the worker. Requests wait here, not in the worker, so that one
// that is no longer wanted (its signal is aborted) costs nothing.
import { Abandoned, type DrawQuestion, type Engine, type Pixels, type Question } from './contract';
import type { Job, Request, Response, Result } from './messages';
import EngineWorker from './worker?worker&inline';

// One is computed while the next is already there.
const kMaxInFlight = 2;

interface Waiting {
  job: Job;
  transfer: Transferable[];
  signal: AbortSignal | undefined;
  resolve: (result: Result) => void;
  reject: (error: Error) => void;
}

export class WorkerEngine implements Engine {
  private readonly worker = new EngineWorker();
  private readonly waiting: Waiting[] = [];
  private readonly inFlight = new Map<number, Waiting>();
  private nextId = 1;

  constructor() {
    this.worker.onmessage = ({ data }: MessageEvent<Response>) => {
      const request = this.inFlight.get(data.id);
      this.inFlight.delete(data.id);
      this.sendMore();
      if ('error' in data) request?.reject(new Error(data.error));
      else request?.resolve(data.result);
    };
    this.worker.onerror = (event) => {
      const error = new Error(`The engine cannot run here: ${event.message || 'its worker did not start'}.`);
      for (const request of [...this.inFlight.values(), ...this.waiting.splice(0)]) request.reject(error);
      this.inFlight.clear();
    };
  }

  async start(packedEngine: string): Promise<void> {
    await this.request({ kind: 'start', engine: packedEngine });
  }

  async openPacked(file: string): Promise<number> {
    return (await this.request({ kind: 'openPacked', file })) as number;
  }

  async open(bytes: ArrayBuffer): Promise<number> {
    return (await this.request({ kind: 'open', bytes }, undefined, [bytes])) as number;
  }

  async close(file: number): Promise<void> {
    await this.request({ kind: 'close', file });
  }

  async ask<Answer>(file: number, question: Question, signal?: AbortSignal): Promise<Answer> {
    return JSON.parse((await this.request({ kind: 'ask', file, question }, signal)) as string) as Answer;
  }

  async draw(file: number, question: DrawQuestion, signal?: AbortSignal): Promise<Pixels> {
    return (await this.request({ kind: 'draw', file, question }, signal)) as Pixels;
  }

  private request(job: Job, signal?: AbortSignal, transfer: Transferable[] = []): Promise<Result> {
    return new Promise((resolve, reject) => {
      this.waiting.push({ job, transfer, signal, resolve, reject });
      this.sendMore();
    });
  }

  private sendMore(): void {
    while (this.inFlight.size < kMaxInFlight) {
      const request = this.waiting.shift();
      if (!request) return;
      if (request.signal?.aborted) {
        request.reject(new Abandoned());
        continue;
      }
      const id = this.nextId++;
      this.inFlight.set(id, request);
      this.worker.postMessage({ id, job: request.job } satisfies Request, request.transfer);
    }
  }
}
