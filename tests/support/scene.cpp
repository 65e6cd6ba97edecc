// Makes the seeded calls of a scene.
#include "support/scene.h"

#include <array>
#include <cstring>

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

}  // namespace

Scene::Scene(uint64_t seed, const SceneOptions& options)
    : options_(options),
      width_(static_cast<uint32_t>(options.width)),
      height_(static_cast<uint32_t>(options.height)),
      random_(seed) {
  sources_.push_back(std::make_unique<SourceImage>(kOneBitSource, kSourceSize, kSourceSize, seed + 1));
  sources_.push_back(
      std::make_unique<SourceImage>(options.gray ? kGraySource : kColorSource, kSourceSize, kSourceSize, seed + 2));
  font_ = MakeFont(&random_);
  image_.resize(kImageSize * kImageSize * 4);
  for (uint8_t& byte : image_) byte = random_.Byte();
  for (uint32_t i = 0; i < options.steps; ++i) {
    switch (random_.Below(16)) {
      case 0: steps_.push_back(PixelStep()); break;
      case 1: steps_.push_back(PolyPixelStep()); break;
      case 2:
      case 3:
      case 4:
      case 5: steps_.push_back(TransferStep()); break;
      case 6:
      case 7:
      case 8: steps_.push_back(OutputStep()); break;
      case 9:
      case 10: steps_.push_back(TextStep()); break;
      case 11:
      case 12:
      case 13:
      case 14: steps_.push_back(ImageStep()); break;
      default: steps_.push_back(OriginStep());
    }
  }
}

uint32_t Scene::RandomColor() {
  const uint32_t kind = random_.Below(4);
  return kind == 0 ? 0x00FFFFFFu : kind == 1 ? 0u : random_.Next() & 0xFFFFFF;
}

Scene::Brush Scene::RandomBrush(bool cells) {
  const uint16_t style = cells ? static_cast<uint16_t>(random_.Below(4)) : uint16_t{BS_SOLID};
  return {style, RandomColor(), static_cast<int16_t>(random_.Below(6)), RandomColor(),
          sources_[random_.Below(2)]->record()};
}

PhysicalBrush Scene::Realise(DeviceHandle* handle, const Brush& brush) {
  const uintptr_t color =
      brush.style == BS_PATTERN ? reinterpret_cast<uintptr_t>(brush.bitmap) : uintptr_t{brush.color};
  const LogicalBrush logical{brush.style, color, brush.hatch, brush.background};
  PhysicalBrush physical{};
  QNVRealizeObject(handle, OBJ_BRUSH, &logical, &physical, nullptr);
  return physical;
}

DRAWMODE Scene::RandomMode() {
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = static_cast<int16_t>(1 + random_.Below(16));
  mode.bkMode = static_cast<int16_t>(1 + random_.Below(2));
  mode.bkColor = RandomColor();
  mode.TextColor = RandomColor();
  if (options_.gray) {
    mode.bkColor = (mode.bkColor & 0xFF) * 0x010101;
    mode.TextColor = (mode.TextColor & 0xFF) * 0x010101;
  }
  mode.TBreakExtra = static_cast<int16_t>(random_.Below(4));
  mode.BreakCount = static_cast<int16_t>(random_.Below(3));
  mode.CharacterExtra = static_cast<int16_t>(random_.Below(3));
  return mode;
}

BandRect Scene::RandomClip() {
  switch (random_.Below(4)) {
    case 0: return kEverywhere;
    case 1:
      if (options_.zeroOriginClips) return {0, 0, 0, 0};
      [[fallthrough]];
    default: {
      const int32_t x = RandomX();
      const int32_t y = RandomY();
      return {x, y, x + 1 + static_cast<int32_t>(random_.Below(width_)),
              y + 1 + static_cast<int32_t>(random_.Below(height_))};
    }
  }
}

Scene::Step Scene::PixelStep() {
  const int32_t x = RandomX();
  const int32_t y = RandomY();
  const uint32_t color = RandomColor();
  const DRAWMODE mode = RandomMode();
  const BandRect clip = RandomClip();
  const bool reads = random_.Below(4) == 0;
  return {"Pixel", [=](DeviceHandle* h) { return QNVPixel(h, x, y, color, reads ? nullptr : &mode, &clip); }};
}

