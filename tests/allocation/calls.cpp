#include "allocation/calls.h"

#include "image/dib_builder.h"
#include "output/output_call.h"
#include "text/font_builder.h"

namespace qnv::test {
namespace {

const DRAWMODE& Mode() {
  static const DRAWMODE mode = [] {
    DRAWMODE made = MakeDrawMode();
    made.TextColor = 0x00804020;
    return made;
  }();
  return mode;
}

const PhysicalBrush& Brush() {
  static const PhysicalBrush brush = [] {
    const TestDevice device({});
    return HatchBrush(device.handle(), HS_DIAGCROSS, 0x00302010);
  }();
  return brush;
}

const std::vector<uint8_t>& Pixels() {
  static const std::vector<uint8_t> pixels = [] {
    std::vector<uint8_t> made;
    for (int i = 0; i < 3 * 40 * 40; ++i) made.push_back(static_cast<uint8_t>(i * 7 + i / 90));
    return made;
  }();
  return pixels;
}

const Font& LettersFont() {
  static const Font font = SmallFont().Build();
  return font;
}

const Dib& RunLengths() {
  static const Dib dib = [] {
    std::vector<uint8_t> data;
    for (int row = 0; row < 20; ++row) {
      for (int value : {9, row, 7, row + 1, 0, 0}) data.push_back(static_cast<uint8_t>(value));
    }
    data.resize(data.size() + 260 + 2 * 20, 0);
    return Dib(DibInfo(16, 20, {.bitCount = 8, .compression = BI_RLE8}, FullTable(8)), data);
  }();
  return dib;
}

uint32_t Image(const TestDevice& device, uint16_t bitCount, const ImagePlace& place, uint32_t rop) {
  static const std::vector<uint8_t> table = [] {
    std::vector<uint8_t> made;
    for (int i = 0; i < 1024; ++i) made.push_back(static_cast<uint8_t>(11 * i));
    return made;
  }();
  std::vector<uint8_t> info = DibInfo(20, 20, {.bitCount = bitCount});
  if (bitCount <= 8) info.insert(info.end(), table.begin(), table.end());
  return QNVStretchDIBits(device.handle(), 0, place.dstX, place.dstY, place.dstWidth, place.dstHeight, place.srcX,
                          place.srcY, place.srcWidth, place.srcHeight, Pixels().data(), info.data(), nullptr, rop,
                          &Brush(), &Mode(), &kEverywhere);
}

// A record of `pairs` spans on some rows, then one of two spans.
uint32_t Spans(const TestDevice& device, int pairs) {
  std::vector<int16_t> words = {static_cast<int16_t>(2 * pairs), 1, 6};
  for (int i = 0; i < pairs; ++i) {
    words.push_back(static_cast<int16_t>(i % 60));
    words.push_back(static_cast<int16_t>(i % 60 + 1));
  }
  for (int word : {2 * pairs, 4, 10, 12, 3, 9, 20, 30, 4}) words.push_back(static_cast<int16_t>(word));
  return QNVOutput(device.handle(), OS_BANDED_SPANS, 2, words.data(), nullptr, &Brush(), &Mode(), &kEverywhere);
}

}  // namespace

const std::vector<OrdinaryCall>& OrdinaryCalls() {
  static const std::vector<OrdinaryCall> calls = {
      {"Control, origin", false,
       [](const TestDevice& device) {
         const DrawingOrigin origin{0, 0};
         return QNVControl(device.handle(), QNV_SET_ORIGIN, &origin, nullptr);
       }},
      {"Control, clear", false,
       [](const TestDevice& device) { return QNVControl(device.handle(), QNV_CLEAR_BAND, nullptr, nullptr); }},
      {"ColorInfo", false, [](const TestDevice& device) { return QNVColorInfo(device.handle(), 0x00123456, nullptr); }},
      {"RealizeObject", false,
       [](const TestDevice& device) {
         const LogicalBrush logical{BS_HATCHED, 0x00334455, HS_CROSS, 0};
         PhysicalBrush brush;
         return QNVRealizeObject(device.handle(), OBJ_BRUSH, &logical, &brush, nullptr);
       }},
      {"Pixel", false,
       [](const TestDevice& device) { return QNVPixel(device.handle(), 3, 4, 0x00776655, &Mode(), &kEverywhere); }},
      {"PolyPixel", false,
       [](const TestDevice& device) {
         return QNVPolyPixel(device.handle(), 3, 4, 9, 1, 0x00776655, &Mode(), &kEverywhere);
       }},
      {"BitBlt, fill", false,
       [](const TestDevice& device) {
         return QNVDevBitBlt(device.handle(), 2, 2, nullptr, 0, 0, 50, 20, PATINVERT, &Brush(), &Mode(), &kEverywhere);
       }},
      {"BitBlt, source and pattern", false,
       [](const TestDevice& device) {
         const SourceBitmap source{0, 40, 40, 120, 1, 24, Pixels().data()};
         return QNVDevBitBlt(device.handle(), 2, 2, &source, 1, 1, 50, 20, 0x00B8074A, &Brush(), &Mode(), &kEverywhere);
       }},
      {"BitBlt, one bit", false,
       [](const TestDevice& device) {
         const SourceBitmap source{0, 40, 40, 6, 1, 1, Pixels().data()};
         return QNVDevBitBlt(device.handle(), 2, 2, &source, 1, 1, 50, 20, SRCCOPY, &Brush(), &Mode(), &kEverywhere);
       }},
      {"ExtTextOut", false,
       [](const TestDevice& device) {
         DRAWMODE mode = Mode();
         const BandRect opaque{0, 0, 30, 12};
         return static_cast<uint32_t>(QNVDevExtTextOut(device.handle(), 2, 2, &kEverywhere, "abcd", 4,
                                                       LettersFont().base(), LettersFont().offset(), &mode, nullptr,
                                                       nullptr, &opaque, ETO_OPAQUE));
       }},
      {"Output, spans that fit", false, [](const TestDevice& device) { return Spans(device, 128); }},
      {"Output, a long record", true, [](const TestDevice& device) { return Spans(device, 300); }},
      {"StretchDIBits, 24 bits", true,
       [](const TestDevice& device) {
         return Image(device, 24, {1, 1, 20, 20, 0, 0, 20, 20}, SRCCOPY);
       }},
      {"StretchDIBits, mirrored", true,
       [](const TestDevice& device) {
         return Image(device, 24, {40, 1, -20, 20, 0, 0, 20, 20}, SRCCOPY);
       }},
      {"StretchDIBits, enlarged", true,
       [](const TestDevice& device) {
         return Image(device, 8, {1, 1, 50, 27, 0, 0, 20, 20}, SRCCOPY);
       }},
      {"StretchDIBits, reduced", true,
       [](const TestDevice& device) {
         return Image(device, 32, {1, 1, 13, 9, 0, 0, 20, 20}, SRCCOPY);
       }},
      {"StretchDIBits, doubled and inverted", true,
       [](const TestDevice& device) {
         return Image(device, 4, {1, 1, 40, 30, 0, 0, 20, 20}, SRCINVERT);
       }},
      {"StretchDIBits, minimum", true,
       [](const TestDevice& device) {
         return Image(device, 1, {1, 1, 33, 30, 0, 0, 20, 20}, ROP_MINIMUM);
       }},
      {"StretchDIBits, run lengths", true,
       [](const TestDevice& device) {
         return Stretch(device, RunLengths(), {2, 3, 16, 20, 0, 0, 16, 20}, {.drawMode = &Mode()});
       }},
      {"SetDIBitsToDevice", true,
       [](const TestDevice& device) {
         const std::vector<uint8_t> info = DibInfo(20, 20, {.bitCount = 24});
         return QNVDevSetDIBitsToDevice(device.handle(), 4, 4, 2, 11, &kEverywhere, &Mode(), Pixels().data(),
                                        info.data(), nullptr);
       }},
  };
  return calls;
}

}  // namespace qnv::test
