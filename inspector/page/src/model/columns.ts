// The columns of all calls, decoded once: a number a call in a typed array, so that 50,000 rows cost no objects.
import { bytesOfBase64 } from '../engine/unpack';
import type { RowsAnswer } from '../engine/contract';

export interface Columns {
  count: number;
  functions: string[];
  function: Uint8Array;
  device: Uint16Array;
  page: Int16Array; // -1: on no page
  band: Uint16Array;
  ns: Uint32Array;
  result: Uint32Array;
  flags: Uint8Array;
  detail: Uint32Array; // raster code or binary operation
}

export const kNoDetail = 0xffffffff;

export function decodeColumns(rows: RowsAnswer): Columns {
  const bytes = (text: string) => bytesOfBase64(text).buffer;
  const functions = new Uint8Array(bytes(rows.function));
  return {
    count: functions.length,
    functions: rows.functions,
    function: functions,
    device: new Uint16Array(bytes(rows.device)),
    page: new Int16Array(bytes(rows.page)),
    band: new Uint16Array(bytes(rows.band)),
    ns: new Uint32Array(bytes(rows.ns)),
    result: new Uint32Array(bytes(rows.result)),
    flags: new Uint8Array(bytes(rows.flags)),
    detail: new Uint32Array(bytes(rows.detail)),
  };
}

export const decodeCalls = (base64: string) => new Uint32Array(bytesOfBase64(base64).buffer);
export const decodeFloats = (base64: string) => new Float32Array(bytesOfBase64(base64).buffer);
