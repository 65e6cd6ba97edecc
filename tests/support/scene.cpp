// Makes the seeded calls of a scene.
#include "support/scene.h"

#include <cstring>
#include <vector>

#include "support/random_bytes.h"
#include "support/source_image.h"
#include "support/transfer_call.h"
#include "text/font_builder.h"

namespace qnv::test {

constexpr int kSourceSize = 40;
constexpr int kImageSize = 24;

struct SceneMemory {
  SceneMemory(uint64_t seed, bool gray)
      : oneBit(kOneBitSource, kSourceSize, kSourceSize, seed + 1),
        deep(gray ? kGraySource : kColorSource, kSourceSize, kSourceSize, seed + 2) {
    FillWithNoise(&image, seed + 3);
  }

  SourceImage oneBit, deep;
  Font font = SmallFont().Build();
  FencedBuffer image{kImageSize * kImageSize * 4, 0};
};

namespace {

// One call, made from a seed of its own. Nothing that it draws depends on the device.
class SceneCall {
 public:
  SceneCall(uint64_t seed, const SceneOptions& options, const SceneMemory& memory, DeviceHandle* handle)
      : random_(seed), options_(options), memory_(memory), handle_(handle) {}

  struct Kind {
    uint32_t end;  // of sixteen
    const char* name;
    uint32_t (SceneCall::*make)();
  };
  static const Kind& KindOf(RandomBytes& random) {
    static constexpr Kind kKinds[] = {{1, "Pixel", &SceneCall::Pixel},
                                      {2, "PolyPixel", &SceneCall::PolyPixel},
                                      {6, "DevBitBlt", &SceneCall::BitBlt},
                                      {9, "Output", &SceneCall::Output},
                                      {11, "DevExtTextOut", &SceneCall::Text},
                                      {12, "DevSetDIBitsToDevice", &SceneCall::SetToDevice},
                                      {15, "StretchDIBits", &SceneCall::Stretch},
                                      {16, "Control: origin", &SceneCall::Origin}};
    const uint32_t pick = random.Below(16);
    const Kind* kind = kKinds;
    while (pick >= kind->end) ++kind;
    return *kind;
  }
  uint32_t Make() {
    const Kind& kind = KindOf(random_);
    x_ = X();
    y_ = Y();
    mode_ = Mode();
    clip_ = Clip();
    return (this->*kind.make)();
  }

 private:
  uint32_t Below(uint32_t end) { return random_.Below(end); }
  // The same for numbers that may be negative.
  int32_t Int(int32_t end) { return static_cast<int32_t>(random_.Below(static_cast<uint32_t>(end))); }
  int16_t Short(int32_t end) { return static_cast<int16_t>(Int(end)); }
  int32_t X() { return options_.left - 6 + Int(options_.width + 12); }
  int32_t Y() { return options_.top - 6 + Int(options_.height + 12); }

  uint32_t Color() {
    const uint32_t kind = Below(4);
    return kind == 0 ? 0x00FFFFFFu : kind == 1 ? 0u : random_.Next() & 0xFFFFFF;
  }

  const SourceBitmap* Bitmap() { return (Below(2) == 0 ? memory_.oneBit : memory_.deep).record(); }

  PhysicalBrush Brush(bool cells) {
    LogicalBrush logical{cells ? static_cast<uint16_t>(Below(4)) : uint16_t{BS_SOLID}, Color(), Short(6), Color()};
    if (logical.style == BS_PATTERN) logical.colour = reinterpret_cast<uintptr_t>(Bitmap());
    PhysicalBrush physical{};
    QNVRealizeObject(handle_, OBJ_BRUSH, &logical, &physical, nullptr);
    return physical;
  }

  DRAWMODE Mode() {
    const auto color = [&] { return options_.gray ? Gray(Color() & 0xFF) : Color(); };
    const int rop2 = 1 + Int(16), bkMode = 1 + Int(2);
    const uint32_t background = color(), text = color();
    DRAWMODE mode = MakeDrawMode({.rop2 = rop2, .bkMode = bkMode, .background = background, .text = text});
    mode.TBreakExtra = Short(4);
    mode.BreakCount = Short(3);
    mode.CharacterExtra = Short(3);
    return mode;
  }

