// Base64 and gzip, the form in which engine and call files lie in the page.

export function bytesOfBase64(text: string): Uint8Array<ArrayBuffer> {
  const binary = atob(text.trim());
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; i++) bytes[i] = binary.charCodeAt(i);
  return bytes;
}

export async function unpack(base64: string): Promise<ArrayBuffer> {
  const unzipped = new Blob([bytesOfBase64(base64)]).stream().pipeThrough(new DecompressionStream('gzip'));
  return new Response(unzipped).arrayBuffer();
}
