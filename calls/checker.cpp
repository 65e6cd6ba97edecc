// The checks.
#include "calls/checker.h"

#include <algorithm>
#include <cstdlib>

#include "calls/hash.h"
#include "calls/memory_reads.h"

namespace qnv::calls {
namespace {

constexpr MistakeText kTexts[kMistakeCount] = {
    {Mistake::kBadHandle, "the handle is null, was not made by QNVEnable, or has been ended by QNVDisable",
     "Keep the handle that QNVEnable returned, check that it is not null, and do not use it after QNVDisable."},
    {Mistake::kNullRecord, "a record is null, and without it the call does nothing",
     "Pass the record; leave the call out where nothing is to be painted."},
    {Mistake::kBandTooLarge, "the rectangle of the band is larger than the described buffer",
     "Describe the size of the memory, and give the band at most that many columns and rows."},
    {Mistake::kForeignBrush, "the brush was realised by a device of another kind, and has other colors or cells here",
     "Realise the brush with the device that paints with it."},
    {Mistake::kNoPattern, "the operation uses a pattern, and none was prepared",
     "Pass the brush and the draw mode with every call whose operation uses the pattern."},
    {Mistake::kTextWithoutClip, "text without a clip is limited by the described size with width and height exchanged",
     "Pass a clip with every text."},
    {Mistake::kRunLengthsTooLong, "the run-length data go on behind biSizeImage",
     "Copy the data of the document into memory that goes on with 260 + 2 x |biHeight| zero bytes."},
    {Mistake::kShortColorTable, "the color table is shorter than the indices that the picture uses",
     "Give the table all colors that are used, and set biClrUsed to their number, or to 0 for all."},
    {Mistake::kFontOffset, "the font offset is over 65,535, or a glyph lies inside the font record and its table",
     "Count glyph offsets from the base of the font, and the offset of the record with 16 bits."},
    {Mistake::kCountAndStyle, "the count does not fit the style of the spans",
     "Give every record an even number of words that is not negative, and every list of deltas at least one row."},
    {Mistake::kWideRows, "a row of the band has more than 65,535 bytes, and images step by the low 16 bits of that",
     "Make the band narrower, for instance by painting the page in columns."},
    {Mistake::kDroppedRows, "source rows of an enlarged image begin on page rows that the band does not keep",
     "Draw the image in strips that begin on rows that are kept, or scale it first and draw it 1:1."},
    {Mistake::kMovedWithoutClear,
     "the band was moved after it had been painted, and is painted again without being cleared",
     "Clear the band with QNV_CLEAR_BAND after QNV_SET_BAND_RECT."},
};

// Places of arguments.
constexpr std::size_t kBltSource = 3, kBltRop = 8, kBltBrush = 9, kBltMode = 10, kBltClip = 11;
constexpr std::size_t kOutStyle = 1, kOutCount = 2, kOutPoints = 3, kOutBrush = 5, kOutMode = 6, kOutClip = 7;
constexpr std::size_t kTextClip = 3, kTextString = 4, kTextCount = 5, kTextFont = 6, kTextOffset = 7, kTextMode = 8;
constexpr std::size_t kStretchGet = 1, kStretchBits = 10, kStretchInfo = 11, kStretchRop = 13, kStretchBrush = 14,
                      kStretchMode = 15, kStretchClip = 16;
constexpr std::size_t kSetClip = 5, kSetBits = 7, kSetInfo = 8;

bool IsBracket(uint16_t style) { return style == OS_BEGINNSCAN || style == OS_ENDNSCAN; }

bool IsImage(Function function) {
  return function == Function::kStretchDIBits || function == Function::kDevSetDIBitsToDevice;
}

// Operations that take black when there is no brush.
bool TakesBlack(uint32_t rop) {
  const uint32_t index = rop >> 16 & 0xFF;
  return index == 0xC0 || index == 0xFB || index == 0xE2;
}

// The records of a span list: whether all counts are even and not negative.
bool HasEvenCounts(const uint8_t* list, uint16_t count, int64_t head, int64_t tail, int64_t at) {
  for (uint32_t record = 0; record < count; ++record) {
    const auto n = ReadAs<int16_t>(list + 2 * at);
    if (n < 0 || (n & 1) != 0) return false;
    at += head + n + tail;
  }
  return true;
}

}  // namespace

const MistakeText& TextOf(Mistake mistake) { return kTexts[static_cast<std::size_t>(mistake) - 1]; }

std::string Describe(const Finding& finding) {
  const EntryPoint& entry = EntryPointOf(finding.function);
  return "call " + std::to_string(finding.call) + ", " + entry.name + ", " + entry.arguments[finding.argument].name +
         ": mistake " + std::to_string(static_cast<int>(finding.mistake)) + ": " + TextOf(finding.mistake).wrong +
         ". " + TextOf(finding.mistake).advice;
}

CallChecker::BrushKind CallChecker::KindOf(const DeviceShape& shape) {
  const uint16_t bits = shape.description.bitsPerPixel;
  const bool gray = shape.IsScaled() ? bits == 0 : !shape.dualPlane && bits == 8;
  const int scale = shape.IsScaled() ? 1 : std::min(shape.description.resolutionA / 720 + 1, 2);
  return {gray, static_cast<uint8_t>(scale)};
}

void CallChecker::Found(Mistake mistake, std::size_t argument) { report_({mistake, call_, function_, argument}); }

void CallChecker::CheckBand(const DeviceDescription& description, const BandRect& rect, std::size_t argument) {
  if (int64_t{rect.right} - rect.left > description.width || int64_t{rect.bottom} - rect.top > description.height) {
    Found(Mistake::kBandTooLarge, argument);
  }
}

void CallChecker::CheckNulls(const Slots& slots) {
  const auto need = [&](std::size_t argument) {
    if (slots.at[argument] == 0) Found(Mistake::kNullRecord, argument);
  };
  switch (function_) {
    case Function::kEnable:
    case Function::kGetDeviceInfo:
      need(0);
      need(1);
      break;
    case Function::kControl:
      if (EscapeBytes(slots.Low16(1)) != 0) need(2);
      break;
    case Function::kRealizeObject:
      if (slots.at[3] != 0) need(2);  // without output the size is asked for
      break;
    case Function::kPixel: need(5); break;
    case Function::kPolyPixel:
      need(6);
      need(7);
      break;
    case Function::kDevBitBlt:
      need(kBltClip);
      if (RopReadsSource(slots.Unsigned(kBltRop))) {
        need(kBltSource);
        if (slots.at[kBltSource] != 0 && ReadAs<SourceBitmap>(slots.Pointer<void>(kBltSource)).bmBits == nullptr) {
          Found(Mistake::kNullRecord, kBltSource);
        }
      }
      break;
    case Function::kOutput:
      if (IsBracket(slots.Low16(kOutStyle))) break;
      need(kOutPoints);
      need(kOutClip);
      break;
    case Function::kDevExtTextOut:
      need(kTextFont);
      need(kTextMode);
      if (slots.Low16(kTextCount) != 0) need(kTextString);
      break;
    case Function::kStretchDIBits:
      need(kStretchBits);
      need(kStretchInfo);
      need(kStretchClip);
      break;
    case Function::kDevSetDIBitsToDevice:
      need(kSetBits);
      need(kSetInfo);
      need(kSetClip);
      break;
    case Function::kDisable:
    case Function::kColorInfo: break;
  }
}

void CallChecker::CheckBrush(const Slots& slots, const Device& device) {
  std::size_t at;
  switch (function_) {
    case Function::kDevBitBlt: at = kBltBrush; break;
    case Function::kOutput: at = kOutBrush; break;
    case Function::kStretchDIBits: at = kStretchBrush; break;
    default: return;
  }
  const void* const brush = slots.Pointer<void>(at);
  if (brush == nullptr) return;
  const auto found = brushes_.find(Hash64(brush, BrushBytes(brush)));
  if (found != brushes_.end() && !found->second.contains(KindOf(device.shape))) Found(Mistake::kForeignBrush, at);
}

void CallChecker::CheckPattern(const Slots& slots, Device& device) {
  std::size_t mode, brush;
  bool uses = true;
  switch (function_) {
    case Function::kOutput:
      mode = kOutMode;
      brush = kOutBrush;
      uses = !IsBracket(slots.Low16(kOutStyle));
      break;
    case Function::kDevBitBlt:
      mode = kBltMode;
      brush = kBltBrush;
      uses = RopReadsPattern(slots.Unsigned(kBltRop));
      break;
    case Function::kStretchDIBits:
      mode = kStretchMode;
      brush = kStretchBrush;
      uses = slots.Unsigned(kStretchRop) < ROP_MINIMUM && RopReadsPattern(slots.Unsigned(kStretchRop));
      if (slots.Unsigned(kStretchRop) == SRCCOPY || slots.Unsigned(kStretchRop) >= ROP_MINIMUM) return;
      break;
    default: return;
  }
  if (uses) {
    if (slots.at[mode] == 0 && !device.hasPattern) {
      Found(Mistake::kNoPattern, mode);
    } else if (function_ != Function::kOutput && slots.at[mode] != 0 && slots.at[brush] == 0 &&
               !TakesBlack(slots.Unsigned(function_ == Function::kDevBitBlt ? kBltRop : kStretchRop))) {
      Found(Mistake::kNoPattern, brush);
    }
  }
  if (slots.at[mode] != 0) device.hasPattern = true;
}

void CallChecker::CheckSpans(const Slots& slots) {
  const uint16_t style = slots.Low16(kOutStyle), count = slots.Low16(kOutCount);
  const auto* const list = slots.Pointer<uint8_t>(kOutPoints);
  if (list == nullptr) return;
  bool fits = true;
  switch (style) {
    case OS_BEGINNSCAN:
    case OS_ENDNSCAN:
    case OS_SCANLINES:
    case OS_SCANLINES + 100:
    case OS_ROW_SPANS: break;
    case OS_BYTE_DELTAS:
    case OS_NIBBLE_DELTAS: fits = count != 0; break;
    case OS_BANDED_SPANS:
    case OS_BANDED_SPANS + 100: fits = HasEvenCounts(list, count, 3, 1, 0); break;
    case OS_ROW_RECORDS: fits = count == 0 || HasEvenCounts(list, count, 1, 0, 1); break;
    default: Found(Mistake::kCountAndStyle, kOutStyle); return;
  }
  if (!fits) Found(Mistake::kCountAndStyle, kOutCount);
}

void CallChecker::CheckText(const Slots& slots, const Device& device) {
  TextShape shape;
  if (!ReadTextShape(slots, Limit(), &shape) || !shape.reads) return;
  if (shape.draws && slots.at[kTextClip] == 0 && device.shape.description.width != device.shape.description.height) {
    Found(Mistake::kTextWithoutClip, kTextClip);
  }
  bool overlaps = slots.Unsigned(kTextOffset) > UINT16_MAX;
  if (shape.draws && !overlaps) {
    const auto* const string = slots.Pointer<uint8_t>(kTextString);
    const auto* const base = slots.Pointer<uint8_t>(kTextFont);
    for (int32_t i = 0; i < shape.characters && !overlaps; ++i) {
      const uint32_t entry = shape.EntryAt(shape.IndexOf(string, i));
      const GlyphRange glyph = GlyphOf(shape, PlaceAt(base, entry));
      overlaps =
          glyph.bytes != 0 && glyph.first < entry + shape.EntryBytes() && glyph.first + glyph.bytes > shape.fontOffset;
    }
  }
  if (overlaps) Found(Mistake::kFontOffset, kTextOffset);
}

// Band row j of an inch shows the page row nearest to j x A / B; an exact half rounds down. Rows count from the top of
// the band.
bool CallChecker::DropsRows(const Slots& slots, const Device& device) const {
  const DeviceDescription& description = device.shape.description;
  const int64_t a = description.resolutionA, b = description.resolutionB;
  if (!device.shape.IsScaled() || a == b || a == 0 || b == 0 || function_ != Function::kStretchDIBits) return false;
  const int64_t height = std::abs(int64_t{slots.Signed(5)}), source = std::abs(int64_t{slots.Signed(9)});
  if (source == 0 || height <= source || height > UINT16_MAX) return false;
  const int64_t top = int64_t{slots.Signed(3)} + device.shape.origin.y + std::min<int64_t>(slots.Signed(5), 0);
  const int64_t bandTop = int64_t{device.shape.rect.top} * a / b;
  const int64_t bandBottom = int64_t{device.shape.rect.bottom} * a / b;
  const auto isKept = [&](int64_t row) {
    const int64_t inInch = ((row - bandTop) % a + a) % a;
    // The band row whose page row this could be, and its neighbors.
    for (int64_t j = inInch * b / a - 1; j <= inInch * b / a + 1; ++j) {
      if (j < 0 || j >= b) continue;
      const int64_t position = j * a;
      if (position / b + (position % b > b / 2 ? 1 : 0) == inInch) return true;
    }
    return false;
  };
  for (int64_t row = 0; row < source; ++row) {
    // Where positions are rounded is left open: both rows must be dropped, and one that surely follows be kept.
    const int64_t first = top + row * height / source, last = top + (row + 1) * height / source;
    if (first < bandTop || last > bandBottom || isKept(first) || isKept(first + 1)) continue;
    for (int64_t later = first + 2; later < last - 1; ++later) {
      if (isKept(later)) return true;
    }
  }
  return false;
}

void CallChecker::CheckImage(const Slots& slots, const Device& device) {
  const bool stretch = function_ == Function::kStretchDIBits;
  const std::size_t infoAt = stretch ? kStretchInfo : kSetInfo, bitsAt = stretch ? kStretchBits : kSetBits;
  const void* const info = slots.Pointer<void>(infoAt);
  const auto* const bits = slots.Pointer<uint8_t>(bitsAt);
  if (info == nullptr || bits == nullptr || slots.at[stretch ? kStretchClip : kSetClip] == 0) return;
  if (stretch && slots.Low16(kStretchGet) == 1) return;
  if (device.shape.Stride() > UINT16_MAX) Found(Mistake::kWideRows, 0);
  DibShape shape;
  ReadDibShape(info, Limit(), &shape);
  if (!shape.isPainted) return;
  if (DropsRows(slots, device)) Found(Mistake::kDroppedRows, bitsAt);
  uint32_t maxIndex = 0;
  if (shape.IsRle()) {
    const RleExtent extent = MeasureRle(shape, bits, Limit());
    const auto promised = ReadAs<BITMAPINFOHEADER>(info).biSizeImage;
    if (promised != 0 && extent.bytes > promised) Found(Mistake::kRunLengthsTooLong, bitsAt);
    maxIndex = extent.maxIndex;
  } else if (shape.bitCount <= 8 && shape.colors < (1u << shape.bitCount)) {
    const ImageRequest request =
        stretch
            ? ImageRequest{slots.Signed(3), slots.Signed(5), slots.Signed(7), slots.Signed(9), device.shape.origin.y}
            : ImageRequest{slots.Signed(2), slots.Signed(4), slots.Signed(3), slots.Signed(4), device.shape.origin.y};
    Range range;
    DibBitsRange(shape, request, bits, Limit(), &range);
    const uint64_t rowBytes = shape.RowBytes();
    for (uint64_t at = 0; at < range.bytes; at += rowBytes) {
      for (int32_t x = 0; x < shape.width; ++x) {
        const uint32_t bit = static_cast<uint32_t>(x) * shape.bitCount;
        const uint8_t byte = *PlaceAt(bits, range.first + static_cast<int64_t>(at + bit / 8));
        const uint32_t index = byte >> (8 - shape.bitCount - bit % 8) & ((1u << shape.bitCount) - 1);
        maxIndex = std::max(maxIndex, index);
      }
    }
  }
  if (shape.bitCount <= 8 && maxIndex >= shape.colors) Found(Mistake::kShortColorTable, infoAt);
}

void CallChecker::Before(std::size_t call, Function function, const Slots& slots, uint32_t device) {
  call_ = call;
  function_ = function;
  const EntryPoint& entry = EntryPointOf(function);
  if (entry.arguments[0].type == Type::kHandle) {
    const auto found = devices_.find(device);
    if (device == 0 || found == devices_.end()) {
      // Ending a null handle is allowed.
      if (function != Function::kDisable || slots.at[0] != 0) Found(Mistake::kBadHandle, 0);
      return;
    }
    CheckNulls(slots);
    Device& state = found->second;
    if (function == Function::kControl && slots.Low16(1) == QNV_SET_BAND_RECT && slots.at[2] != 0) {
      CheckBand(state.shape.description, ReadAs<BandRect>(slots.Pointer<void>(2)), 2);
    }
    if (!entry.draws) return;
    const bool reads = function == Function::kPixel && slots.at[4] == 0;
    if (state.isStale && !reads) {
      Found(Mistake::kMovedWithoutClear, 0);
      state.isStale = false;  // once for each move
    }
    if (!reads) state.wasPainted = true;
    CheckBrush(slots, state);
    CheckPattern(slots, state);
    if (function == Function::kOutput) CheckSpans(slots);
    if (function == Function::kDevExtTextOut) CheckText(slots, state);
    if (IsImage(function)) CheckImage(slots, state);
    return;
  }
  CheckNulls(slots);
  if (function == Function::kEnable && slots.at[0] != 0 && slots.at[1] != 0) {
    CheckBand(ReadAs<DeviceDescription>(slots.Pointer<void>(0)), ReadAs<BandRect>(slots.Pointer<void>(1)), 1);
  }
}

void CallChecker::After(Function function, const Slots& slots, uint32_t device, uint32_t result) {
  if (device == 0) return;
  if (function == Function::kEnable) {
    Device& state = devices_[device];
    state.shape.description = ReadAs<DeviceDescription>(slots.Pointer<void>(0));
    state.shape.rect = ReadAs<BandRect>(slots.Pointer<void>(1));
    state.shape.dualPlane = slots.at[3] != 0 && state.shape.description.kind == QNV_KIND_RASTER;
    return;
  }
  const auto found = devices_.find(device);
  if (found == devices_.end()) return;
  Device& state = found->second;
  switch (function) {
    case Function::kDisable: devices_.erase(found); break;
    case Function::kControl:
      if ((result & 0xFFFF) != 1) break;
      switch (slots.Low16(1)) {
        case QNV_SET_ORIGIN: state.shape.origin = ReadAs<DrawingOrigin>(slots.Pointer<void>(2)); break;
        case QNV_SET_BAND_RECT: {
          const auto rect = ReadAs<BandRect>(slots.Pointer<void>(2));
          const bool moved = rect.left != state.shape.rect.left || rect.top != state.shape.rect.top;
          state.shape.rect = rect;
          if (moved && state.wasPainted) state.isStale = true;
          break;
        }
        default: state.isStale = state.wasPainted = false;
      }
      break;
    case Function::kRealizeObject:
      if (slots.Low16(1) == OBJ_BRUSH && slots.at[3] != 0 && slots.at[2] != 0 && result != 0) {
        const void* const brush = slots.Pointer<void>(3);
        brushes_[Hash64(brush, BrushBytes(brush))].insert(KindOf(state.shape));
      }
      break;
    default: break;
  }
}

}  // namespace qnv::calls
