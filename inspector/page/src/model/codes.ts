// Names of the operations that the list of calls is filtered by.

const kRasterCodes: Record<string, number> = {
  SRCCOPY: 0x00cc0020,
  SRCPAINT: 0x00ee0086,
  SRCAND: 0x008800c6,
  SRCINVERT: 0x00660046,
  SRCERASE: 0x00440328,
  NOTSRCCOPY: 0x00330008,
  NOTSRCERASE: 0x001100a6,
  MERGECOPY: 0x00c000ca,
  MERGEPAINT: 0x00bb0226,
  PATCOPY: 0x00f00021,
  PATPAINT: 0x00fb0a09,
  PATINVERT: 0x005a0049,
  DSTINVERT: 0x00550009,
  BLACKNESS: 0x00000042,
  WHITENESS: 0x00ff0062,
};

// Codes 1 to 16.
const kRop2Names = [
  'R2_BLACK',
  'R2_NOTMERGEPEN',
  'R2_MASKNOTPEN',
  'R2_NOTCOPYPEN',
  'R2_MASKPENNOT',
  'R2_NOT',
  'R2_XORPEN',
  'R2_NOTMASKPEN',
  'R2_MASKPEN',
  'R2_NOTXORPEN',
  'R2_NOP',
  'R2_MERGENOTPEN',
  'R2_COPYPEN',
  'R2_MERGEPENNOT',
  'R2_MERGEPEN',
  'R2_WHITE',
];

const kNames = new Map<number, string>([
  ...Object.entries(kRasterCodes).map(([name, code]) => [code, name] as const),
  ...kRop2Names.map((name, index) => [index + 1, name] as const),
]);

export function codeName(code: number): string {
  return kNames.get(code) ?? `0x${code.toString(16).toUpperCase().padStart(8, '0')}`;
}

// "SRCCOPY", "0x00CC0020" or "13"; null when it is none of these.
export function parseCode(text: string): number | null {
  const wanted = text.trim().toUpperCase();
  if (wanted === '') return null;
  for (const [code, name] of kNames) if (name === wanted) return code;
  if (!/^(0X[0-9A-F]{1,8}|\d{1,10})$/.test(wanted)) return null;
  const code = Number(wanted);
  return code <= 0xffffffff ? code : null;
}
