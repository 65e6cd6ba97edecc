// Computes which memory a call reads.
#include "calls/memory_reads.h"

#include <algorithm>

namespace qnv::calls {
namespace {

constexpr int32_t kMaxDibPixels = 32767;

bool IsBetween(int64_t low, int64_t value, int64_t high) { return low <= value && value <= high; }

bool IsDibDepth(uint16_t bits) { return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32; }

// Reads span lists word by word and keeps the end of what was read.
class SpanWalk {
 public:
  SpanWalk(const void* points, const Limit& limit) : begin_(static_cast<const uint8_t*>(points)), limit_(limit) {}

  // Words [0, words) of the current record are read.
  bool Touch(int64_t words) {
    if (words <= 0) return true;
    const int64_t end = at_ + 2 * words;
    if (end > end_) {
      if (!limit_.Holds(begin_, static_cast<uint64_t>(end))) return false;
      end_ = end;
    }
    return true;
  }
  int16_t First() const { return ReadAs<int16_t>(begin_ + at_); }
  // False when the list ends because the next record would lie before it.
  bool Advance(int64_t words) {
    if (at_ < -2 * words) return false;
    at_ += 2 * words;
    return true;
  }
  std::size_t bytes() const { return static_cast<std::size_t>(end_); }

 private:
  const uint8_t* begin_;
  const Limit& limit_;
  int64_t at_ = 0, end_ = 0;  // bytes
};

int64_t Pairs(int16_t n) { return n > 0 ? (int64_t{n} + 1) / 2 : 0; }

// Records of spans, each behind `head` words of which the first is their number, and followed by `tail` words.
bool WalkRecords(SpanWalk& walk, uint16_t count, int64_t head, int64_t tail) {
  for (uint32_t record = 0; record < count; ++record) {
    if (!walk.Touch(head)) return false;
    const int16_t n = walk.First();
    if (!walk.Touch(head + 2 * Pairs(n))) return false;
    if (!walk.Advance(head + n + tail)) return true;
  }
  return true;
}

}  // namespace

bool SpanListBytes(uint16_t style, uint16_t count, const void* points, const Limit& limit, std::size_t* bytes) {
  *bytes = 0;
  if (points == nullptr) return true;
  const std::size_t furtherRows = count == 0 ? 0 : count - std::size_t{1};
  switch (style) {
    case OS_SCANLINES:
    case OS_SCANLINES + 100: *bytes = std::size_t{4} * count; break;
    case OS_ROW_SPANS: *bytes = count == 0 ? 0 : 2 + std::size_t{4} * count; break;
    case OS_BYTE_DELTAS: *bytes = 6 + 2 * furtherRows; break;
    case OS_NIBBLE_DELTAS: *bytes = 6 + furtherRows; break;
    case OS_BANDED_SPANS:
    case OS_BANDED_SPANS + 100:
    case OS_ROW_RECORDS: {
      if (count == 0) return true;
      SpanWalk walk(points, limit);
      const bool rows = style == OS_ROW_RECORDS;
      if (rows && (!walk.Touch(1) || !walk.Advance(1))) return false;
      if (!WalkRecords(walk, count, rows ? 1 : 3, rows ? 0 : 1)) return false;
      *bytes = walk.bytes();
      return true;
    }
    default: return true;
  }
  return limit.Holds(points, *bytes);
}

bool ReadDibShape(const void* bitmapInfo, const Limit& limit, DibShape* shape) {
  *shape = DibShape{};
  if (!limit.Holds(bitmapInfo, sizeof(BITMAPINFOHEADER))) return false;
  const auto header = ReadAs<BITMAPINFOHEADER>(bitmapInfo);
  if (header.biPlanes != 1 || !IsDibDepth(header.biBitCount)) return true;
  if (!IsBetween(1, header.biWidth, kMaxDibPixels)) return true;
  if (header.biHeight == 0 || !IsBetween(-kMaxDibPixels, header.biHeight, kMaxDibPixels)) return true;
  if (header.biCompression == BI_RLE8 && header.biBitCount != 8) return true;
  if (header.biCompression == BI_RLE4 && header.biBitCount != 4) return true;
  if (header.biCompression > BI_BITFIELDS && header.biCompression != 6) return true;
  if (header.biBitCount <= 8 && !IsBetween(40, header.biSize, 4096)) return true;
  shape->isPainted = true;
  shape->width = header.biWidth;
  shape->topDown = header.biHeight < 0;
  shape->height = shape->topDown ? -header.biHeight : header.biHeight;
  shape->bitCount = header.biBitCount;
  shape->compression = header.biCompression;
  if (header.biBitCount <= 8) {
    const uint32_t full = 1u << header.biBitCount;
    shape->colors = header.biClrUsed != 0 ? std::min(header.biClrUsed, full) : full;
    shape->headerBytes = header.biSize + 4 * shape->colors;
  } else if (header.biBitCount == 16 && header.biCompression == BI_BITFIELDS) {
    shape->headerBytes = 52;
  }
  return limit.Holds(bitmapInfo, shape->headerBytes);
}

RleExtent MeasureRle(const DibShape& shape, const void* bits, const Limit& limit) {
  const auto* const begin = static_cast<const uint8_t*>(bits);
  const bool fourBit = shape.compression == BI_RLE4;
  RleExtent extent;
  std::size_t at = 0;
  const auto touch = [&](std::size_t bytes) {
    if (!limit.Holds(begin, uint64_t{at} + bytes)) return false;
    extent.bytes = std::max(extent.bytes, at + bytes);
    return true;
  };
  // The indices of the pixels [0, pixels) of a record.
  const auto note = [&](const uint8_t* data, int32_t pixels, bool run) {
    for (int32_t i = 0; i < pixels; ++i) {
      uint8_t index;
      if (fourBit) {
        const uint8_t both = data[run ? 0 : i / 2];
        index = static_cast<uint8_t>((i & 1) == 0 ? both >> 4 : both & 0x0F);
        if (run && i == 1) i = pixels;
      } else {
        index = data[run ? 0 : i];
        if (run) i = pixels;
      }
      extent.maxIndex = std::max(extent.maxIndex, index);
    }
  };
  int32_t column = 0;
  for (int32_t row = 0; row < shape.height;) {
    // The codes behind the last pixel of the last row are not read.
    if (row == shape.height - 1 && column >= shape.width) break;
    if (!touch(2)) return extent;
    const uint8_t first = begin[at], second = begin[at + 1];
    at += 2;
    if (first != 0) {
      const int32_t pixels = std::min<int32_t>(first, shape.width - column);
      note(begin + at - 1, pixels, true);
      column += pixels;
    } else if (second == 0) {
      column = 0;
      ++row;
    } else if (second == 1) {
      extent.sawEnd = true;
      break;
    } else if (second == 2) {
      if (!touch(2)) return extent;
      column = std::min(column + begin[at], shape.width);
      row += begin[at + 1];
      at += 2;
    } else {
      const int32_t pixels = std::min<int32_t>(second, shape.width - column);
      // The pixels of an eight-bit literal that do not fit are read as codes, as the library does.
      const int32_t data = fourBit ? (second + 1) / 2 : pixels;
      const int32_t padding = data & 1;
      const std::size_t padded = static_cast<std::size_t>(data) + static_cast<std::size_t>(padding);
      const bool last = row == shape.height - 1 && column + pixels >= shape.width;
      if (!touch(last ? static_cast<std::size_t>(fourBit ? (pixels + 1) / 2 : pixels) : padded)) return extent;
      note(begin + at, pixels, false);
      at += padded;
      column += pixels;
    }
  }
  extent.complete = true;
  return extent;
}

bool DibBitsRange(const DibShape& shape, const ImageRequest& request, const void* bits, const Limit& limit,
                  Range* range) {
  *range = Range{};
  if (!shape.isPainted) return true;
  if (shape.IsRle()) {
    const RleExtent extent = MeasureRle(shape, bits, limit);
    range->bytes = extent.bytes;
    return extent.complete;
  }
  int64_t low = 0, high = shape.height;
  const int64_t srcY = shape.topDown ? int64_t{shape.height} - request.srcY : request.srcY;
  const int64_t srcHeight = shape.topDown ? -int64_t{request.srcHeight} : request.srcHeight;
  const int64_t dstY = int64_t{request.dstY} + request.originY;
  // Where positions wrap, any row may be read.
  const bool wraps =
      !IsBetween(-kMaxDibPixels, srcY, kMaxDibPixels) || !IsBetween(-kMaxDibPixels, srcY + srcHeight, kMaxDibPixels) ||
      !IsBetween(INT32_MIN, dstY, INT32_MAX) || !IsBetween(INT32_MIN, dstY + request.dstHeight, INT32_MAX);
  if (!wraps) {
    // Rounding may add a row on either side.
    low = std::max<int64_t>(low, std::min(srcY, srcY + srcHeight) - 1);
    high = std::min<int64_t>(high, std::max(srcY, srcY + srcHeight) + 1);
  }
  if (low >= high) return true;
  const uint64_t rowBytes = shape.RowBytes();
  const uint64_t lastRow = (static_cast<uint64_t>(shape.width) * shape.bitCount + 7) / 8;
  range->first = static_cast<std::ptrdiff_t>(static_cast<uint64_t>(low) * rowBytes);
  range->bytes = static_cast<std::size_t>(static_cast<uint64_t>(high - low - 1) * rowBytes + lastRow);
  return limit.Holds(PlaceAt(bits, range->first), range->bytes);
}

SourceFields ReadSourceFields(const void* record) {
  const auto bitmap = ReadAs<SourceBitmap>(record);
  return {bitmap.bmType, bitmap.bmWidth, bitmap.bmHeight, bitmap.bmWidthBytes, bitmap.bmPlanes, bitmap.bmBitsPixel};
}

SourceRange TransferSourceRange(const SourceFields& source, const DeviceShape& device, const Slots& slots) {
  constexpr std::size_t kSrcX = 4, kSrcY = 5, kWidth = 6, kHeight = 7;
  struct Part {
    int64_t low, high;
  };
  const auto part = [](int32_t from, int32_t extent, int16_t size) -> Part {
    const int64_t end = int64_t{from} + extent;
    // An end that wraps may lead to any pixel.
    if (!IsBetween(INT32_MIN, end, INT32_MAX)) return {0, size};
    return {std::max<int64_t>(from, 0), std::min<int64_t>(end, size)};
  };
  const Part columns = part(slots.Signed(kSrcX), slots.Signed(kWidth), source.width);
  const Part rows = part(slots.Signed(kSrcY), slots.Signed(kHeight), source.height);
  SourceRange range;
  if (columns.low >= columns.high || rows.low >= rows.high) return range;
  int64_t firstByte, endByte;
  if (source.planes == 1 && source.bitsPixel == 1) {
    firstByte = columns.low / 8;
    endByte = (columns.high + 7) / 8;
  } else {
    const int64_t pixelBytes = device.SourcePixelBytes();
    if (device.IsScaled() || device.IsGray8()) {
      // The first pixel counts by the record's depth, the ones behind it by that of the band. Any column may be the
      // first one, depending on where the band cuts the source off.
      firstByte = columns.low * source.bitsPixel / 8;
      endByte = std::max(firstByte + (columns.high - columns.low) * pixelBytes,
                         (columns.high - 1) * source.bitsPixel / 8 + pixelBytes);
    } else {
      firstByte = columns.low * pixelBytes;
      endByte = columns.high * pixelBytes;
    }
  }
  range.first = static_cast<std::ptrdiff_t>(rows.low * source.widthBytes + firstByte);
  range.rowBytes = static_cast<std::size_t>(endByte - firstByte);
  range.stride = source.widthBytes;
  range.rows = static_cast<std::size_t>(rows.high - rows.low);
  return range;
}

SourceRange PatternSourceRange(const SourceFields& source) {
  const std::size_t rowBytes = source.bitsPixel == 24 ? 24 : source.bitsPixel == 8 ? 8 : 1;
  return {0, rowBytes, source.widthBytes, 8};
}

bool RopReadsSource(uint32_t rop) {
  const uint32_t index = rop >> 16 & 0xFF;
  return ((index >> 2 ^ index) & 0x33) != 0;
}

bool RopReadsPattern(uint32_t rop) {
  const uint32_t index = rop >> 16 & 0xFF;
  return ((index >> 4 ^ index) & 0x0F) != 0;
}

std::size_t RealisedBytes(const Slots& slots, uint32_t result) {
  constexpr std::size_t kKind = 1, kInput = 2, kOutput = 3;
  if (slots.at[kOutput] == 0 || slots.at[kInput] == 0) return 0;
  const uint16_t kind = slots.Low16(kKind);
  if (kind == OBJ_PEN) return result == 0 ? 0 : sizeof(PhysicalPen);
  if (kind != OBJ_BRUSH) return 0;
  const void* const input = slots.Pointer<void>(kInput);
  const auto logical = ReadAs<LogicalBrush>(input);
  const bool hatched = logical.style == BS_HATCHED && IsBetween(HS_HORIZONTAL, logical.hatch, HS_DIAGCROSS);
  const bool patterned = logical.style == BS_PATTERN && (result & 0xFFFF) != 0;
  return hatched || patterned ? sizeof(PhysicalBrush) : kSolidBrushBytes;
}

bool ReadTextShape(const Slots& slots, const Limit& font, TextShape* shape) {
  constexpr std::size_t kString = 4, kCount = 5, kFontBase = 6, kFontOffset = 7, kMode = 8, kWidths = 10;
  *shape = TextShape{};
  const auto count = static_cast<int16_t>(slots.Low16(kCount));
  if (slots.at[kFontBase] == 0 || slots.at[kMode] == 0 || (slots.at[kString] == 0 && count != 0)) return true;
  shape->reads = true;
  shape->fontOffset = slots.Low16(kFontOffset);
  const uint8_t* const record = PlaceAt(slots.Pointer<void>(kFontBase), shape->fontOffset);
  if (!font.Holds(record, kFontRecordBytes)) return false;
  const auto info = ReadAs<FONTINFO>(record);
  shape->characters = count < 0 ? -count : count;
  shape->draws = count > 0;
  shape->twoByte = (info.dfType & 0x20) != 0;
  shape->shortTable = info.dfType == 0x200;
  shape->variablePitch = (info.dfPitchAndFamily & 1) != 0;
  shape->fixedWidth = info.dfPixWidth;
  shape->height = info.dfPixHeight;
  shape->firstChar = info.dfFirstChar;
  shape->lastChar = info.dfLastChar;
  shape->defaultChar = info.dfDefaultChar;
  const auto characters = static_cast<std::size_t>(shape->characters);
  shape->stringBytes = characters * (shape->twoByte ? 2 : 1);
  if (slots.at[kWidths] != 0 && characters != 0) {
    shape->widthBytes = 2 * std::max<std::size_t>(characters - 1, shape->twoByte ? 1 : 0);
  }
  return true;
}

namespace {

bool TextSuffices(const Slots& slots, const Limit* limits) {
  constexpr std::size_t kString = 4, kFontBase = 6, kWidths = 10;
  TextShape shape;
  if (!ReadTextShape(slots, limits[kFontBase], &shape)) return false;
  if (!shape.reads) return true;
  if (!limits[kString].Holds(slots.Pointer<void>(kString), shape.stringBytes)) return false;
  if (!limits[kWidths].Holds(slots.Pointer<void>(kWidths), shape.widthBytes)) return false;
  if (!shape.ReadsTable()) return true;
  const uint8_t* const string = slots.Pointer<uint8_t>(kString);
  const uint8_t* const base = slots.Pointer<uint8_t>(kFontBase);
  for (int32_t i = 0; i < shape.characters; ++i) {
    const uint8_t* const entry = PlaceAt(base, shape.EntryAt(shape.IndexOf(string, i)));
    if (!limits[kFontBase].Holds(entry, shape.EntryBytes())) return false;
    const GlyphRange glyph = GlyphOf(shape, entry);
    if (glyph.bytes != 0 && !limits[kFontBase].Holds(PlaceAt(base, glyph.first), glyph.bytes)) return false;
  }
  return true;
}

bool RangeHolds(const Limit& limit, const void* bits, const SourceRange& range) {
  return limit.Holds(PlaceAt(bits, range.first), range.Bytes());
}

}  // namespace

bool MemorySuffices(Function function, const Slots& slots, const DeviceShape& device, const Limit* limits,
                    const Limit& nestedRecord, const Limit& nestedBits) {
  const EntryPoint& entry = EntryPointOf(function);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    const void* const at = slots.Pointer<void>(i);
    if (at == nullptr) continue;
    const Limit& limit = limits[i];
    bool holds = true;
    switch (entry.arguments[i].memory) {
      case Memory::kNone:
      case Memory::kHandle:
      case Memory::kUnread:
      case Memory::kBand:
      case Memory::kTagPlane:
      case Memory::kString:
      case Memory::kFont:
      case Memory::kCharWidths:
      case Memory::kDibBits:  // with the header
        break;
      case Memory::kDescription: holds = limit.Holds(at, sizeof(DeviceDescription)); break;
      case Memory::kRect: holds = limit.Holds(at, sizeof(BandRect)); break;
      case Memory::kDeviceSize: holds = limit.Holds(at, sizeof(DeviceSize)); break;
      case Memory::kEscapeData: holds = limit.Holds(at, EscapeBytes(slots.Low16(1))); break;
      case Memory::kColor: holds = limit.Holds(at, 4); break;
      case Memory::kRealisedObject: holds = limit.Holds(at, sizeof(PhysicalBrush)); break;
      case Memory::kDrawMode:
      case Memory::kTextDrawMode: holds = limit.Holds(at, sizeof(DRAWMODE)); break;
      case Memory::kPen: holds = limit.Holds(at, sizeof(PhysicalPen)); break;
      case Memory::kBrush: holds = limit.Holds(at, kSolidBrushBytes) && limit.Holds(at, BrushBytes(at)); break;
      case Memory::kLogicalObject: {
        if (slots.at[3] == 0) break;  // asks for the size of the record
        const uint16_t kind = slots.Low16(1);
        if (kind == OBJ_PEN) holds = limit.Holds(at, sizeof(LogicalPen));
        if (kind != OBJ_BRUSH) break;
        holds = limit.Holds(at, sizeof(LogicalBrush));
        if (!holds) break;
        const auto logical = ReadAs<LogicalBrush>(at);
        if (logical.style != BS_PATTERN || logical.colour == 0) break;
        const auto* const record = reinterpret_cast<const SourceBitmap*>(logical.colour);
        holds = nestedRecord.Holds(record, sizeof(SourceBitmap));
        if (!holds) break;
        const auto bitmap = ReadAs<SourceBitmap>(record);
        if (bitmap.bmBits == nullptr) break;
        holds = RangeHolds(nestedBits, bitmap.bmBits, PatternSourceRange(ReadSourceFields(record)));
        break;
      }
      case Memory::kSource: {
        if (!RopReadsSource(slots.Unsigned(8))) break;
        holds = limit.Holds(at, sizeof(SourceBitmap));
        if (!holds) break;
        const auto bitmap = ReadAs<SourceBitmap>(at);
        if (bitmap.bmBits == nullptr) break;
        holds = RangeHolds(nestedBits, bitmap.bmBits, TransferSourceRange(ReadSourceFields(at), device, slots));
        break;
      }
      case Memory::kSpanList: {
        std::size_t bytes;
        holds = SpanListBytes(slots.Low16(1), slots.Low16(2), at, limit, &bytes);
        break;
      }
      case Memory::kDibHeader: {
        const bool stretch = function == Function::kStretchDIBits;
        const std::size_t bitsAt = stretch ? 10 : 7;
        const void* const bits = slots.Pointer<void>(bitsAt);
        if ((stretch && slots.Low16(1) == 1) || bits == nullptr || slots.at[stretch ? 16 : 5] == 0) {
          // Refused. Unscaled calls read the width first.
          holds = stretch || limit.Holds(at, sizeof(BITMAPINFOHEADER));
          break;
        }
        DibShape shape;
        holds = ReadDibShape(at, limit, &shape);
        if (!holds) break;
        const ImageRequest request =
            stretch ? ImageRequest{slots.Signed(3), slots.Signed(5), slots.Signed(7), slots.Signed(9), device.origin.y}
                    : ImageRequest{slots.Signed(2), slots.Signed(4), slots.Signed(3), slots.Signed(4), device.origin.y};
        Range range;
        holds = DibBitsRange(shape, request, bits, limits[bitsAt], &range);
        break;
      }
    }
    if (!holds) return false;
  }
  return function != Function::kDevExtTextOut || TextSuffices(slots, limits);
}

}  // namespace qnv::calls
