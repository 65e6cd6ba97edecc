// What the list of calls is narrowed to.
import type { FindQuestion, Rect } from '../engine/contract';
import { parseCode } from './codes';

export interface Filter {
  text: string;
  functions: number[]; // empty: all
  device: number | null;
  page: number | null;
  code: string;
  color: string;
  findings: boolean;
  rect: Rect | null;
}

export const kNoFilter: Filter = {
  text: '',
  functions: [],
  device: null,
  page: null,
  code: '',
  color: '',
  findings: false,
  rect: null,
};

// "#rrggbb" of "#RRGGBB", "rrggbb" or "#rgb"; null for anything else.
export function parseColor(text: string): string | null {
  const digits = text.trim().replace(/^#/, '').toLowerCase();
  if (/^[0-9a-f]{6}$/.test(digits)) return `#${digits}`;
  if (/^[0-9a-f]{3}$/.test(digits)) return `#${[...digits].map((digit) => digit + digit).join('')}`;
  return null;
}

// "l, t, r, b" with l < r and t < b; null for anything else.
export function parseRect(text: string): Rect | null {
  const values = text
    .split(/[\s,]+/)
    .filter((part) => part !== '')
    .map(Number);
  const [left, top, right, bottom] = values as Rect;
  const isRect = values.length === 4 && values.every(Number.isInteger) && left < right && top < bottom;
  return isRect ? [left, top, right, bottom] : null;
}

export function isEmpty(filter: Filter): boolean {
  return (
    filter.text.trim() === '' &&
    filter.functions.length === 0 &&
    filter.device === null &&
    filter.page === null &&
    parseCode(filter.code) === null &&
    parseColor(filter.color) === null &&
    !filter.findings &&
    filter.rect === null
  );
}

// Texts that are not complete yet do not limit.
export function questionOf(filter: Filter): FindQuestion {
  return {
    q: 'find',
    text: filter.text.trim(),
    function: filter.functions.length > 0 ? filter.functions : null,
    device: filter.device,
    page: filter.page,
    rect: filter.rect,
    color: parseColor(filter.color),
    rop: parseCode(filter.code),
    findings: filter.findings,
  };
}