  BandRect Clip() {
    const uint32_t kind = Below(4);
    if (kind == 0) return kEverywhere;
    if (kind == 1) return {0, 0, 0, 0};
    const int32_t x = X(), y = Y();
    return {x, y, x + 1 + Int(options_.width), y + 1 + Int(options_.height)};
  }

  bool KeepsPattern() { return options_.nullDrawModes && Below(8) == 0; }

  uint32_t Pixel() {
    const uint32_t color = Color();
    return QNVPixel(handle_, x_, y_, color, Below(4) == 0 ? nullptr : &mode_, &clip_);
  }

  uint32_t PolyPixel() {
    const int32_t x2 = x_ + Int(9) - 4, y2 = y_ + Int(9) - 4;
    return QNVPolyPixel(handle_, x_, y_, x2, y2, Color(), &mode_, &clip_);
  }

  uint32_t BitBlt() {
    constexpr uint32_t kCommon[] = {SRCCOPY,   SRCPAINT,  SRCAND,      SRCINVERT,  SRCERASE,   NOTSRCCOPY,
                                    PATCOPY,   PATPAINT,  NOTSRCERASE, MERGECOPY,  MERGEPAINT, PATINVERT,
                                    DSTINVERT, BLACKNESS, WHITENESS,   0x00E20746, 0x00AA0029};
    const uint32_t rop = Below(2) == 0 ? kCommon[Below(std::size(kCommon))] : Below(256) << 16;
    const PhysicalBrush brush = Brush(options_.cellTransfers);
    const bool keeps = KeepsPattern();
    return Transfer(handle_, {.at = {x_, y_},
                              .source = Bitmap(),
                              .from = {Int(kSourceSize) - 4, Int(kSourceSize) - 4},
                              .size = {Int(options_.width), Int(options_.height)},
                              .rop = rop,
                              .brush = &brush,
                              .drawMode = keeps ? nullptr : &mode_,
                              .clip = &clip_});
  }

  uint32_t Output() {
    const int32_t x = x_, y = y_, x2 = x + Int(30);
    std::vector<int32_t> words = {0, y, x, x2, x2 + 3, x2 + 7};
    uint32_t style = OS_SCANLINES, count = 3;
    switch (Below(4)) {
      case 0: break;
      case 1:
        style = OS_BANDED_SPANS;
        count = 1;
        words = {2, y, y + Int(12), x, x2, 2};
        break;
      case 2:
        style = OS_ROW_SPANS;
        count = 4;
        words = {y, x, x2, x + 1, x2, x + 2, x2, x, x2};
        break;
      default:
        style = Below(2) == 0 ? OS_BYTE_DELTAS : OS_NIBBLE_DELTAS;
        count = 7;
        words = {y, x, x2};
        for (int i = 0; i < 6; ++i) {
          words.push_back(static_cast<int32_t>(random_.Next() & (style == OS_BYTE_DELTAS ? 0x0303 : 0xFFFF)));
        }
    }
    const std::vector<int16_t> points(words.begin(), words.end());
    const bool hasPen = Below(3) == 0;
    const bool hasBrush = !hasPen || Below(4) == 0;
    const PhysicalPen pen = SolidPen(handle_, Color());
    const PhysicalBrush brush = Brush(true);
    return QNVOutput(handle_, style, count, points.data(), hasPen ? &pen : nullptr, hasBrush ? &brush : nullptr,
                     KeepsPattern() ? nullptr : &mode_, &clip_) &
           0xFFFF;
  }

