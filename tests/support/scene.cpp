// Makes the seeded calls of a scene.
#include "support/scene.h"

#include <array>
#include <cstring>

#include "support/random_bytes.h"
#include "support/source_image.h"
#include "support/test_device.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

constexpr int kSourceSize = 40;
constexpr int kImageSize = 24;

// A font of four letters, a to d, in the long form: 3, 5, 8 and 11 columns of 9 rows; d is the break character.
std::vector<uint8_t> MakeFont(RandomBytes* random) {
  constexpr std::array<uint16_t, 4> kWidths = {3, 5, 8, 11};
  constexpr int kHeight = 9;
  constexpr std::size_t kTable = 82;
  std::vector<uint8_t> font(kTable + 6 * kWidths.size(), 0);
  FONTINFO info{};
  info.dfType = 0x300;
  info.dfPixHeight = kHeight;
  info.dfPitchAndFamily = 1;
  info.dfFirstChar = 'a';
  info.dfLastChar = 'd';
  info.dfBreakChar = 3;
  std::memcpy(font.data(), &info, sizeof info);
  for (std::size_t i = 0; i < kWidths.size(); ++i) {
    const uint32_t offset = static_cast<uint32_t>(font.size());
    std::memcpy(&font[kTable + 6 * i], &kWidths[i], 2);
    std::memcpy(&font[kTable + 6 * i + 2], &offset, 4);
    for (int byte = 0; byte < (kWidths[i] + 7) / 8 * kHeight; ++byte) font.push_back(random->Byte());
  }
  return font;
}

// Owns what the calls point to.
class SceneMaker {
 public:
  SceneMaker(uint64_t seed, const SceneOptions& options)
      : options_(options),
        random_(seed),
        oneBit_(kOneBitSource, kSourceSize, kSourceSize, seed + 1),
        deep_(options.gray ? kGraySource : kColorSource, kSourceSize, kSourceSize, seed + 2),
        font_(MakeFont(&random_)),
        image_(kImageSize * kImageSize * 4) {
    for (uint8_t& byte : image_) byte = random_.Byte();
  }

  SceneStep Make() {
    using M = SceneMaker;
    constexpr SceneStep (M::*kKinds[16])() = {
        &M::Pixel,  &M::PolyPixel, &M::Transfers, &M::Transfers, &M::Transfers, &M::Transfers, &M::Output, &M::Output,
        &M::Output, &M::Text,      &M::Text,      &M::Image,     &M::Image,     &M::Image,     &M::Image,  &M::Origin};
    return (this->*kKinds[random_.Below(16)])();
  }

 private:
  struct Brush {
    uint16_t style;
    uint32_t color;
    int16_t hatch;
    uint32_t background;
    const SourceBitmap* bitmap;

    PhysicalBrush On(DeviceHandle* handle) const {
      const uintptr_t content = style == BS_PATTERN ? reinterpret_cast<uintptr_t>(bitmap) : uintptr_t{color};
      const LogicalBrush logical{style, content, hatch, background};
      PhysicalBrush physical{};
      QNVRealizeObject(handle, OBJ_BRUSH, &logical, &physical, nullptr);
      return physical;
    }
  };

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

  const SourceBitmap* Bitmap() { return (Below(2) == 0 ? oneBit_ : deep_).record(); }

  Brush AnyBrush(bool cells) {
    const uint16_t style = cells ? static_cast<uint16_t>(Below(4)) : uint16_t{BS_SOLID};
    return {style, Color(), Short(6), Color(), Bitmap()};
  }

  DRAWMODE Mode() {
    const uint32_t mask = options_.gray ? 0xFF : 0xFFFFFF, spread = options_.gray ? 0x010101 : 1;
    const int rop2 = 1 + Int(16), bkMode = 1 + Int(2);
    const uint32_t background = (Color() & mask) * spread, text = (Color() & mask) * spread;
    DRAWMODE mode = MakeDrawMode({.rop2 = rop2, .bkMode = bkMode, .background = background, .text = text});
    mode.TBreakExtra = Short(4);
    mode.BreakCount = Short(3);
    mode.CharacterExtra = Short(3);
    return mode;
  }

