// What lies in the page itself: the engine, and the call files that it was made for.

export interface PackedFile {
  name: string;
  base64: string;
}

export function packedEngine(): string | null {
  return document.getElementById('qnv-engine')?.textContent?.trim() || null;
}

// The elements are emptied: their text would stay in memory beside the decoded bytes.
export function takePackedFiles(): PackedFile[] {
  return [...document.querySelectorAll<HTMLElement>('script.qnv-file')].map((element) => {
    const base64 = element.textContent?.trim() ?? '';
    element.textContent = '';
    return { name: element.dataset['name'] ?? 'calls.qnv', base64 };
  });
}
