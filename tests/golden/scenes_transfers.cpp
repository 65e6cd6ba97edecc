// Bit-block transfers: every named operation and a few others, of a color source, a one-bit source and a pattern.
#include "golden/scene.h"

namespace qnv::test {
namespace {

constexpr uint32_t kOperations[] = {BLACKNESS,  NOTSRCERASE, NOTSRCCOPY, SRCERASE,   DSTINVERT, PATINVERT,
                                    SRCINVERT,  SRCAND,      0x00AA0029, MERGEPAINT, MERGECOPY, SRCCOPY,
                                    0x00E20746, SRCPAINT,    PATCOPY,    PATPAINT,   WHITENESS, 0x00B8074A};

// A disc in red, green, blue bytes over a ramp.
std::vector<uint8_t> ColorSource() {
  std::vector<uint8_t> bytes(24 * 3 * 24);
  for (int32_t y = 0; y < 24; ++y) {
    for (int32_t x = 0; x < 24; ++x) {
      uint8_t* p = bytes.data() + (y * 24 + x) * 3;
      const bool disc = (x - 12) * (x - 12) + (y - 12) * (y - 12) < 80;
      p[0] = static_cast<uint8_t>(disc ? 255 : x * 10);
      p[1] = static_cast<uint8_t>(disc ? 160 : y * 10);
      p[2] = static_cast<uint8_t>(disc ? 0 : 128);
    }
  }
  return bytes;
}

// A ring, set bits outside.
std::vector<uint8_t> OneBitSource() {
  std::vector<uint8_t> bytes(24 * 4, 0);
  for (int32_t y = 0; y < 24; ++y) {
    for (int32_t x = 0; x < 24; ++x) {
      const int32_t distance = (x - 12) * (x - 12) + (y - 12) * (y - 12);
      if (distance > 110 || distance < 30)
        bytes[static_cast<std::size_t>(y * 4 + x / 8)] |= static_cast<uint8_t>(0x80 >> (x % 8));
    }
  }
  return bytes;
}

}  // namespace

std::vector<ScenePicture> PaintTransfers() {
  TestDevice device({.width = 250, .height = 172});
  device.Clear();
  const std::vector<uint8_t> colorBytes = ColorSource();
  const std::vector<uint8_t> oneBitBytes = OneBitSource();
  const SourceBitmap color{0, 24, 24, 72, 1, 24, colorBytes.data()};
  const SourceBitmap oneBit{0, 24, 24, 4, 1, 1, oneBitBytes.data()};
  for (int32_t i = 0; i < 18; ++i) {
    const int32_t x = 4 + i % 9 * 27;
    const int32_t y = 4 + i / 9 * 84;
    // The ground: upper half a color, lower half white, a black bar at the left.
    FillRectangle(device, {x, y, x + 24, y + 80}, 0xF0D0B0);
    FillRectangle(device, {x, y + 12, x + 24, y + 24}, 0xFFFFFF);
    FillRectangle(device, {x, y + 40, x + 24, y + 52}, 0xFFFFFF);
    FillRectangle(device, {x, y, x + 5, y + 80}, 0x000000);
    DRAWMODE mode = MakeDrawMode();
    mode.TextColor = 0xA00000;
    mode.bkColor = 0x80E0FF;
    const PhysicalBrush hatch = HatchBrush(device.handle(), HS_DIAGCROSS, 0x0000FF, 0xFFFFFF);
    const PhysicalBrush solid = SolidBrush(device.handle(), 0x30B060);
    const auto blit = [&](int32_t top, const SourceBitmap& source, const PhysicalBrush& brush) {
      EXPECT_EQ(1u, QNVDevBitBlt(device.handle(), x, top, &source, 0, 0, 24, 24, kOperations[i], &brush, &mode,
                                 &kEverywhere) &
                        0xFFFF);
    };
    blit(y, color, hatch);
    blit(y + 28, oneBit, hatch);
    blit(y + 56, oneBit, solid);
  }
  return {{"transfers", BandPicture(device)}};
}

}  // namespace qnv::test
