// The records a host and the library share. Where pointers have four bytes every size and offset is the driver
// interface's; with wider pointers everything up to the first pointer still is.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "qnvdrv10.h"
#include "support/host_handle.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

constexpr bool kFourBytePointers = sizeof(void*) == 4;

static_assert(sizeof(DeviceDescription) == 16);
static_assert(offsetof(DeviceDescription, kind) == 0);
static_assert(offsetof(DeviceDescription, bitsPerPixel) == 2);
static_assert(offsetof(DeviceDescription, resolutionA) == 4);
static_assert(offsetof(DeviceDescription, width) == 6);
static_assert(offsetof(DeviceDescription, height) == 10);
static_assert(offsetof(DeviceDescription, resolutionB) == 14);

static_assert(sizeof(BandRect) == 16);
static_assert(offsetof(BandRect, left) == 0);
static_assert(offsetof(BandRect, top) == 4);
static_assert(offsetof(BandRect, right) == 8);
static_assert(offsetof(BandRect, bottom) == 12);

static_assert(sizeof(DeviceSize) == 8);
static_assert(offsetof(DeviceSize, height) == 4);
static_assert(sizeof(DrawingOrigin) == 8);
static_assert(offsetof(DrawingOrigin, y) == 4);

static_assert(sizeof(DRAWMODE) == 42);
static_assert(offsetof(DRAWMODE, Rop2) == 0);
static_assert(offsetof(DRAWMODE, bkMode) == 2);
static_assert(offsetof(DRAWMODE, bkColor) == 4);
static_assert(offsetof(DRAWMODE, TextColor) == 8);
static_assert(offsetof(DRAWMODE, TBreakExtra) == 12);
static_assert(offsetof(DRAWMODE, BreakExtra) == 14);
static_assert(offsetof(DRAWMODE, BreakErr) == 16);
static_assert(offsetof(DRAWMODE, BreakRem) == 18);
static_assert(offsetof(DRAWMODE, BreakCount) == 20);
static_assert(offsetof(DRAWMODE, CharacterExtra) == 22);
static_assert(offsetof(DRAWMODE, LbkColor) == 24);
static_assert(offsetof(DRAWMODE, LTextColor) == 28);

static_assert(!kFourBytePointers || sizeof(SourceBitmap) == 14);
static_assert(offsetof(SourceBitmap, bmType) == 0);
static_assert(offsetof(SourceBitmap, bmWidth) == 2);
static_assert(offsetof(SourceBitmap, bmHeight) == 4);
static_assert(offsetof(SourceBitmap, bmWidthBytes) == 6);
static_assert(offsetof(SourceBitmap, bmPlanes) == 8);
static_assert(offsetof(SourceBitmap, bmBitsPixel) == 9);
static_assert(offsetof(SourceBitmap, bmBits) == 10);

static_assert(sizeof(LogicalPen) == 10 && sizeof(PhysicalPen) == 10);
static_assert(offsetof(LogicalPen, style) == 0 && offsetof(PhysicalPen, style) == 0);
static_assert(offsetof(LogicalPen, widthX) == 2 && offsetof(PhysicalPen, widthX) == 2);
static_assert(offsetof(LogicalPen, widthY) == 4 && offsetof(PhysicalPen, widthY) == 4);
static_assert(offsetof(LogicalPen, colour) == 6 && offsetof(PhysicalPen, colour) == 6);

static_assert(offsetof(LogicalBrush, style) == 0);
static_assert(offsetof(LogicalBrush, colour) == 2);
static_assert(!kFourBytePointers || sizeof(LogicalBrush) == 12);
static_assert(!kFourBytePointers || offsetof(LogicalBrush, hatch) == 6);
static_assert(!kFourBytePointers || offsetof(LogicalBrush, background) == 8);

static_assert(sizeof(PhysicalBrush) == 268);
static_assert(offsetof(PhysicalBrush, style) == 0);
static_assert(offsetof(PhysicalBrush, hatch) == 2);
static_assert(offsetof(PhysicalBrush, patternDepth) == 4);
static_assert(offsetof(PhysicalBrush, hatchScale) == 6);
static_assert(offsetof(PhysicalBrush, colour) == 8);
static_assert(offsetof(PhysicalBrush, cells) == 12);

static_assert(sizeof(FONTINFO) == 33);
static_assert(offsetof(FONTINFO, dfType) == 0);
static_assert(offsetof(FONTINFO, dfPixWidth) == 20);
static_assert(offsetof(FONTINFO, dfPixHeight) == 22);
static_assert(offsetof(FONTINFO, dfPitchAndFamily) == 24);
static_assert(offsetof(FONTINFO, dfFirstChar) == 29);
static_assert(offsetof(FONTINFO, dfLastChar) == 30);
static_assert(offsetof(FONTINFO, dfDefaultChar) == 31);
static_assert(offsetof(FONTINFO, dfBreakChar) == 32);

static_assert(sizeof(BITMAPINFOHEADER) == 40);
static_assert(offsetof(BITMAPINFOHEADER, biWidth) == 4);
static_assert(offsetof(BITMAPINFOHEADER, biHeight) == 8);
static_assert(offsetof(BITMAPINFOHEADER, biPlanes) == 12);
static_assert(offsetof(BITMAPINFOHEADER, biBitCount) == 14);
static_assert(offsetof(BITMAPINFOHEADER, biCompression) == 16);
static_assert(offsetof(BITMAPINFOHEADER, biClrUsed) == 32);

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
