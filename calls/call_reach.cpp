// Bounds what calls paint, kind by kind: the destination with the origin added, cut to the clip where it limits, mapped
// to the band, and cut to the band.
#include "calls/call_reach.h"

#include <algorithm>

#include "calls/memory_reads.h"

namespace qnv::calls {
namespace {

// A rectangle of page pixels, wide enough for sums.
struct Area {
  int64_t left, top, right, bottom;
};

// Destinations beyond this may wrap somewhere in the library.
constexpr int64_t kMaxCoordinate = 30000;
// Clips are often as large as numbers go. Up to this, adding the origin does not wrap.
constexpr int64_t kMaxClip = int64_t{1} << 29;

constexpr Area kEverything{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};

bool IsWithin(const Area& area, int64_t limit) {
  return std::min({area.left, area.top, area.right, area.bottom}) >= -limit &&
         std::max({area.left, area.top, area.right, area.bottom}) <= limit;
}
bool IsUsual(const Area& area) { return IsWithin(area, kMaxCoordinate); }

Area Cut(const Area& a, const Area& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

// From page pixels, origin added, to pixels of the band's memory.
Reach ToBand(const Area& area, const DeviceShape& device) {
  const Reach whole = BandReach(device);
  Area band{area.left - device.rect.left, area.top - device.rect.top, area.right - device.rect.left,
            area.bottom - device.rect.top};
  if (device.IsScaled()) {
    const int64_t a = device.description.resolutionA, b = device.description.resolutionB;
    const Area rect{device.rect.left, device.rect.top, device.rect.right, device.rect.bottom};
    if (!IsUsual(area) || !IsUsual(rect) || a == 0) return area.left < area.right ? whole : Reach{};
    // Both mappings round, and pictures count from the mapped corner of the band, which rounds once more.
    const int64_t margin = b / a + 3;
    const auto low = [&](int64_t v, int64_t corner) { return v * b / a - corner - margin; };
    const auto high = [&](int64_t v, int64_t corner) { return v * b / a - corner + margin + 1; };
    if (area.left >= area.right || area.top >= area.bottom) return {};
    band = {low(area.left, rect.left), low(area.top, rect.top), high(area.right, rect.left),
            high(area.bottom, rect.top)};
  }
  band = Cut(band, {whole.left, whole.top, whole.right, whole.bottom});
  if (band.left >= band.right || band.top >= band.bottom) return {};
  return {static_cast<int32_t>(band.left), static_cast<int32_t>(band.top), static_cast<int32_t>(band.right),
          static_cast<int32_t>(band.bottom)};
}

// Destination, clip and origin of a call.
class Reacher {
 public:
  Reacher(const Slots& slots, const DeviceShape& device) : slots_(slots), device_(device) {}

  Area Shifted(const Area& area) const {
    return {area.left + device_.origin.x, area.top + device_.origin.y, area.right + device_.origin.x,
            area.bottom + device_.origin.y};
  }
  Area RectAt(std::size_t slot) const {
    const auto rect = ReadAs<BandRect>(slots_.Pointer<void>(slot));
    return Shifted({rect.left, rect.top, rect.right, rect.bottom});
  }

  // Everything inside `area`, origin added, and the clip where it limits strictly: the library widens clips of
  // destinations left of or above 0, lets clips of zeros pass everything, and for tags single edges of 0, too.
  Reach Clipped(const Area& area, std::size_t clipSlot) const {
    if (slots_.at[clipSlot] == 0 || !IsUsual(area)) return ToBand(kEverything, device_);
    const auto raw = ReadAs<BandRect>(slots_.Pointer<void>(clipSlot));
    const Area clip = RectAt(clipSlot);
    const bool isZero = clip.left == 0 && clip.top == 0 && clip.right == 0 && clip.bottom == 0;
    Area cut = area;
    if (!isZero && area.left >= 0 && area.top >= 0 && IsWithin(clip, kMaxClip)) {
      if (raw.left != 0) cut.left = std::max(cut.left, clip.left);
      if (raw.top != 0) cut.top = std::max(cut.top, clip.top);
      if (raw.right != 0) cut.right = std::min(cut.right, clip.right);
      if (raw.bottom != 0) cut.bottom = std::min(cut.bottom, clip.bottom);
    }
    return ToBand(cut, device_);
  }

  // For calls whose clip always limits.
  Reach StrictlyClipped(const Area& area, std::size_t clipSlot) const {
    if (slots_.at[clipSlot] == 0) return {};
    const Area clip = RectAt(clipSlot);
    if (!IsUsual(area) || !IsWithin(clip, kMaxClip)) return ToBand(kEverything, device_);
    return ToBand(Cut(area, clip), device_);
  }

  Reach Pixel() const {
    const int64_t x = slots_.Signed(1), y = slots_.Signed(2);
    return slots_.at[4] == 0 ? Reach{} : Clipped(Shifted({x, y, x + 1, y + 1}), 5);
  }
  Reach PolyPixel() const {
    const int64_t x1 = slots_.Signed(1), y1 = slots_.Signed(2), x2 = slots_.Signed(3), y2 = slots_.Signed(4);
    if (slots_.at[6] == 0) return {};
    return Clipped(Shifted({std::min(x1, x2), std::min(y1, y2), std::max(x1, x2) + 1, std::max(y1, y2) + 1}), 7);
  }
  Reach BitBlt() const {
    const int64_t x = slots_.Signed(1), y = slots_.Signed(2), width = slots_.Signed(6), height = slots_.Signed(7);
    if (slots_.at[11] == 0) return {};
    return Clipped(Shifted({x, y, x + width, y + height}), 11);
  }
  Reach Image(bool stretch) const {
    const std::size_t bits = stretch ? 10 : 7, info = stretch ? 11 : 8, clip = stretch ? 16 : 5;
    if (slots_.at[bits] == 0 || slots_.at[info] == 0 || slots_.at[clip] == 0) return {};
    int64_t x = slots_.Signed(1), y = slots_.Signed(2), width, height;
    if (stretch) {
      x = slots_.Signed(2);
      y = slots_.Signed(3);
      width = slots_.Signed(4);
      height = slots_.Signed(5);
    } else {
      width = ReadAs<BITMAPINFOHEADER>(slots_.Pointer<void>(info)).biWidth;
      height = slots_.Signed(4);
    }
    return StrictlyClipped(
        Shifted({std::min(x, x + width), std::min(y, y + height), std::max(x, x + width), std::max(y, y + height)}),
        clip);
  }
  Reach Spans() const;
  Reach Text() const;

 private:
  const Slots& slots_;
  const DeviceShape& device_;
};

// Grows from nothing.
struct Bounds {
  int64_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;

  void Rows(int64_t first, int64_t end) {
    top = std::min(top, first);
    bottom = std::max(bottom, end);
  }
  void Columns(int64_t first, int64_t end) {
    left = std::min(left, first);
    right = std::max(right, end);
  }
};

Reach Reacher::Spans() const {
  const uint16_t style = slots_.Low16(1), count = slots_.Low16(2);
  if (slots_.at[3] == 0 || slots_.at[7] == 0) return {};
  const auto* const list = slots_.Pointer<uint8_t>(3);
  const auto word = [&](int64_t i) -> int64_t { return ReadAs<int16_t>(list + 2 * i); };
  Bounds bounds;
  switch (style) {
    case OS_SCANLINES:
    case OS_SCANLINES + 100:
      if (count == 0) return {};
      bounds.Rows(word(1), word(1) + 1);
      for (int64_t i = 1; i < count; ++i) bounds.Columns(word(2 * i), word(2 * i + 1));
      break;
    case OS_BANDED_SPANS:
    case OS_BANDED_SPANS + 100:
      for (int64_t at = 0, record = 0; record < count; ++record) {
        const int64_t n = word(at);
        if (n > 0) {
          bounds.Rows(word(at + 1), word(at + 2));
          for (int64_t i = 0; i < n; i += 2) bounds.Columns(word(at + 3 + i), word(at + 4 + i));
        }
        at += n + 4;
        if (at < 0) break;
      }
      break;
    case OS_ROW_RECORDS:
      if (count == 0) return {};
      bounds.Rows(word(0), word(0) + count);
      for (int64_t at = 1, record = 0; record < count; ++record) {
        const int64_t n = word(at);
        for (int64_t i = 0; i < n; i += 2) bounds.Columns(word(at + 1 + i), word(at + 2 + i));
        at += n + 1;
        if (at < 0) break;
      }
      break;
    case OS_ROW_SPANS:
      if (count == 0) return {};
      bounds.Rows(word(0), word(0) + count);
      for (int64_t i = 0; i < count; ++i) bounds.Columns(word(1 + 2 * i), word(2 + 2 * i));
      break;
    case OS_BYTE_DELTAS:
    case OS_NIBBLE_DELTAS: {
      int64_t left = word(1), right = word(2);
      const int64_t rows = std::max<int64_t>(count, 1);
      bounds.Rows(word(0), word(0) + rows);
      bounds.Columns(left, right);
      for (int64_t row = 1; row < rows; ++row) {
        if (style == OS_BYTE_DELTAS) {
          left += static_cast<int8_t>(list[4 + 2 * row]);
          right += static_cast<int8_t>(list[5 + 2 * row]);
        } else {
          const int both = list[5 + row];
          left += ((both & 15) ^ 8) - 8;
          right += (both >> 4 ^ 8) - 8;
        }
        bounds.Columns(left, right);
      }
      break;
    }
    default: return {};
  }
  if (bounds.left >= bounds.right || bounds.top >= bounds.bottom) return {};
  return StrictlyClipped(Shifted({bounds.left, bounds.top, bounds.right, bounds.bottom}), 7);
}

Reach Reacher::Text() const {
  constexpr std::size_t kX = 1, kY = 2, kClip = 3, kString = 4, kFont = 6, kMode = 8, kWidths = 10, kOpaque = 11;
  TextShape shape;
  ReadTextShape(slots_, Limit(), &shape);
  if (!shape.reads) return {};
  const auto mode = ReadAs<DRAWMODE>(slots_.Pointer<void>(kMode));
  const bool fills = (slots_.Low16(12) & ETO_OPAQUE) != 0 && slots_.at[kOpaque] != 0;
  // Where the edges of a band on a resolution-mapping device have more than 16 bits, text is moved.
  const Area edges{device_.rect.left, device_.rect.top, device_.rect.right, device_.rect.bottom};
  if (device_.IsScaled() && !IsUsual(edges)) return ToBand(kEverything, device_);
  Reach reach;
  if (shape.draws && shape.height > 0) {
    const auto* const string = slots_.Pointer<uint8_t>(kString);
    const auto* const font = slots_.Pointer<uint8_t>(kFont);
    // The places where characters may begin: all steps to the left, and all to the right.
    int64_t low = 0, high = 0, widest = 0;
    const int64_t breakStep = mode.BreakCount == 0 ? 1 : mode.TBreakExtra / mode.BreakCount + 1;
    for (int32_t i = 0; i < shape.characters; ++i) {
      const uint8_t* const entry = PlaceAt(font, shape.EntryAt(shape.IndexOf(string, i)));
      const int64_t width = shape.twoByte || shape.variablePitch ? ReadAs<uint16_t>(entry) : shape.fixedWidth;
      widest = std::max(widest, width);
      int64_t step = width + mode.CharacterExtra;
      if (slots_.at[kWidths] != 0) {
        step = i + 1 < shape.characters
                   ? int64_t{ReadAs<int16_t>(slots_.Pointer<uint8_t>(kWidths) + std::ptrdiff_t{2} * i)}
                   : 0;
      }
      const int64_t extra = mode.TBreakExtra == 0 ? 0 : breakStep;
      low += std::min<int64_t>({step, step + extra, step + extra - 1, 0});
      high += std::max<int64_t>({step, step + extra, step + extra - 1, 0});
    }
    const int64_t x = slots_.Signed(kX), y = slots_.Signed(kY);
    const Area glyphs = Shifted({x + low, y, x + high + widest, y + shape.height});
    if (slots_.at[kClip] != 0) {
      reach = StrictlyClipped(glyphs, kClip);
    } else {
      reach = ToBand(IsUsual(glyphs) ? glyphs : kEverything, device_);
    }
  }
  if (fills) {
    // The clip is applied before the origin is added, and to tags not at all for what lies left of or above the page.
    const Area opaque = RectAt(kOpaque);
    reach.Join(ToBand(IsUsual(opaque) ? opaque : kEverything, device_));
  }
  return reach;
}

}  // namespace

void Reach::Join(const Reach& other) {
  if (other.IsEmpty()) return;
  if (IsEmpty()) {
    *this = other;
    return;
  }
  left = std::min(left, other.left);
  top = std::min(top, other.top);
  right = std::max(right, other.right);
  bottom = std::max(bottom, other.bottom);
}

Reach BandReach(const DeviceShape& device) {
  const BandRect& rect = device.rect;
  const int64_t width = std::min<int64_t>(int64_t{rect.right} - rect.left, device.description.width);
  const int64_t height = std::min<int64_t>(int64_t{rect.bottom} - rect.top, device.description.height);
  if (width <= 0 || height <= 0 || width > INT32_MAX || height > INT32_MAX) return {};
  return {0, 0, static_cast<int32_t>(width), static_cast<int32_t>(height)};
}

Reach ReachOf(Function function, const Slots& slots, const DeviceShape& device) {
  // Where pixels and memory do not agree, a call may paint anywhere: bands whose rectangle is larger than the memory,
  // and dual-plane devices that are described with another depth.
  const BandRect& rect = device.rect;
  const bool isLarger = int64_t{rect.right} - rect.left > device.description.width ||
                        int64_t{rect.bottom} - rect.top > device.description.height;
  const bool isOddDepth = device.dualPlane && device.description.bitsPerPixel != 24;
  if (EntryPointOf(function).draws && (isLarger || isOddDepth)) return BandReach(device);
  const Reacher reacher(slots, device);
  switch (function) {
    case Function::kPixel: return reacher.Pixel();
    case Function::kPolyPixel: return reacher.PolyPixel();
    case Function::kDevBitBlt: return reacher.BitBlt();
    case Function::kOutput: return reacher.Spans();
    case Function::kDevExtTextOut: return reacher.Text();
    case Function::kStretchDIBits: return reacher.Image(true);
    case Function::kDevSetDIBitsToDevice: return reacher.Image(false);
    case Function::kControl: return slots.Low16(1) == QNV_CLEAR_BAND ? BandReach(device) : Reach{};
    default: return {};
  }
}

}  // namespace qnv::calls