Scene::Step Scene::PolyPixelStep() {
  const int32_t x = RandomX();
  const int32_t y = RandomY();
  const int32_t x2 = x + static_cast<int32_t>(random_.Below(9)) - 4;
  const int32_t y2 = y + static_cast<int32_t>(random_.Below(9)) - 4;
  const uint32_t color = RandomColor();
  const DRAWMODE mode = RandomMode();
  const BandRect clip = RandomClip();
  return {"PolyPixel", [=](DeviceHandle* h) { return QNVPolyPixel(h, x, y, x2, y2, color, &mode, &clip); }};
}

Scene::Step Scene::TransferStep() {
  constexpr std::array<uint32_t, 17> kCommon = {SRCCOPY,   SRCPAINT,  SRCAND,      SRCINVERT,  SRCERASE,   NOTSRCCOPY,
                                                PATCOPY,   PATPAINT,  NOTSRCERASE, MERGECOPY,  MERGEPAINT, PATINVERT,
                                                DSTINVERT, BLACKNESS, WHITENESS,   0x00E20746, 0x00AA0029};
  const uint32_t rop = random_.Below(2) == 0 ? kCommon[random_.Below(kCommon.size())] : random_.Below(256) << 16;
  const Brush brush = RandomBrush(options_.cellTransfers);
  const DRAWMODE mode = RandomMode();
  const BandRect clip = RandomClip();
  const bool keeps = options_.nullDrawModes && random_.Below(8) == 0;
  TransferCall call{.at = {RandomX(), RandomY()},
                    .source = sources_[random_.Below(2)]->record(),
                    .from = {static_cast<int32_t>(random_.Below(kSourceSize)) - 4,
                             static_cast<int32_t>(random_.Below(kSourceSize)) - 4},
                    .size = {static_cast<int32_t>(random_.Below(width_)), static_cast<int32_t>(random_.Below(height_))},
                    .rop = rop};
  return {"DevBitBlt of code " + std::to_string(rop), [=](DeviceHandle* h) {
            const PhysicalBrush physical = Realise(h, brush);
            TransferCall mine = call;
            mine.brush = &physical;
            mine.drawMode = keeps ? nullptr : &mode;
            mine.clip = &clip;
            return Transfer(h, mine);
          }};
}

Scene::Step Scene::OutputStep() {
  const int16_t x = static_cast<int16_t>(RandomX());
  const int16_t y = static_cast<int16_t>(RandomY());
  const int16_t x2 = static_cast<int16_t>(x + static_cast<int>(random_.Below(30)));
  std::vector<int16_t> points;
  uint32_t style = 0;
  uint32_t count = 0;
  switch (random_.Below(4)) {
    case 0:
      style = OS_SCANLINES;
      count = 3;
      points = {0, y, x, x2, static_cast<int16_t>(x2 + 3), static_cast<int16_t>(x2 + 7)};
      break;
    case 1:
      style = OS_BANDED_SPANS;
      count = 1;
      points = {2, y, static_cast<int16_t>(y + static_cast<int>(random_.Below(12))), x, x2, 2};
      break;
    case 2:
      style = OS_ROW_SPANS;
      count = 4;
      points = {y, x, x2, static_cast<int16_t>(x + 1), x2, static_cast<int16_t>(x + 2), x2, x, x2};
      break;
    default:
      style = random_.Below(2) == 0 ? OS_BYTE_DELTAS : OS_NIBBLE_DELTAS;
      count = 7;
      points = {y, x, x2, 0, 0, 0, 0, 0, 0};
      for (std::size_t i = 3; i < points.size(); ++i) {
        const uint32_t deltas = random_.Next();
        points[i] = style == OS_BYTE_DELTAS ? static_cast<int16_t>(deltas & 0x0303) : static_cast<int16_t>(deltas);
      }
  }
  const bool hasPen = random_.Below(3) == 0;
  const bool hasBrush = !hasPen || random_.Below(4) == 0;
  const uint32_t penColor = RandomColor();
  const Brush brush = RandomBrush(true);
  const DRAWMODE mode = RandomMode();
  const BandRect clip = RandomClip();
  const bool keeps = options_.nullDrawModes && random_.Below(8) == 0;
  return {"Output of style " + std::to_string(style), [=](DeviceHandle* h) {
            const PhysicalPen pen = SolidPen(h, penColor);
            const PhysicalBrush physical = Realise(h, brush);
            return QNVOutput(h, style, count, points.data(), hasPen ? &pen : nullptr, hasBrush ? &physical : nullptr,
                             keeps ? nullptr : &mode, &clip) &
                   0xFFFF;
          }};
}

