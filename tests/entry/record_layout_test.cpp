// The records a host and the library share. Where pointers have four bytes every size and offset is the driver
// interface's; with wider pointers everything up to the first pointer still is.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "qnvdrv10.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

constexpr bool kFourBytePointers = sizeof(void*) == 4;

static_assert(sizeof(DeviceDescription) == 16 && offsetof(DeviceDescription, kind) == 0 &&
              offsetof(DeviceDescription, bitsPerPixel) == 2 && offsetof(DeviceDescription, resolutionA) == 4 &&
              offsetof(DeviceDescription, width) == 6 && offsetof(DeviceDescription, height) == 10 &&
              offsetof(DeviceDescription, resolutionB) == 14);
static_assert(sizeof(BandRect) == 16 && offsetof(BandRect, left) == 0 && offsetof(BandRect, top) == 4 &&
              offsetof(BandRect, right) == 8 && offsetof(BandRect, bottom) == 12);
static_assert(sizeof(DeviceSize) == 8 && offsetof(DeviceSize, height) == 4);
static_assert(sizeof(DrawingOrigin) == 8 && offsetof(DrawingOrigin, y) == 4);
static_assert(sizeof(DRAWMODE) == 42 && offsetof(DRAWMODE, Rop2) == 0 && offsetof(DRAWMODE, bkMode) == 2 &&
              offsetof(DRAWMODE, bkColor) == 4 && offsetof(DRAWMODE, TextColor) == 8 &&
              offsetof(DRAWMODE, TBreakExtra) == 12 && offsetof(DRAWMODE, BreakExtra) == 14 &&
              offsetof(DRAWMODE, BreakErr) == 16 && offsetof(DRAWMODE, BreakRem) == 18 &&
              offsetof(DRAWMODE, BreakCount) == 20 && offsetof(DRAWMODE, CharacterExtra) == 22 &&
              offsetof(DRAWMODE, LbkColor) == 24 && offsetof(DRAWMODE, LTextColor) == 28);
static_assert(offsetof(SourceBitmap, bmType) == 0 && offsetof(SourceBitmap, bmWidth) == 2 &&
              offsetof(SourceBitmap, bmHeight) == 4 && offsetof(SourceBitmap, bmWidthBytes) == 6 &&
              offsetof(SourceBitmap, bmPlanes) == 8 && offsetof(SourceBitmap, bmBitsPixel) == 9 &&
              offsetof(SourceBitmap, bmBits) == 10);
static_assert(!kFourBytePointers || (sizeof(SourceBitmap) == 14));
static_assert(sizeof(LogicalPen) == 10 && offsetof(LogicalPen, style) == 0 && offsetof(LogicalPen, widthX) == 2 &&
              offsetof(LogicalPen, widthY) == 4 && offsetof(LogicalPen, colour) == 6);
static_assert(sizeof(PhysicalPen) == 10 && offsetof(PhysicalPen, style) == 0 && offsetof(PhysicalPen, widthX) == 2 &&
              offsetof(PhysicalPen, widthY) == 4 && offsetof(PhysicalPen, colour) == 6);
static_assert(offsetof(LogicalBrush, style) == 0 && offsetof(LogicalBrush, colour) == 2);
static_assert(!kFourBytePointers || (sizeof(LogicalBrush) == 12 && offsetof(LogicalBrush, hatch) == 6 &&
                                     offsetof(LogicalBrush, background) == 8));
static_assert(sizeof(PhysicalBrush) == 268 && offsetof(PhysicalBrush, style) == 0 &&
              offsetof(PhysicalBrush, hatch) == 2 && offsetof(PhysicalBrush, patternDepth) == 4 &&
              offsetof(PhysicalBrush, hatchScale) == 6 && offsetof(PhysicalBrush, colour) == 8 &&
              offsetof(PhysicalBrush, cells) == 12);
static_assert(sizeof(FONTINFO) == 33 && offsetof(FONTINFO, dfType) == 0 && offsetof(FONTINFO, dfPixWidth) == 20 &&
              offsetof(FONTINFO, dfPixHeight) == 22 && offsetof(FONTINFO, dfPitchAndFamily) == 24 &&
              offsetof(FONTINFO, dfFirstChar) == 29 && offsetof(FONTINFO, dfLastChar) == 30 &&
              offsetof(FONTINFO, dfDefaultChar) == 31 && offsetof(FONTINFO, dfBreakChar) == 32);
static_assert(sizeof(BITMAPINFOHEADER) == 40 && offsetof(BITMAPINFOHEADER, biWidth) == 4 &&
              offsetof(BITMAPINFOHEADER, biHeight) == 8 && offsetof(BITMAPINFOHEADER, biPlanes) == 12 &&
              offsetof(BITMAPINFOHEADER, biBitCount) == 14 && offsetof(BITMAPINFOHEADER, biCompression) == 16 &&
              offsetof(BITMAPINFOHEADER, biClrUsed) == 32);

TEST(RecordLayout, HandleBeginsWithTheMagicWord) {
  const TestDevice device({});
  uint8_t magic[2];
  std::memcpy(magic, device.handle(), sizeof magic);
  EXPECT_EQ(0x51, magic[0]);
  EXPECT_EQ(0x4E, magic[1]);
}

// Packed records have no alignment to rely on: a host lays them out at any address.
TEST(RecordLayout, RecordsAreReadAtOddAddresses) {
  struct Misaligned {
    uint8_t bytes[1 + sizeof(PhysicalBrush)];
    void* Put(const void* record, std::size_t size) {
      std::memcpy(bytes + 1, record, size);
      return bytes + 1;
    }
  };
  alignas(16) Misaligned slots[6];
  const DeviceDescription plain{QNV_KIND_RASTER, 24, 360, 8, 2, 360};
  const BandRect band{0, 0, 8, 2};
  FencedBuffer buffer(48, 0);
  DeviceHandle* handle =
      QNVEnable(static_cast<const DeviceDescription*>(slots[0].Put(&plain, sizeof plain)),
                static_cast<const BandRect*>(slots[1].Put(&band, sizeof band)), buffer.data(), nullptr);
  ASSERT_NE(nullptr, handle);

  const DrawingOrigin origin{1, 0};
  EXPECT_EQ(1u, QNVControl(handle, QNV_SET_ORIGIN, slots[2].Put(&origin, sizeof origin), nullptr) & 0xFFFF);

  const LogicalBrush logical{BS_SOLID, 0x00112233, 0, 0};
  void* brush = slots[4].bytes + 1;
  EXPECT_EQ(0x8002u, QNVRealizeObject(handle, OBJ_BRUSH, slots[3].Put(&logical, sizeof logical), brush, nullptr));

  const DRAWMODE mode = MakeDrawMode();
  const void* modeSlot = slots[5].Put(&mode, sizeof mode);
  EXPECT_EQ(1u, QNVDevBitBlt(handle, 2, 1, nullptr, 0, 0, 1, 1, PATCOPY, static_cast<const PhysicalBrush*>(brush),
                             static_cast<const DRAWMODE*>(modeSlot),
                             static_cast<const BandRect*>(slots[1].Put(&kEverywhere, sizeof kEverywhere))) &
                    0xFFFF);
  const uint8_t expected[3] = {0x11, 0x22, 0x33};
  EXPECT_EQ(0, std::memcmp(expected, buffer.data() + 24 + 9, 3));
  QNVDisable(handle);
}

}  // namespace
}  // namespace qnv::test
