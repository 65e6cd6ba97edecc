// Devices, escapes, colors, pens and brushes.
#include <cstring>

#include "extremes/stage.h"

namespace qnv::test {
namespace {

// Where no band is painted on, none may change.
const Limits kNothing{};

void GetDeviceInfo(Stage& stage, const Values& v, int) {
  const DeviceDescription description{v.U16(0), v.U16(1), v.U16(2), v.U32(3), v.U32(4), v.U16(5)};
  DeviceSize size;
  stage.Run(1, kNothing, [&] { QNVGetDeviceInfo(&description, &size); });
}

// A device without memory may be described in any way; every call is made on it once.
void Enable(Stage& stage, const Values& v, int) {
  const DeviceDescription description{v.U16(0), v.U16(1), v.U16(2), v.U32(3), v.U32(4), v.U16(5)};
  const BandRect band = v.Rect(6);
  DRAWMODE mode;
  std::memset(&mode, 0, sizeof mode);
  mode.Rop2 = R2_COPYPEN;
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x00102030};
  const int16_t spans[] = {2, 0, 5, 0, 9, 2};
  const uint8_t pixels[12] = {1, 2, 3};
  const BITMAPINFOHEADER header{40, 2, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  const SourceBitmap source{0, 2, 1, 6, 1, 24, pixels};
  uint8_t font[96] = {};
  font[22] = 1;  // a glyph without columns
  stage.Run(1000, kNothing, [&] {
    DeviceHandle* handle = QNVEnable(&description, &band, nullptr, nullptr);
    if (handle == nullptr) return;
    QNVControl(handle, QNV_CLEAR_BAND, nullptr, nullptr);
    QNVPixel(handle, 1, 1, 0, &mode, &band);
    QNVPolyPixel(handle, 0, 0, 5, 5, 0, &mode, &band);
    QNVOutput(handle, OS_BANDED_SPANS, 1, spans, &pen, nullptr, &mode, &band);
    QNVDevBitBlt(handle, 0, 0, &source, 0, 0, 2, 1, SRCINVERT, nullptr, &mode, &band);
    QNVDevBitBlt(handle, 0, 0, nullptr, 0, 0, 200, 100, WHITENESS, nullptr, &mode, &band);
    QNVDevExtTextOut(handle, 0, 0, &band, font, 2, font, 0, &mode, nullptr, nullptr, &band, ETO_OPAQUE);
    for (uint32_t rop : {uint32_t{SRCCOPY}, uint32_t{SRCINVERT}, uint32_t{ROP_MINIMUM}}) {
      QNVStretchDIBits(handle, 0, 0, 0, 20, 10, 0, 0, 2, 1, pixels, &header, nullptr, rop, nullptr, &mode, &band);
    }
    QNVDisable(handle);
  });
}

void Control(Stage& stage, const Values& v, int) {
  stage.Place(v);
  Limits limits;
  limits.none = limits.padded = (v.U32(kOwnFields) & 0xFFFF) == QNV_CLEAR_BAND;
  // Any 16 bytes are an origin or a rectangle; the rectangle of a band with memory holds only what it may.
  const bool moves = (v.U32(kOwnFields) & 0xFFFF) == QNV_SET_BAND_RECT;
  const BandRect data = moves ? stage.BandOf(v) : v.Rect(kOwnFields + 1);
  stage.Run(200, limits, [&] { QNVControl(stage.handle(), v.U32(kOwnFields), &data, nullptr); });
}

void ColorInfo(Stage& stage, const Values& v, int) {
  uint32_t result;
  stage.Run(1, kNothing, [&] { QNVColorInfo(stage.handle(), v.U32(0), &result); });
}

void RealizePen(Stage& stage, const Values& v, int) {
  const LogicalPen logical{v.U16(1), v.I16(2), v.I16(3), v.U32(4)};
  // As much as the larger of the two kinds takes, in and out.
  uint8_t input[sizeof(LogicalBrush)] = {};
  std::memcpy(input, &logical, sizeof logical);
  const uint32_t kind = v.U32(0);
  if ((kind & 0xFFFF) == OBJ_BRUSH) return stage.Skip();
  PhysicalPen pen;
  stage.Run(1, kNothing, [&] { QNVRealizeObject(stage.handle(), kind, input, &pen, nullptr); });
}

void RealizeBrush(Stage& stage, const Values& v, int) {
  const uint16_t style = v.U16(1);
  const uint32_t kind = v.U32(0);
  // Style 3 names a bitmap by its address, which is the host's.
  SourceBitmap bitmap{v.I16(5), v.I16(6), v.I16(7), v.U16(8), v.U8(9), v.U8(10), nullptr};
  const uint32_t rowBytes = bitmap.bmBitsPixel == 24 ? 24 : bitmap.bmBitsPixel == 8 ? 8 : 1;
  bitmap.bmBits = stage.host().pattern.Last(uint64_t{7} * bitmap.bmWidthBytes + rowBytes);
  if (bitmap.bmBits == nullptr) return stage.Skip();
  const LogicalBrush logical{style, style == BS_PATTERN ? reinterpret_cast<uintptr_t>(&bitmap) : v.U32(2), v.I16(3),
                             v.U32(4)};
  uint8_t output[sizeof(PhysicalBrush)];
  stage.Run(1, kNothing, [&] { QNVRealizeObject(stage.handle(), kind, &logical, output, nullptr); });
}

}  // namespace

void AddObjectScenes(std::vector<Scene>& scenes, const DeviceClass& device) {
  const std::vector<Field> description = {{"kind", 16, device.kind},
                                          {"bitsPerPixel", 16, device.bitsPerPixel},
                                          {"resolutionA", 16, device.resolutionA},
                                          {"width", 32, kBandColumns},
                                          {"height", 32, kBandRows},
                                          {"resolutionB", 16, device.resolutionB}};
  scenes.push_back({"GetDeviceInfo", description, GetDeviceInfo});
  scenes.push_back({"Enable",
                    description + std::vector<Field>{{"band left", 32, device.left},
                                                     {"band top", 32, device.top},
                                                     {"band right", 32, int64_t{device.left} + kBandColumns},
                                                     {"band bottom", 32, int64_t{device.top} + kBandRows}},
                    Enable});
  for (uint32_t code : {QNV_SET_ORIGIN, QNV_SET_BAND_RECT, QNV_CLEAR_BAND}) {
    scenes.push_back(
        {"Control",
         FieldsWith(device,
                    {{"code", 32, code}, {"data 0", 32, 1}, {"data 1", 32, 2}, {"data 2", 32, 14}, {"data 3", 32, 11}}),
         Control});
  }
  scenes.push_back({"ColorInfo", {{"color", 32, 0x00123456}}, ColorInfo});
  scenes.push_back({"RealizeObject, pen",
                    {{"kind", 32, OBJ_PEN},
                     {"style", 16, PS_SOLID},
                     {"widthX", 16, 1},
                     {"widthY", 16, 1},
                     {"colour", 32, 0x00123456}},
                    RealizePen});
  for (int64_t style : {BS_HATCHED, BS_PATTERN}) {
    scenes.push_back({style == BS_HATCHED ? "RealizeObject, hatch" : "RealizeObject, pattern",
                      {{"kind", 32, OBJ_BRUSH},
                       {"style", 16, style},
                       {"colour", 32, 0x00123456},
                       {"hatch", 16, HS_CROSS},
                       {"background", 32, 0x00FFFFFF},
                       {"bmType", 16, 0},
                       {"bmWidth", 16, 8},
                       {"bmHeight", 16, 8},
                       {"bmWidthBytes", 16, 24},
                       {"bmPlanes", 8, 1},
                       {"bmBitsPixel", 8, 24}},
                      RealizeBrush});
  }
}

}  // namespace qnv::test
