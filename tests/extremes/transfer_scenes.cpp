// Pixels, rectangles of pixels, and bit-block transfers.
#include "extremes/stage.h"

namespace qnv::test {
namespace {

constexpr uint64_t kBandPixels = uint64_t{kBandColumns} * kBandRows;

enum PixelField : std::size_t { kX = kOwnFields, kY, kColor, kPixelMode };

void Pixel(Stage& stage, const Values& v, int) {
  stage.Place(v);
  const BandRect clip = v.Rect(kClip);
  const DRAWMODE mode = DrawModeOf(v, kPixelMode);
  const Limits limits{.clip = clip, .left = v.I32(kX), .top = v.I32(kY)};
  for (const DRAWMODE* drawMode : {&mode, static_cast<const DRAWMODE*>(nullptr)}) {
    stage.Run(1, limits, [&] { QNVPixel(stage.handle(), v.I32(kX), v.I32(kY), v.U32(kColor), drawMode, &clip); });
  }
}

enum PolyField : std::size_t { kX1 = kOwnFields, kY1, kX2, kY2, kPolyColor, kPolyMode };

void PolyPixel(Stage& stage, const Values& v, int) {
  stage.Place(v);
  const BandRect clip = v.Rect(kClip);
  const DRAWMODE mode = DrawModeOf(v, kPolyMode);
  // Each of its pixels may widen the clip of the tags.
  Limits limits{.clip = clip};
  limits.none = stage.device().tags;
  stage.Run(kBandPixels, limits, [&] {
    QNVPolyPixel(stage.handle(), v.I32(kX1), v.I32(kY1), v.I32(kX2), v.I32(kY2), v.U32(kPolyColor), &mode, &clip);
  });
}

enum BltField : std::size_t {
  kDestX = kOwnFields,
  kDestY,
  kSrcX,
  kSrcY,
  kWidth,
  kHeight,
  kRop,
  kBmType,
  kBmWidth,
  kBmHeight,
  kBmWidthBytes,
  kBmPlanes,
  kBmBitsPixel,
  kBltMode,
  kBltBrush = kBltMode + kDrawModeFields
};

// What a row of a source has to hold: its pixels, wherever the device takes them to be.
uint64_t SourceRowBytes(const DeviceClass& device, const Values& v) {
  const uint64_t width = v.U16(kBmWidth);
  const uint64_t bits = v.U8(kBmBitsPixel);
  if (v.U8(kBmPlanes) == 1 && bits == 1) return (width + 7) / 8;
  const bool scaled = device.kind == QNV_KIND_SCALED;
  const uint64_t bytes = device.tags || device.bitsPerPixel == 24 ? 3 : 1;
  if (!scaled && bytes == 3) return 3 * width;
  // These count bmBitsPixel up to the first pixel, and their own bytes from there on.
  return std::max(bytes * width, (width - 1) * bits / 8 + bytes);
}

void BitBlt(Stage& stage, const Values& v, int) {
  stage.Place(v);
  const BandRect clip = v.Rect(kClip);
  const DRAWMODE mode = DrawModeOf(v, kBltMode);
  const PhysicalBrush brush = BrushOf(v, kBltBrush);
  SourceBitmap source{v.I16(kBmType),  v.I16(kBmWidth),    v.I16(kBmHeight), v.U16(kBmWidthBytes),
                      v.U8(kBmPlanes), v.U8(kBmBitsPixel), nullptr};
  uint64_t bytes = 0;
  if (source.bmWidth > 0 && source.bmHeight > 0) {
    bytes = static_cast<uint64_t>(source.bmHeight - 1) * source.bmWidthBytes + SourceRowBytes(stage.device(), v);
  }
  source.bmBits = stage.host().pixels.Last(bytes);
  if (source.bmBits == nullptr) return stage.Skip();
  const uint32_t rop = v.U32(kRop);
  const uint32_t index = rop >> 16 & 0xFF;
  const bool usesSource = ((index >> 2 ^ index) & 0x33) != 0;
  const Limits limits{.clip = clip, .widens = usesSource, .left = v.I32(kDestX), .top = v.I32(kDestY)};
  stage.Run(4 * kBandPixels, limits, [&] {
    QNVDevBitBlt(stage.handle(), v.I32(kDestX), v.I32(kDestY), &source, v.I32(kSrcX), v.I32(kSrcY), v.I32(kWidth),
                 v.I32(kHeight), rop, &brush, &mode, &clip);
  });
}

}  // namespace

void AddTransferScenes(std::vector<Scene>& scenes, const DeviceClass& device) {
  const std::vector<Field> mode = DrawModeFields();
  scenes.push_back(
      {"Pixel",
       FieldsWith(device, {{"x", 32, CallerX(device, 2)}, {"y", 32, CallerY(device, 3)}, {"color", 32, 0x00998877}}) +
           mode,
       Pixel});
  scenes.push_back({"PolyPixel",
                    FieldsWith(device, {{"x1", 32, CallerX(device, 2)},
                                        {"y1", 32, CallerY(device, 3)},
                                        {"x2", 32, CallerX(device, 7)},
                                        {"y2", 32, CallerY(device, -2)},
                                        {"color", 32, 0x00998877}}) +
                        mode,
                    PolyPixel});
  struct Transfer {
    const char* name;
    uint32_t rop;
    uint8_t bitsPixel;
    int64_t style;
  };
  constexpr Transfer kTransfers[] = {
      {"BitBlt, copy", SRCCOPY, 24, BS_SOLID},           {"BitBlt, one-bit copy", SRCCOPY, 1, BS_SOLID},
      {"BitBlt, source and", SRCAND, 24, BS_SOLID},      {"BitBlt, gray source inverted", NOTSRCCOPY, 8, BS_SOLID},
      {"BitBlt, pattern", PATCOPY, 24, BS_HATCHED},      {"BitBlt, pattern and source", 0x00B8074A, 24, BS_PATTERN},
      {"BitBlt, one-bit merge", MERGECOPY, 1, BS_SOLID}, {"BitBlt, invert", DSTINVERT, 24, BS_SOLID},
  };
  for (const Transfer& t : kTransfers) {
    scenes.push_back({t.name,
                      FieldsWith(device, {{"destX", 32, CallerX(device, 1)},
                                          {"destY", 32, CallerY(device, 1)},
                                          {"srcX", 32, 1},
                                          {"srcY", 32, 1},
                                          {"width", 32, CallerExtent(device, 9)},
                                          {"height", 32, CallerExtent(device, 6)},
                                          {"rop", 32, t.rop},
                                          {"bmType", 16, 0},
                                          {"bmWidth", 16, 11},
                                          {"bmHeight", 16, 8},
                                          {"bmWidthBytes", 16, 34},
                                          {"bmPlanes", 8, 1},
                                          {"bmBitsPixel", 8, t.bitsPixel}}) +
                          mode + BrushFields(t.style),
                      BitBlt});
  }
}

}  // namespace qnv::test