  BandRect Clip() {
    const uint32_t kind = Below(4);
    if (kind == 0) return kEverywhere;
    if (kind == 1 && options_.zeroOriginClips) return {0, 0, 0, 0};
    const int32_t x = X(), y = Y();
    return {x, y, x + 1 + Int(options_.width), y + 1 + Int(options_.height)};
  }

  bool KeepsPattern() { return options_.nullDrawModes && Below(8) == 0; }

  SceneStep Pixel() {
    const int32_t x = X(), y = Y();
    const uint32_t color = Color();
    const DRAWMODE mode = Mode();
    const BandRect clip = Clip();
    const bool reads = Below(4) == 0;
    return {"Pixel", [=](DeviceHandle* h) { return QNVPixel(h, x, y, color, reads ? nullptr : &mode, &clip); }};
  }

  SceneStep PolyPixel() {
    const int32_t x = X(), y = Y(), x2 = x + Int(9) - 4, y2 = y + Int(9) - 4;
    const uint32_t color = Color();
    const DRAWMODE mode = Mode();
    const BandRect clip = Clip();
    return {"PolyPixel", [=](DeviceHandle* h) { return QNVPolyPixel(h, x, y, x2, y2, color, &mode, &clip); }};
  }

  SceneStep Transfers() {
    constexpr uint32_t kCommon[] = {SRCCOPY,   SRCPAINT,  SRCAND,      SRCINVERT,  SRCERASE,   NOTSRCCOPY,
                                    PATCOPY,   PATPAINT,  NOTSRCERASE, MERGECOPY,  MERGEPAINT, PATINVERT,
                                    DSTINVERT, BLACKNESS, WHITENESS,   0x00E20746, 0x00AA0029};
    const uint32_t rop = Below(2) == 0 ? kCommon[Below(std::size(kCommon))] : Below(256) << 16;
    const Brush brush = AnyBrush(options_.cellTransfers);
    const DRAWMODE mode = Mode();
    const BandRect clip = Clip();
    const bool keeps = KeepsPattern();
    const TransferCall call{.at = {X(), Y()},
                            .source = Bitmap(),
                            .from = {Int(kSourceSize) - 4, Int(kSourceSize) - 4},
                            .size = {Int(options_.width), Int(options_.height)},
                            .rop = rop};
    return {"DevBitBlt of code " + std::to_string(rop), [=](DeviceHandle* h) {
              const PhysicalBrush physical = brush.On(h);
              TransferCall mine = call;
              mine.brush = &physical;
              mine.drawMode = keeps ? nullptr : &mode;
              mine.clip = &clip;
              return Transfer(h, mine);
            }};
  }

