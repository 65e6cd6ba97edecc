// The page's side of the engine: a queue of requests to the worker. Requests wait here, not in the worker, so that one
// that is no longer wanted (its signal is aborted) costs nothing.
import { Abandoned, type DrawQuestion, type Engine, type Pixels, type Question } from './contract';
import type { Job, Request, Response, Result } from './messages';
import { RequestQueue } from './queue';
import EngineWorker from './worker?worker&inline';

interface Waiting {
  job: Job;
  transfer: Transferable[];
  signal: AbortSignal | undefined;
  resolve: (result: Result) => void;
  reject: (error: Error) => void;
}

export class WorkerEngine implements Engine {
  private readonly worker = new EngineWorker();
  private readonly waiting = new RequestQueue<Waiting>();
  private readonly inFlight = new Map<number, Waiting>();
  private nextId = 1;
  // The engine uses the numbers of closed files again. The page has one for each file that was ever opened, so that
  // pictures which it keeps are never those of another file.
  private readonly numbers: number[] = [];

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
      for (const request of [...this.inFlight.values(), ...this.waiting.takeAll()]) request.reject(error);
      this.inFlight.clear();
    };
  }

  async start(packedEngine: string): Promise<void> {
    await this.request({ kind: 'start', engine: packedEngine });
  }

  async openPacked(file: string): Promise<number> {
    return this.numberOf((await this.request({ kind: 'openPacked', file })) as number);
  }

  async open(bytes: ArrayBuffer): Promise<number> {
    return this.numberOf((await this.request({ kind: 'open', bytes }, undefined, [bytes])) as number);
  }

  async close(file: number): Promise<void> {
    await this.request({ kind: 'close', file: this.numbers[file] ?? -1 });
  }

  async ask<Answer>(file: number, question: Question, signal?: AbortSignal): Promise<Answer> {
    const number = this.numbers[file] ?? -1;
    const sent = question.q === 'compare' ? { ...question, with: this.numbers[question.with] ?? -1 } : question;
    return JSON.parse((await this.request({ kind: 'ask', file: number, question: sent }, signal)) as string) as Answer;
  }

  async draw(file: number, question: DrawQuestion, signal?: AbortSignal): Promise<Pixels> {
    return (await this.request({ kind: 'draw', file: this.numbers[file] ?? -1, question }, signal)) as Pixels;
  }

  private numberOf(engineNumber: number): number {
    this.numbers.push(engineNumber);
    return this.numbers.length - 1;
  }

  private request(job: Job, signal?: AbortSignal, transfer: Transferable[] = []): Promise<Result> {
    return new Promise((resolve, reject) => {
      this.waiting.add({ job, transfer, signal, resolve, reject });
      this.sendMore();
    });
  }

  private sendMore(): void {
    const take = () => this.waiting.take(this.inFlight.values());
    for (let request = take(); request; request = take()) {
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
