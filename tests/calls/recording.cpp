// The sample page.
#include "calls/recording.h"

#include <cstring>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace qnv::test {

std::string ResultPath(const std::string& name) {
#ifdef _WIN32
  const int process = _getpid();
#else
  const int process = getpid();
#endif
  return std::string(QNV_TEST_OUTPUT_DIR) + "/" + name + "-" + std::to_string(process) + ".qnv";
}

namespace {

constexpr int kSampleHeight = 8;

// 'A' to 'C' of 5, 9 and 12 pixels, in a font with 32-bit offsets.
std::vector<uint8_t> SampleFont() {
  constexpr std::size_t kTable = 82, kOffset = 3;
  std::vector<uint8_t> font(kOffset + 256);
  FONTINFO info{};
  info.dfType = 0;
  info.dfPixHeight = kSampleHeight;
  info.dfPitchAndFamily = 1;
  info.dfFirstChar = 'A';
  info.dfLastChar = 'C';
  info.dfBreakChar = 2;
  std::memcpy(font.data() + kOffset, &info, sizeof info);
  std::size_t bits = kOffset + kTable + 3 * 6;
  const uint16_t widths[] = {5, 9, 12};
  for (std::size_t i = 0; i < 3; ++i) {
    uint8_t* const entry = font.data() + kOffset + kTable + 6 * i;
    std::memcpy(entry, &widths[i], 2);
    const auto offset = static_cast<uint32_t>(bits);
    std::memcpy(entry + 2, &offset, 4);
    const std::size_t bytes = (widths[i] + std::size_t{7}) / 8 * kSampleHeight;
    for (std::size_t b = 0; b < bytes; ++b) font[bits + b] = static_cast<uint8_t>(0x9D * (b + 1) + 7 * i);
    bits += bytes;
  }
  return font;
}

}  // namespace