  uint32_t Text() {
    std::string text;
    for (uint32_t i = 0; i <= Below(5); ++i) text += static_cast<char>('a' + Below(5));
    const int32_t length = static_cast<int32_t>(text.size());
    const int32_t count = Below(6) == 0 ? -length : length;
    const BandRect rect = Clip();
    const bool clipped = Below(3) != 0, opaque = Below(2) == 0, placed = Below(2) == 0;
    std::vector<int16_t> widths;
    for (int32_t i = 0; i < length; ++i) widths.push_back(Short(9));
    return static_cast<uint32_t>(QNVDevExtTextOut(
        handle_, x_, y_, clipped ? &clip_ : nullptr, text.data(), count, memory_.font.base(), memory_.font.offset(),
        &mode_, nullptr, placed ? widths.data() : nullptr, opaque ? &rect : nullptr, Below(4) * 2));
  }

  // A header with a color table behind it, which images of 24 and 32 bits do not read.
  std::vector<uint8_t> ImageInfo(int32_t width, int32_t rows) {
    constexpr uint16_t kDepths[] = {8, 24, 32};
    const int32_t height = Below(2) == 0 ? rows : -rows;
    const uint16_t depth = kDepths[Below(std::size(kDepths))];
    const BITMAPINFOHEADER header{40, width, height, 1, depth, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<uint8_t> info(sizeof header + 1024);
    for (uint8_t& byte : info) byte = random_.Byte();
    std::memcpy(info.data(), &header, sizeof header);
    return info;
  }

  uint32_t SetToDevice() {
    const int32_t width = 1 + Int(kImageSize), rows = 1 + Int(kImageSize);
    const std::vector<uint8_t> info = ImageInfo(width, rows);
    return QNVDevSetDIBitsToDevice(handle_, x_, y_, 0, static_cast<uint32_t>(rows), &clip_, &mode_,
                                   memory_.image.data(), info.data(), nullptr) &
           0xFFFF;
  }

  uint32_t Stretch() {
    constexpr uint32_t kCodes[] = {SRCCOPY, SRCCOPY, SRCAND, SRCPAINT, SRCINVERT, 0x00E20746};
    const int32_t width = 1 + Int(kImageSize), rows = 1 + Int(kImageSize);
    const std::vector<uint8_t> info = ImageInfo(width, rows);
    uint32_t rop = kCodes[Below(std::size(kCodes))];
    if (options_.extendedCodes && Below(6) == 0) rop = ROP_MINIMUM;
    const PhysicalBrush brush = Brush(options_.cellTransfers);
    const auto extent = [&](int32_t size, int32_t unscaled) {
      if (!options_.stretchedImages) return unscaled;
      const int32_t stretched = Int(2 * size) - size / 2;
      return stretched != 0 ? stretched : 1;
    };
    const int32_t dstWidth = extent(options_.width, width), dstHeight = extent(options_.height, rows);
    return QNVStretchDIBits(handle_, 0, x_, y_, dstWidth, dstHeight, 0, 0, width, rows, memory_.image.data(),
                            info.data(), nullptr, rop, &brush, &mode_, &clip_) &
           0xFFFF;
  }

  uint32_t Origin() {
    const DrawingOrigin origin{Int(13) - 6, Int(13) - 6};
    return QNVControl(handle_, QNV_SET_ORIGIN, &origin, nullptr) & 0xFFFF;
  }

  RandomBytes random_;
  const SceneOptions& options_;
  const SceneMemory& memory_;
  DeviceHandle* handle_;
  int32_t x_ = 0, y_ = 0;
  DRAWMODE mode_{};
  BandRect clip_{};
};

}  // namespace

Scene::Scene(uint64_t seed, const SceneOptions& options)
    : seed_(seed), options_(options), memory_(std::make_shared<SceneMemory>(seed, options.gray)) {}

const char* Scene::Name(std::size_t step) const {
  RandomBytes random(SeedOf(step));
  return SceneCall::KindOf(random).name;
}

uint32_t Scene::Play(std::size_t step, DeviceHandle* handle) const {
  return SceneCall(SeedOf(step), options_, *memory_, handle).Make();
}

}  // namespace qnv::test