Scene::Step Scene::TextStep() {
  const int32_t x = RandomX();
  const int32_t y = RandomY();
  std::string text;
  for (uint32_t i = 0; i <= random_.Below(5); ++i) text += static_cast<char>('a' + random_.Below(5));
  const int32_t length = static_cast<int32_t>(text.size());
  const int32_t count = random_.Below(6) == 0 ? -length : length;
  const DRAWMODE mode = RandomMode();
  const bool clipped = random_.Below(3) != 0;
  const bool opaque = random_.Below(2) == 0;
  const BandRect clip = RandomClip();
  const BandRect rect = RandomClip();
  const uint32_t options = random_.Below(4) * 2;
  std::vector<int16_t> widths;
  for (int32_t i = 0; i < length; ++i) widths.push_back(static_cast<int16_t>(random_.Below(9)));
  const bool placed = random_.Below(2) == 0;
  return {"DevExtTextOut", [=, this](DeviceHandle* h) {
            DRAWMODE mine = mode;
            return static_cast<uint32_t>(
                QNVDevExtTextOut(h, x, y, clipped ? &clip : nullptr, text.data(), count, font_.data(), 0, &mine,
                                 nullptr, placed ? widths.data() : nullptr, opaque ? &rect : nullptr, options));
          }};
}

Scene::Step Scene::ImageStep() {
  constexpr std::array<uint16_t, 3> kDepths = {8, 24, 32};
  constexpr std::array<uint32_t, 6> kCodes = {SRCCOPY, SRCCOPY, SRCAND, SRCPAINT, SRCINVERT, 0x00E20746};
  std::vector<uint8_t> info(40 + 1024);
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = 1 + static_cast<int32_t>(random_.Below(kImageSize));
  const int32_t rows = 1 + static_cast<int32_t>(random_.Below(kImageSize));
  header.biHeight = random_.Below(2) == 0 ? rows : -rows;
  header.biPlanes = 1;
  header.biBitCount = kDepths[random_.Below(kDepths.size())];
  std::memcpy(info.data(), &header, sizeof header);
  for (std::size_t i = sizeof header; i < info.size(); ++i) info[i] = random_.Byte();
  const int32_t width = header.biWidth;
  const int32_t x = RandomX();
  const int32_t y = RandomY();
  const DRAWMODE mode = RandomMode();
  const BandRect clip = RandomClip();
  if (random_.Below(4) == 0) {
    return {"DevSetDIBitsToDevice", [=, this](DeviceHandle* h) {
              return QNVDevSetDIBitsToDevice(h, x, y, 0, static_cast<uint32_t>(rows), &clip, &mode, image_.data(),
                                             info.data(), nullptr) &
                     0xFFFF;
            }};
  }
  uint32_t rop = kCodes[random_.Below(kCodes.size())];
  if (options_.extendedCodes && random_.Below(6) == 0) rop = ROP_MINIMUM;
  const Brush brush = RandomBrush(options_.cellTransfers);
  int32_t dstWidth = width;
  int32_t dstHeight = rows;
  if (options_.stretchedImages) {
    dstWidth = static_cast<int32_t>(random_.Below(2 * width_)) - options_.width / 2;
    dstHeight = static_cast<int32_t>(random_.Below(2 * height_)) - options_.height / 2;
    if (dstWidth == 0) dstWidth = 1;
    if (dstHeight == 0) dstHeight = 1;
  }
  return {"StretchDIBits of code " + std::to_string(rop), [=, this](DeviceHandle* h) {
            const PhysicalBrush physical = Realise(h, brush);
            return QNVStretchDIBits(h, 0, x, y, dstWidth, dstHeight, 0, 0, width, rows, image_.data(), info.data(),
                                    nullptr, rop, &physical, &mode, &clip) &
                   0xFFFF;
          }};
}

Scene::Step Scene::OriginStep() {
  if (!options_.originMoves) return PixelStep();
  const DrawingOrigin origin{static_cast<int32_t>(random_.Below(13)) - 6, static_cast<int32_t>(random_.Below(13)) - 6};
  return {"Control: origin", [=](DeviceHandle* h) { return QNVControl(h, QNV_SET_ORIGIN, &origin, nullptr) & 0xFFFF; }};
}

}  // namespace qnv::test
