// Makes the arguments of calls from the input: arbitrary numbers, but memory blocks as large as a host must provide.
#include <algorithm>

#include "fuzz_input.h"

namespace qnv::fuzz {
namespace {

// Word `word` of a list, little-endian.
uint16_t WordAt(const std::vector<uint8_t>& list, std::size_t word) {
  return static_cast<uint16_t>(list[2 * word] | list[2 * word + 1] << 8);
}

// Makes the list long enough to hold word `word`, a record's length, and limits the length to 0..1023. One length in
// 256 stays negative, so that the next record begins before this one. Limiting a length again does not change it.
int16_t KeepLength(std::vector<uint8_t>& list, std::size_t word) {
  if (list.size() < 2 * word + 2) list.resize(2 * word + 2);
  if (list[2 * word + 1] != 0xFF) list[2 * word + 1] &= 3;
  return static_cast<int16_t>(WordAt(list, word));
}

// The number of words of a list of `count` records from word `at` on. A record is its length, `more` words in all
// before the values, and the values. The library reads at least `head` words of each record, and may read one word
// behind the values when their number is odd.
std::size_t RecordWords(std::vector<uint8_t>& list, uint16_t count, std::ptrdiff_t at, int head, int more) {
  const std::ptrdiff_t begin = at;
  std::ptrdiff_t end = at;
  for (uint32_t record = 0; record < count; ++record) {
    const int16_t length = KeepLength(list, static_cast<std::size_t>(at));
    const int values = length < 0 ? 0 : length + (more == 1 ? length % 2 : 0);
    end = std::max(end, at + std::max(head, values + more));
    at += length + more;
    // A next record before the first word ends the list.
    if (at < 0) break;
    if (at < begin) end = std::max(end, begin);
  }
  return static_cast<std::size_t>(end);
}

}  // namespace

std::vector<uint8_t> TakeSpanList(Input& input, uint16_t style, uint16_t count) {
  std::vector<uint8_t> list = input.Bytes(2u + input.Byte() * 2u);
  std::size_t words = 4;
  switch (style) {
    case 4:
    case 104: words = std::size_t{2} * std::max<uint32_t>(count, 1); break;
    case 5:
    case 105: words = RecordWords(list, count, 0, 3, 4); break;
    case 205: words = RecordWords(list, count, 1, 1, 1); break;
    case 305: words = 1 + 2u * count; break;
    case 405:
    case 505: {
      const uint32_t rows = count == 0 ? 0 : count - 1u;
      list.resize(6 + (style == 405 ? 2 : 1) * std::size_t{rows});
      return list;
    }
    default: break;
  }
  list.resize(2 * words);
  return list;
}

void CallOutput(Input& input, DeviceHandle* handle) {
  const uint16_t styles[] = {4, 5, 205, 305, 405, 505, 104, 105, 80, 81, 6, 0};
  const uint16_t style = styles[input.Byte() % 12];
  const bool many = input.Byte() == 0xFF;
  const uint16_t count = static_cast<uint16_t>(many ? input.Word() % 2048 : input.Byte() % 64);
  const uint8_t given = input.Byte();
  const PhysicalBrush brush = TakeBrush(input);
  const PhysicalPen pen{static_cast<uint16_t>(input.Byte() % 7), 1, 1, input.Long()};
  const DRAWMODE mode = TakeDrawMode(input);
  const BandRect clip = input.Rect();
  const Block list(TakeSpanList(input, style, count));
  QNVOutput(handle, style, count, given & 1 ? nullptr : reinterpret_cast<const int16_t*>(list.data()),
            given & 2 ? &pen : nullptr, given & 4 ? &brush : nullptr, given & 8 ? nullptr : &mode,
            given & 16 ? nullptr : &clip);
}

// The font has random numbers in its record, but a table with an entry for every code and glyphs that lie in its block.
void CallText(Input& input, DeviceHandle* handle) {
  constexpr std::size_t kEntries = 512;  // enough for every sum of code, first and default character
  const uint8_t choice = input.Byte();
  const bool twoByte = (choice & 1) != 0;
  const bool shortTable = !twoByte && (choice & 2) != 0;
  const uint16_t offset = static_cast<uint16_t>(input.Byte() * 7);
  const int16_t height = static_cast<int16_t>(input.Byte() % 40 - 2);
  const std::size_t glyphBytes = std::size_t{8} * 40;  // 64 columns
  const std::size_t glyphs = offset + (shortTable ? 49u + 4 * kEntries : 82u + 6 * kEntries);
  std::vector<uint8_t> font(glyphs + 512 + glyphBytes);
  uint8_t* record = font.data() + offset;
  const auto put16 = [](uint8_t* at, uint32_t value) {
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
  };
  put16(record, twoByte ? 0x20u : shortTable ? 0x200u : choice);
  if (!twoByte) record[0] &= static_cast<uint8_t>(~0x20);
  put16(record + 20, input.Byte() % 65);
  put16(record + 22, static_cast<uint16_t>(height));
  record[24] = input.Byte();
  for (int i = 29; i <= 32; ++i) record[i] = input.Byte();
  const uint8_t seed = input.Byte();
  for (std::size_t i = 0; i < kEntries; ++i) {
    uint8_t* entry = record + (shortTable ? 49 + 4 * i : 82 + 6 * i);
    put16(entry, static_cast<uint32_t>(i * seed % 65));
    put16(entry + 2, static_cast<uint32_t>(glyphs + (i * 31 + seed) % 512));
  }
  for (std::size_t i = glyphs; i < font.size(); ++i) font[i] = static_cast<uint8_t>(i * (seed | 1));
  const int16_t count = static_cast<int16_t>(input.Byte() % 48 - 16);
  const std::size_t length = static_cast<std::size_t>(count < 0 ? -count : count);
  std::vector<uint8_t> text = input.Bytes(twoByte ? 2 * length : length);
  for (std::size_t i = 1; twoByte && i < text.size(); i += 2) text[i] &= 1;
  std::vector<uint8_t> widths = input.Bytes(2 * length);
  if (length == 0) widths.resize(2);
  DRAWMODE mode = TakeDrawMode(input);
  const BandRect clip = input.Rect();
  const BandRect opaque = input.Rect();
  const int32_t x = input.Coordinate();
  const int32_t y = input.Coordinate();
  const uint8_t given = input.Byte();
  const Block fontBlock(font);
  const Block string(text);
  const Block widthBlock(widths);
  QNVDevExtTextOut(handle, x, y, given & 1 ? nullptr : &clip, given & 64 ? nullptr : string.data(), count,
                   given & 128 ? nullptr : fontBlock.data(), offset, &mode, nullptr,
                   given & 2 ? reinterpret_cast<const int16_t*>(widthBlock.data()) : nullptr,
                   given & 4 ? &opaque : nullptr, given >> 3 & 6u);
}

std::vector<uint8_t> TerminatedCodes(std::vector<uint8_t> codes, uint32_t rows) {
  // A literal whose count is the last byte takes 256 bytes more.
  codes.resize(codes.size() + 260 + 2 * std::size_t{rows});
  return codes;
}

// The header is random. The color table and, for sizes that the library accepts, the rows are complete.
void CallImage(Input& input, DeviceHandle* handle) {
  const auto size = [&](uint8_t kind) -> int32_t {
    // Any size, as in documents. Sizes up to 64 are followed by all their rows; larger ones are refused by the library.
    if (kind == 0xFF) return static_cast<int32_t>(input.Long() | 0x8000);
    if (kind == 0xFE) return -(1 + input.Byte() % 64);
    return kind % 65;
  };
  BITMAPINFOHEADER header;
  std::memset(&header, 0, sizeof header);
  header.biWidth = size(input.Byte());
  header.biHeight = size(input.Byte());
  if (header.biHeight >= -32767 && header.biHeight < -64) header.biHeight = -64;
  const uint16_t depths[] = {1, 4, 8, 16, 24, 32, 8, 4};
  const uint8_t format = input.Byte();
  header.biBitCount = format == 0xFF ? input.Word() : depths[format % 8];
  header.biPlanes = format == 0xFE ? input.Byte() : 1;
  header.biCompression = format / 8 % 8;
  const uint8_t used = input.Byte();
  header.biClrUsed = used == 0xFF ? input.Long() : used == 0xFE ? input.Byte() : 0;
  const uint8_t size8 = input.Byte();
  header.biSize = size8 == 0xFF ? input.Long() : size8 == 0xFE ? input.Word() : 40u + size8;
  // The color table follows the header, full or as long as the header says. With a size that is refused there is none.
  std::size_t infoBytes = sizeof header;
  if (header.biBitCount == 16 && header.biCompression == BI_BITFIELDS) infoBytes += 12;
  if (header.biBitCount <= 8 && header.biSize >= 40 && header.biSize <= 4096) {
    const uint32_t full = 1u << header.biBitCount;
    infoBytes = header.biSize + 4u * (header.biClrUsed != 0 ? std::min<uint32_t>(header.biClrUsed, full) : full);
  }
  std::vector<uint8_t> infoBytesList(infoBytes, 0x3D);
  const std::vector<uint8_t> masks = input.Bytes(12);
  for (std::size_t i = 40; i < infoBytes; ++i) infoBytesList[i] = masks[(i - 40) % 12];
  std::memcpy(infoBytesList.data(), &header, sizeof header);
  const Block info(infoBytesList);

  const uint8_t place = input.Byte();
  const int32_t dst[4] = {input.Coordinate(), input.Coordinate(), input.Coordinate(), input.Coordinate()};
  const int32_t src[4] = {input.Coordinate(), input.Coordinate(), input.Coordinate(), input.Coordinate()};
  const uint32_t rops[] = {SRCCOPY, ROP_MINIMUM, SRCAND, 0x02000000, static_cast<uint32_t>(input.Byte()) << 16};
  const uint32_t rop = rops[place % 5];
  const PhysicalBrush brush = TakeBrush(input);
  const DRAWMODE mode = TakeDrawMode(input);
  const BandRect clip = input.Rect();

  const bool sized = header.biWidth > 0 && header.biWidth <= 64 && header.biHeight >= -64 && header.biHeight <= 64;
  const uint32_t rows = sized ? static_cast<uint32_t>(header.biHeight < 0 ? -header.biHeight : header.biHeight) : 0;
  const bool runLength = header.biCompression == BI_RLE8 || header.biCompression == BI_RLE4;
  std::vector<uint8_t> bits;
  if (runLength) {
    bits = TerminatedCodes(input.Rest(), rows);
  } else if (sized && header.biBitCount <= 32) {
    const uint32_t stride = ((static_cast<uint32_t>(header.biWidth) * header.biBitCount + 7) / 8 + 3) & ~3u;
    bits = input.Bytes(std::size_t{stride} * rows);
  }
  const Block bitBlock(bits);
  if (place & 64) {
    QNVDevSetDIBitsToDevice(handle, dst[0], dst[1], static_cast<uint32_t>(src[1]), static_cast<uint32_t>(src[3]), &clip,
                            &mode, bitBlock.data(), info.data(), nullptr);
  } else {
    QNVStretchDIBits(handle, 0, dst[0], dst[1], dst[2], dst[3], src[0], src[1], src[2], src[3], bitBlock.data(),
                     info.data(), nullptr, rop, place & 128 ? nullptr : &brush, &mode, &clip);
  }
}

// The source is complete for its size; the places are random.
void CallTransfer(Input& input, DeviceHandle* handle) {
  const uint8_t form = input.Byte();
  SourceBitmap source;
  std::memset(&source, 0, sizeof source);
  source.bmWidth = static_cast<int16_t>(input.Byte() % 80);
  source.bmHeight = static_cast<int16_t>(input.Byte() % 40);
  source.bmPlanes = form == 0xFF ? 3 : 1;
  const uint8_t depths[] = {1, 24, 8};
  source.bmBitsPixel = depths[form % 3];
  // Wide enough for three bytes a pixel, as which some devices read every depth.
  source.bmWidthBytes = static_cast<uint16_t>(source.bmWidth * 3 + form % 5);
  const std::vector<uint8_t> pixels =
      input.Bytes(std::size_t{source.bmWidthBytes} * static_cast<uint16_t>(source.bmHeight));
  const Block pixelBlock(pixels);
  source.bmBits = pixelBlock.data();
  const uint32_t rop = static_cast<uint32_t>(input.Byte()) << 16 | static_cast<uint32_t>(form == 0xFE) << 24;
  const int32_t dst[4] = {input.Coordinate(), input.Coordinate(), input.Coordinate(), input.Coordinate()};
  const int32_t src[2] = {input.Coordinate(), input.Coordinate()};
  const PhysicalBrush brush = TakeBrush(input);
  const DRAWMODE mode = TakeDrawMode(input);
  const BandRect clip = input.Rect();
  const uint8_t given = input.Byte();
  QNVDevBitBlt(handle, dst[0], dst[1], given & 1 ? nullptr : &source, src[0], src[1], dst[2], dst[3], rop,
               given & 2 ? nullptr : &brush, given & 4 ? nullptr : &mode, given & 8 ? nullptr : &clip);
}

}  // namespace qnv::fuzz
