// What page and worker say to each other. Every request has a number, and the answer to it has the same.
import type { DrawQuestion, Pixels, Question } from './contract';

export type Job =
  | { kind: 'start'; engine: string } // base64 of gzip of the module
  | { kind: 'openPacked'; file: string } // the same of a call file
  | { kind: 'open'; bytes: ArrayBuffer }
  | { kind: 'close'; file: number }
  | { kind: 'ask'; file: number; question: Question }
  | { kind: 'draw'; file: number; question: DrawQuestion };

export interface Request {
  id: number;
  job: Job;
}

export type Result = number | string | Pixels | null;

export type Response = { id: number; result: Result } | { id: number; error: string };