  SceneStep Output() {
    const int32_t x = X(), y = Y(), x2 = x + Int(30);
    std::vector<int32_t> words;
    uint32_t style = OS_SCANLINES, count = 3;
    switch (Below(4)) {
      case 0: words = {0, y, x, x2, x2 + 3, x2 + 7}; break;
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
    const uint32_t penColor = Color();
    const Brush brush = AnyBrush(true);
    const DRAWMODE mode = Mode();
    const BandRect clip = Clip();
    const bool keeps = KeepsPattern();
    return {"Output of style " + std::to_string(style), [=](DeviceHandle* h) {
              const PhysicalPen pen = SolidPen(h, penColor);
              const PhysicalBrush physical = brush.On(h);
              return QNVOutput(h, style, count, points.data(), hasPen ? &pen : nullptr, hasBrush ? &physical : nullptr,
                               keeps ? nullptr : &mode, &clip) &
                     0xFFFF;
            }};
  }

  SceneStep Text() {
    const int32_t x = X(), y = Y();
    std::string text;
    for (uint32_t i = 0; i <= Below(5); ++i) text += static_cast<char>('a' + Below(5));
    const int32_t length = static_cast<int32_t>(text.size());
    const int32_t count = Below(6) == 0 ? -length : length;
    const DRAWMODE mode = Mode();
    const bool clipped = Below(3) != 0, opaque = Below(2) == 0;
    const BandRect clip = Clip(), rect = Clip();
    const uint32_t options = Below(4) * 2;
    std::vector<int16_t> widths;
    for (int32_t i = 0; i < length; ++i) widths.push_back(Short(9));
    const bool placed = Below(2) == 0;
    return {"DevExtTextOut", [=, this](DeviceHandle* h) {
              DRAWMODE mine = mode;
              return static_cast<uint32_t>(
                  QNVDevExtTextOut(h, x, y, clipped ? &clip : nullptr, text.data(), count, font_.data(), 0, &mine,
                                   nullptr, placed ? widths.data() : nullptr, opaque ? &rect : nullptr, options));
            }};
  }

  SceneStep Image() {
    constexpr uint16_t kDepths[] = {8, 24, 32};
    constexpr uint32_t kCodes[] = {SRCCOPY, SRCCOPY, SRCAND, SRCPAINT, SRCINVERT, 0x00E20746};
    std::vector<uint8_t> info(40 + 1024);
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = 1 + Int(kImageSize);
    const int32_t width = header.biWidth, rows = 1 + Int(kImageSize);
    header.biHeight = Below(2) == 0 ? rows : -rows;
    header.biPlanes = 1;
    header.biBitCount = kDepths[Below(std::size(kDepths))];
    std::memcpy(info.data(), &header, sizeof header);
    for (std::size_t i = sizeof header; i < info.size(); ++i) info[i] = random_.Byte();
    const int32_t x = X(), y = Y();
    const DRAWMODE mode = Mode();
    const BandRect clip = Clip();
    if (Below(4) == 0) {
      return {"DevSetDIBitsToDevice", [=, this](DeviceHandle* h) {
                return QNVDevSetDIBitsToDevice(h, x, y, 0, static_cast<uint32_t>(rows), &clip, &mode, image_.data(),
                                               info.data(), nullptr) &
                       0xFFFF;
              }};
    }
    uint32_t rop = kCodes[Below(std::size(kCodes))];
    if (options_.extendedCodes && Below(6) == 0) rop = ROP_MINIMUM;
    const Brush brush = AnyBrush(options_.cellTransfers);
    const auto extent = [&](int32_t size, int32_t unscaled) {
      if (!options_.stretchedImages) return unscaled;
      const int32_t stretched = Int(2 * size) - size / 2;
      return stretched != 0 ? stretched : 1;
    };
    const int32_t dstWidth = extent(options_.width, width), dstHeight = extent(options_.height, rows);
    return {"StretchDIBits of code " + std::to_string(rop), [=, this](DeviceHandle* h) {
              const PhysicalBrush physical = brush.On(h);
              return QNVStretchDIBits(h, 0, x, y, dstWidth, dstHeight, 0, 0, width, rows, image_.data(), info.data(),
                                      nullptr, rop, &physical, &mode, &clip) &
                     0xFFFF;
            }};
  }

  SceneStep Origin() {
    if (!options_.originMoves) return Pixel();
    const DrawingOrigin origin{Int(13) - 6, Int(13) - 6};
    return {"Control: origin",
            [=](DeviceHandle* h) { return QNVControl(h, QNV_SET_ORIGIN, &origin, nullptr) & 0xFFFF; }};
  }

  SceneOptions options_;
  RandomBytes random_;
  SourceImage oneBit_, deep_;
  std::vector<uint8_t> font_, image_;
};

}  // namespace

Scene::Scene(uint64_t seed, const SceneOptions& options) {
  const auto maker = std::make_shared<SceneMaker>(seed, options);
  memory_ = maker;
  for (uint32_t i = 0; i < options.steps; ++i) steps_.push_back(maker->Make());
}

}  // namespace qnv::test