calls::Bytes RecordSamplePage(const std::string& name, const DeviceDescription& description, bool tagPlane,
                              const calls::CaptureOptions& options) {
  RecordedHost host(name, options);
  std::vector<uint8_t> band(std::size_t{3} * 64 * 32, 0x5A), tags(64 * 32, 0x11);
  DeviceSize size;
  QNV_RECORDED_CALL(host, getDeviceInfo, kGetDeviceInfo, &description, &size);
  const DeviceDescription refused{7, 24, 300, 8, 8, 300};
  BandRect rect{0, 0, 61, 24};
  QNV_RECORDED_CALL(host, enable, kEnable, &refused, &rect, band.data(), nullptr);
  DeviceHandle* const device =
      QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band.data(), tagPlane ? tags.data() : nullptr);
  uint32_t color = 0;
  QNV_RECORDED_CALL(host, colorInfo, kColorInfo, device, 0x00804020, &color);
  QNV_RECORDED_CALL(host, colorInfo, kColorInfo, nullptr, 0x00804020, &color);

  const LogicalPen logicalPen{PS_DASH, 2, 2, 0x000000C0};
  PhysicalPen pen{};
  QNV_RECORDED_CALL(host, realizeObject, kRealizeObject, device, OBJ_PEN, &logicalPen, &pen, nullptr);
  QNV_RECORDED_CALL(host, realizeObject, kRealizeObject, device, OBJ_PEN, &logicalPen, nullptr, nullptr);
  const LogicalBrush solid{BS_SOLID, 0x0000C000, 0, 0}, hatched{BS_HATCHED, 0x00FF0000, HS_DIAGCROSS, 0x00C0C0C0};
  uint8_t patternBits[8 * 26];
  for (std::size_t i = 0; i < sizeof patternBits; ++i) patternBits[i] = static_cast<uint8_t>(i * 37);
  const SourceBitmap patternBitmap{0, 8, 8, 26, 1, 24, patternBits};
  const LogicalBrush patterned{BS_PATTERN, reinterpret_cast<uintptr_t>(&patternBitmap), 0, 0};
  PhysicalBrush brushes[3]{};
  const LogicalBrush* const logical[] = {&solid, &hatched, &patterned};
  for (int i = 0; i < 3; ++i) {
    QNV_RECORDED_CALL(host, realizeObject, kRealizeObject, device, OBJ_BRUSH, logical[i], &brushes[i], &size);
  }

  const std::vector<uint8_t> font = SampleFont();
  uint8_t source[16 * 200];
  for (std::size_t i = 0; i < sizeof source; ++i) source[i] = static_cast<uint8_t>(i * 11 + i / 200);
  const SourceBitmap wide{0, 60, 16, 200, 1, 24, source}, mono{0, 60, 16, 8, 1, 1, source};
  struct {
    BITMAPINFOHEADER header;
    uint8_t colors[16][4];
  } rle{{40, 20, 3, 1, 4, BI_RLE4, 0, 0, 0, 16, 0}, {}};
  for (std::size_t i = 0; i < 64; ++i) rle.colors[i / 4][i % 4] = static_cast<uint8_t>(i * 4);
  const uint8_t rleBits[] = {20, 0x5A, 0, 0, 0, 5, 0x12, 0x34, 0x50, 0, 9, 0x77, 0, 0, 0, 2, 3, 0, 12, 0xAB, 0, 1};
  const BITMAPINFOHEADER rgb{40, 19, -7, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  std::vector<uint8_t> rgbBits(7 * 60);
  for (std::size_t i = 0; i < rgbBits.size(); ++i) rgbBits[i] = static_cast<uint8_t>(i * 5);

  const BandRect clip{1, 1, 200, 200}, box{3, 30, 40, 39};
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  mode.bkMode = OPAQUE;
  mode.bkColor = 0x00FFE0C0;
  mode.TextColor = 0x00102030;
  for (int bandNumber = 0; bandNumber < 3; ++bandNumber) {
    const DrawingOrigin origin{bandNumber, -bandNumber};
    QNV_RECORDED_CALL(host, control, kControl, device, QNV_SET_ORIGIN, &origin, nullptr);
    rect.top = 20 * bandNumber;
    rect.bottom = rect.top + (bandNumber == 2 ? 12 : 24);
    QNV_RECORDED_CALL(host, control, kControl, device, QNV_SET_BAND_RECT, &rect, nullptr);
    // The first band is painted over what the memory holds.
    if (bandNumber != 0) QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
    QNV_RECORDED_CALL(host, control, kControl, device, 0x2077, &origin, &size);
    const int16_t banded[] = {4, 2, 50, 3, 9, 20, 30, 4};
    const int16_t records[] = {5, 2, 1, 30, 3, 2, 9, 40, 2, 7, 8};
    const int16_t deltas[] = {25, 4, 50, 0x0201, 0x7F80};
    QNV_RECORDED_CALL(host, output, kOutput, device, OS_BANDED_SPANS, 1, banded, nullptr, &brushes[1], &mode, &clip);
    QNV_RECORDED_CALL(host, output, kOutput, device, OS_ROW_RECORDS, 3, records, &pen, nullptr, &mode, &clip);
    QNV_RECORDED_CALL(host, output, kOutput, device, OS_BYTE_DELTAS, 3, deltas, nullptr, &brushes[2], &mode, &clip);
    QNV_RECORDED_CALL(host, output, kOutput, device, OS_NIBBLE_DELTAS, 4, deltas, nullptr, &brushes[0], &mode, &clip);
    QNV_RECORDED_CALL(host, output, kOutput, device, 999, 4, deltas, nullptr, &brushes[0], &mode, &clip);
    // A small part of a wide bitmap, in which only the rows are kept, and a whole one.
    QNV_RECORDED_CALL(host, bitBlt, kDevBitBlt, device, 8, 6, &wide, 5, 2, 9, 14, SRCINVERT, nullptr, &mode, &clip);
    QNV_RECORDED_CALL(host, bitBlt, kDevBitBlt, device, -3, 33, &mono, 2, 1, 60, 16, MERGECOPY, &brushes[2], &mode,
                      &clip);
    QNV_RECORDED_CALL(host, bitBlt, kDevBitBlt, device, 40, 40, nullptr, 0, 0, 20, 9, PATINVERT, &brushes[1], &mode,
                      &clip);
    QNV_RECORDED_CALL(host, stretchDIBits, kStretchDIBits, device, 0, 2, 10, 41, 30, 0, 0, 20, 3, rleBits,
                      static_cast<const void*>(&rle), nullptr, SRCCOPY, nullptr, &mode, &clip);
    QNV_RECORDED_CALL(host, stretchDIBits, kStretchDIBits, device, 0, 30, 2, -19, 60, 1, 1, 17, 5, rgbBits.data(),
                      static_cast<const void*>(&rgb), nullptr, ROP_MINIMUM, nullptr, &mode, &clip);
    QNV_RECORDED_CALL(host, setDIBitsToDevice, kDevSetDIBitsToDevice, device, 25, 18, 2, 4, &clip, &mode,
                      rgbBits.data(), static_cast<const void*>(&rgb), nullptr);
    const int16_t widths[] = {7, 8, 9};
    mode.TBreakExtra = 5;
    mode.BreakCount = 2;
    mode.BreakErr = 1;
    QNV_RECORDED_CALL(host, extTextOut, kDevExtTextOut, device, 3, 30, &clip, "ACCB", -4, font.data(), 3, &mode,
                      nullptr, nullptr, nullptr, 0);
    QNV_RECORDED_CALL(host, extTextOut, kDevExtTextOut, device, 3, 30, &clip, "ACx", 3, font.data(), 3, &mode, nullptr,
                      widths, &box, ETO_OPAQUE | ETO_CLIPPED);
    if (bandNumber == 1) {
      QNV_RECORDED_CALL(host, extTextOut, kDevExtTextOut, device, 3, 24, nullptr, "CAB", 3, font.data(), 3, &mode,
                        nullptr, nullptr, nullptr, 0);
    }
    mode.Rop2 = R2_NOT;
    QNV_RECORDED_CALL(host, polyPixel, kPolyPixel, device, 50, 0, 55, 60, 0x00123456, &mode, &clip);
    QNV_RECORDED_CALL(host, pixel, kPixel, device, 44, 21, 0x00123456, &mode, &clip);
    QNV_RECORDED_CALL(host, pixel, kPixel, device, 44, 21, 0, nullptr, &clip);
    mode.Rop2 = R2_COPYPEN;
  }
  QNV_RECORDED_CALL(host, disable, kDisable, device);
  return host.Finish();
}

}  // namespace qnv::test
