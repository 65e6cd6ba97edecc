// The formulas of the table: which memory of the host a call reads through each argument. They follow what the library
// promises in qnvdrv10.h and do not depend on the clip or the place of the band, so that a call that is repeated for
// every band names the same bytes each time.
//
// The same functions serve the recorder, for which all memory that a host promises is there, and the reader of call
// files, which must not trust the numbers of a file: it passes the memory that the file holds as a limit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "calls/device_shape.h"
#include "calls/invoke.h"

namespace qnv::calls {

// The memory that may be read.
class Limit {
 public:
  // All of it: for memory of a living host.
  Limit() = default;
  Limit(const void* begin, std::size_t bytes)
      : begin_(reinterpret_cast<uintptr_t>(begin)), end_(reinterpret_cast<uintptr_t>(begin) + bytes) {}

  bool Holds(const void* at, uint64_t bytes) const {
    const auto address = reinterpret_cast<uintptr_t>(at);
    return bytes == 0 || (address >= begin_ && address <= end_ && bytes <= end_ - address);
  }

 private:
  uintptr_t begin_ = 0;
  uintptr_t end_ = UINTPTR_MAX;
};

template <class T>
T ReadAs(const void* at) {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

// A place at a distance from a pointer, which may itself lie outside any memory: only the place need be there.
inline const uint8_t* PlaceAt(const void* pointer, int64_t distance) {
  return reinterpret_cast<const uint8_t*>(reinterpret_cast<uintptr_t>(pointer) + static_cast<uintptr_t>(distance));
}

// Memory behind a pointer, as a distance from it.
struct Range {
  std::ptrdiff_t first = 0;
  std::size_t bytes = 0;
};

// More than this is not kept for one argument.
inline constexpr uint64_t kMaxArgumentBytes = uint64_t{256} << 20;

// ---- Spans

// Bytes of a span list. False when the limit cuts it off.
bool SpanListBytes(uint16_t style, uint16_t count, const void* points, const Limit& limit, std::size_t* bytes);

// ---- Bitmaps

// A DIB header, checked as the library checks it.
struct DibShape {
  bool isPainted = false;  // false: the header is refused, and nothing but the header is read
  int32_t width = 0, height = 0;
  bool topDown = false;
  uint16_t bitCount = 0;
  uint32_t compression = 0;
  uint32_t headerBytes = 40;  // with color table or masks
  uint32_t colors = 0;        // entries of the color table that are read

  bool IsRle() const { return compression == BI_RLE8 || compression == BI_RLE4; }
  uint64_t RowBytes() const { return ((static_cast<uint64_t>(width) * bitCount + 7) / 8 + 3) & ~uint64_t{3}; }
};

// Reads the header. False when the limit does not hold it with its color table.
bool ReadDibShape(const void* bitmapInfo, const Limit& limit, DibShape* shape);

// The rows of an image call: the source rectangle and the extents that it is stretched to.
struct ImageRequest {
  int32_t dstY, dstHeight, srcY, srcHeight;
  int32_t originY;
};

// The bits that an image call reads. False when the limit cuts run-length data off.
bool DibBitsRange(const DibShape& shape, const ImageRequest& request, const void* bits, const Limit& limit,
                  Range* range);

// Where run-length data that are decoded as `shape` says end. Stops at `limit`. sawEnd: an end of bitmap came.
// maxIndex: the highest palette index that was met.
struct RleExtent {
  std::size_t bytes = 0;
  bool complete = false;
  bool sawEnd = false;
  uint8_t maxIndex = 0;
};
RleExtent MeasureRle(const DibShape& shape, const void* bits, const Limit& limit);

// The pixels of a source bitmap that a transfer may read: rows of `rowBytes`, `stride` apart.
struct SourceRange {
  std::ptrdiff_t first = 0;
  std::size_t rowBytes = 0, stride = 0, rows = 0;

  std::size_t Bytes() const { return rows == 0 ? 0 : (rows - 1) * stride + rowBytes; }
};

// A source bitmap without its pointer.
struct SourceFields {
  int16_t type, width, height;
  uint16_t widthBytes;
  uint8_t planes, bitsPixel;
};
SourceFields ReadSourceFields(const void* record);

SourceRange TransferSourceRange(const SourceFields& source, const DeviceShape& device, const Slots& slots);
// The 8 x 8 pixels that a pattern brush is made from.
SourceRange PatternSourceRange(const SourceFields& source);

bool RopReadsSource(uint32_t rop);
bool RopReadsPattern(uint32_t rop);

// ---- Objects

inline constexpr std::size_t kSolidBrushBytes = 12;

// Bytes of a realised brush that are read.
inline std::size_t BrushBytes(const void* brush) {
  const auto style = ReadAs<uint16_t>(brush);
  return style == BS_HATCHED || style == BS_PATTERN ? sizeof(PhysicalBrush) : kSolidBrushBytes;
}

// Bytes that QNVRealizeObject has written, by its arguments and its result.
std::size_t RealisedBytes(const Slots& slots, uint32_t result);

// The color of a realised pattern brush is made from the address of its bitmap and means nothing: sets it to 0.
// realised: what QNVRealizeObject has written, `bytes` of it.
inline void ForgetAddress(uint8_t* realised, std::size_t bytes) {
  if (bytes >= kSolidBrushBytes && ReadAs<uint16_t>(realised) == BS_PATTERN) std::memset(realised + 8, 0, 4);
}

// Bytes of the data of an escape.
inline std::size_t EscapeBytes(uint16_t code) {
  return code == QNV_SET_ORIGIN ? sizeof(DrawingOrigin) : code == QNV_SET_BAND_RECT ? sizeof(BandRect) : 0;
}

// ---- Text

// The places of the arguments of QNVDevExtTextOut that decide what is read.
struct TextShape {
  bool reads = false;  // false: the call ends before it reads anything
  int32_t characters = 0;
  bool draws = false;
  bool twoByte = false, variablePitch = false, shortTable = false;
  int32_t fixedWidth = 0, height = 0;
  uint8_t firstChar = 0, lastChar = 0, defaultChar = 0;
  uint32_t fontOffset = 0;
  std::size_t stringBytes = 0, widthBytes = 0;

  bool ReadsTable() const { return draws || twoByte || variablePitch; }
  uint32_t EntryBytes() const { return shortTable ? 4 : 6; }
  // The index of a character in the table; `string` is the whole string.
  uint16_t IndexOf(const uint8_t* string, int32_t i) const {
    if (twoByte) return static_cast<uint16_t>(string[2 * i] | string[2 * i + 1] << 8);
    const uint8_t code = string[i];
    const uint8_t mapped = code < firstChar || code > lastChar ? static_cast<uint8_t>(defaultChar + firstChar) : code;
    return static_cast<uint8_t>(mapped - firstChar);
  }
  // Distance of a table entry from the base of the font.
  uint32_t EntryAt(uint16_t index) const { return fontOffset + (shortTable ? 49u + 4u * index : 82u + 6u * index); }
};
inline constexpr std::size_t kFontRecordBytes = 33;

// False when the limit of the font does not hold its record.
bool ReadTextShape(const Slots& slots, const Limit& font, TextShape* shape);

// The bits of a glyph, as a distance from the base of the font; no bytes when the call does not read them.
struct GlyphRange {
  uint32_t first = 0;
  uint64_t bytes = 0;
};
inline GlyphRange GlyphOf(const TextShape& shape, const uint8_t* entry) {
  GlyphRange glyph;
  if (!shape.draws) return glyph;
  const bool fromTable = shape.twoByte || shape.variablePitch;
  const int32_t width = fromTable ? ReadAs<uint16_t>(entry) : shape.fixedWidth;
  glyph.first = shape.shortTable ? ReadAs<uint16_t>(entry + 2) : ReadAs<uint32_t>(entry + 2);
  if (width > 0 && shape.height > 0) glyph.bytes = (uint64_t(width) + 7) / 8 * uint64_t(shape.height);
  return glyph;
}

// ---- A whole call

// Whether the memory that a call names is there: limits[i] is the memory behind argument i, nested the one behind the
// pointer inside a source bitmap or pattern brush (see NestedSource). False for a call that must not be made.
bool MemorySuffices(Function function, const Slots& slots, const DeviceShape& device, const Limit* limits,
                    const Limit& nestedRecord, const Limit& nestedBits);

}  // namespace qnv::calls
