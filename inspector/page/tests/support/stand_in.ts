// An engine in memory for tests of the page's own logic: it answers lines and remembers what it was asked.
import type { DrawQuestion, Engine, Pixels, Question } from '../../src/engine/contract';

export class StandIn implements Engine {
  readonly asked: Question[] = [];

  open(): Promise<number> {
    return Promise.resolve(0);
  }

  close(): Promise<void> {
    return Promise.resolve();
  }

  ask<Answer>(_file: number, question: Question): Promise<Answer> {
    this.asked.push(question);
    if (question.q !== 'lines') return Promise.reject(new Error(`nothing is known about ${question.q}`));
    const lines = Array.from(
      { length: question.count },
      (_, index) => `${question.first + index} QNVPixel(x=1) = 0x0 [90 ns]`,
    );
    return Promise.resolve({ lines } as Answer);
  }

  draw(_file: number, _question: DrawQuestion): Promise<Pixels> {
    return Promise.reject(new Error('nothing to draw'));
  }
}
