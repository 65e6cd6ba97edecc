// Calls that have to do the same, each pair made on two equal devices of every class, which must still be equal after
// it: an operation of its own and the general operation on its index, QNVDevSetDIBitsToDevice and the QNVStretchDIBits
// that it stands for, and the two codes of a span encoding.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/source_image.h"
#include "support/tag_plane.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

// Every device class; the scaled ones down, up and in gray mode.
std::vector<DeviceOptions> LawDevices() {
  constexpr DeviceOptions kBand{.width = 45, .height = 21, .left = 3, .top = 5};
  std::vector<DeviceOptions> all = {WithDepth(kBand, QNV_KIND_RASTER, 24), WithDepth(kBand, QNV_KIND_RASTER, 8),
                                    WithDepth(kBand, QNV_KIND_RASTER, 24, true)};
  struct Mapped {
    uint16_t depth, resolutionA, resolutionB;
  };
  for (const Mapped& m : {Mapped{24, 600, 400}, Mapped{24, 300, 400}, Mapped{0, 600, 400}, Mapped{0, 300, 360}}) {
    all.push_back(WithDepth({.width = 45, .height = 21, .resolutionA = m.resolutionA, .resolutionB = m.resolutionB},
                            QNV_KIND_SCALED, m.depth));
  }
  return all;
}

class TwinDevices {
 public:
  explicit TwinDevices(const DeviceOptions& options) : first(options), second(options) {}

  // Noise in both bands, and tags that every call has to write.
  void FillWith(uint64_t seed) {
    for (TestDevice* device : {&first, &second}) {
      if (device->options().tagPlane) MixTags(device);
      FillWithNoise(&device->band(), seed);
    }
  }

  void SetOrigin(int32_t x, int32_t y) {
    first.SetOrigin(x, y);
    second.SetOrigin(x, y);
  }

  testing::AssertionResult AreEqual() const {
    if (!first.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
    const testing::AssertionResult bands = BandShows(second, BandImage(first));
    if (!bands || !first.options().tagPlane) return bands;
    return TagsShow(second, TagImage(first));
  }

  TestDevice first;
  TestDevice second;
};

// Each of the sixteen operations of its own, and the index that does nothing, equals the general operation on its
// index. The general one is reached by a bit in the upper byte of the code.
constexpr std::array<uint8_t, 17> kIndices = {0x00, 0x11, 0x33, 0x44, 0x55, 0x5A, 0x66, 0x88, 0xAA,
                                              0xBB, 0xC0, 0xCC, 0xE2, 0xEE, 0xF0, 0xFB, 0xFF};

PhysicalBrush BrushOfKind(DeviceHandle* handle, uint32_t kind, uint32_t color, const SourceBitmap& bitmap) {
  switch (kind) {
    case 0: return SolidBrush(handle, color);
    case 1: return PatternBrush(handle, bitmap);
    default: return HatchBrush(handle, static_cast<int16_t>(kind - 2), color, 0x00FEDCBA);
  }
}

TEST(GeneralOperation, EqualsTheOperationOfItsIndex) {
  std::vector<DeviceOptions> devices = LawDevices();
  devices.push_back({.width = 45, .height = 21, .resolutionA = 720, .left = 3, .top = 5});  // doubled cells
  for (const DeviceOptions& options : devices) {
    TwinDevices twins(options);
    DeviceHandle* special = twins.first.handle();
    const bool gray = IsGrayDevice(twins.first);
    const SourceImage oneBit(kOneBitSource, 60, 40, 1);
    const SourceImage other(gray ? kGraySource : kColorSource, 60, 40, 2);
    RandomBytes random(3);
    const auto between = [&](int32_t from, uint32_t count) { return from + static_cast<int32_t>(random.Below(count)); };
    for (uint32_t n = 0; n < 3400; ++n) {
      const uint8_t index = kIndices[n % kIndices.size()];
      // In gray mode doing nothing and writing everything back, grayed, are not the same.
      if (index == 0xAA && options.kind == QNV_KIND_SCALED && gray) continue;
      SCOPED_TRACE(Text(Describe(options), ", index ", index, ", case ", n));
      twins.FillWith(n);
      const int32_t originX = between(-4, 9);
      twins.SetOrigin(originX, between(-4, 9));
      const PhysicalBrush brush = BrushOfKind(special, random.Below(8), random.Next() & 0xFFFFFF, *oneBit.record());
      const DRAWMODE mode = MakeDrawMode({.bkMode = between(1, 2),
                                          .background = QNVColorInfo(special, random.Next() & 0xFFFFFF, nullptr),
                                          .text = QNVColorInfo(special, random.Next() & 0xFFFFFF, nullptr)});
      const int32_t clipX = between(-8, 40);
      const int32_t clipY = between(-8, 20);
      const BandRect clip =
          random.Below(3) == 0 ? BandRect{0, 0, 0, 0} : BandRect{clipX, clipY, clipX + 25, clipY + 14};
      TransferCall call{.at = {between(-12, 60), between(-8, 30)},
                        .source = random.Below(2) == 0 ? oneBit.record() : other.record(),
                        .from = {between(-6, 40), between(-6, 30)},
                        .size = {between(0, 60), between(0, 25)},
                        .rop = uint32_t{index} << 16,
                        .brush = &brush,
                        .drawMode = &mode,
                        .clip = random.Below(4) == 0 ? &kEverywhere : &clip};
      const uint32_t result = Transfer(special, call);
      call.rop |= 0x01000000u << random.Below(8);
      ASSERT_EQ(result, Transfer(twins.second.handle(), call));
      ASSERT_TRUE(twins.AreEqual());
    }
  }
}

// QNVDevSetDIBitsToDevice is one particular QNVStretchDIBits: unscaled, a source copy, the whole width, stored rows
// from the first scan on.
constexpr std::array<uint16_t, 7> kImageDepths = {1, 4, 8, 16, 24, 32, 5};  // the last one is refused

TEST(SetDIBits, EqualsItsStretchDIBits) {
  constexpr int32_t kRows = 20;
  constexpr int32_t kMaxWidth = 40;
  std::vector<uint8_t> bits(kMaxWidth * 4 * kRows);
  RandomBytes random(1);
  for (uint8_t& byte : bits) byte = random.Byte();
  std::vector<uint8_t> info(40 + 1024);
  for (uint8_t& byte : info) byte = random.Byte();
  uint32_t painted = 0;
  for (const DeviceOptions& options : LawDevices()) {
    TwinDevices twins(options);
    for (uint32_t n = 0; n < 700; ++n) {
      SCOPED_TRACE(Text(Describe(options), ", case ", n));
      if (options.tagPlane) twins.FillWith(n);
      BITMAPINFOHEADER header{};
      header.biSize = sizeof header;
      header.biWidth = 1 + static_cast<int32_t>(random.Below(kMaxWidth));
      header.biHeight = n % 3 == 0 ? -kRows : kRows;
      header.biPlanes = n % 50 == 49 ? 2 : 1;
      header.biBitCount = kImageDepths[n % kImageDepths.size()];
      header.biClrUsed = n % 4 == 0 ? 2 : 0;
      std::memcpy(info.data(), &header, sizeof header);
      const uint32_t startScan = random.Below(kRows);
      const uint32_t numScans = random.Below(kRows + 4);
      const int32_t x = static_cast<int32_t>(random.Below(60)) - 15;
      const int32_t y = static_cast<int32_t>(random.Below(40)) - 15;
      const int32_t originX = static_cast<int32_t>(random.Below(9)) - 4;
      twins.SetOrigin(originX, static_cast<int32_t>(random.Below(9)) - 4);
      const DRAWMODE mode = MakeDrawMode();
      const BandRect narrow{5, 7, 25, 19};
      const BandRect& clip = n % 2 == 0 ? kEverywhere : narrow;
      const int32_t rows = static_cast<int32_t>(numScans);
      const uint32_t result = QNVDevSetDIBitsToDevice(twins.first.handle(), x, y, startScan, numScans, &clip, &mode,
                                                      bits.data(), info.data(), nullptr) &
                              0xFFFF;
      EXPECT_EQ(result, QNVStretchDIBits(twins.second.handle(), 0, x, y, header.biWidth, rows, 0,
                                         static_cast<int32_t>(startScan), header.biWidth, rows, bits.data(),
                                         info.data(), nullptr, SRCCOPY, nullptr, &mode, &clip) &
                            0xFFFF);
      painted += result;
      ASSERT_TRUE(twins.AreEqual());
    }
  }
  EXPECT_GT(painted, 1000u) << "the cases hardly paint anything";
}

TEST(SetDIBits, NullBitmapInfoIsRefused) {
  for (const DeviceOptions& options : LawDevices()) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    const DRAWMODE mode = MakeDrawMode();
    const uint8_t bits[4] = {};
    EXPECT_EQ(
        0u, QNVDevSetDIBitsToDevice(device.handle(), 3, 5, 0, 1, &kEverywhere, &mode, bits, nullptr, nullptr) & 0xFFFF);
    EXPECT_TRUE(BandUntouched(device));
  }
}

int16_t Coordinate(RandomBytes* random) { return static_cast<int16_t>(static_cast<int>(random->Below(70)) - 12); }

// Records of spans for either encoding; both count as many elements as the list holds.
struct SpanList {
  std::vector<int16_t> points;
  uint32_t count;
};

SpanList Scanlines(RandomBytes* random) {
  const uint32_t pairs = 1 + random->Below(6);
  SpanList list{{Coordinate(random), Coordinate(random)}, pairs};
  for (uint32_t i = 1; i < pairs; ++i) {
    list.points.push_back(Coordinate(random));
    list.points.push_back(Coordinate(random));
  }
  return list;
}

SpanList BandedSpans(RandomBytes* random) {
  SpanList list{{}, 1 + random->Below(4)};
  for (uint32_t i = 0; i < list.count; ++i) {
    const int16_t values = static_cast<int16_t>(2 * random->Below(4));
    const int16_t top = Coordinate(random);
    list.points.insert(list.points.end(),
                       {values, top, static_cast<int16_t>(top + static_cast<int>(random->Below(9)))});
    for (int16_t v = 0; v < values; ++v) list.points.push_back(Coordinate(random));
    list.points.push_back(values);
  }
  return list;
}

// Span encoding 104 is 4 and 105 is 5, on every device, for every list.
void CheckAlias(uint32_t style, uint32_t alias, SpanList (*make)(RandomBytes*)) {
  for (const DeviceOptions& options : LawDevices()) {
    TwinDevices twins(options);
    twins.FillWith(1);
    RandomBytes random(style);
    for (uint32_t n = 0; n < 600; ++n) {
      SCOPED_TRACE(Text(Describe(options), ", case ", n));
      const SpanList list = make(&random);
      DeviceHandle* handle = twins.first.handle();
      const PhysicalBrush brush = n % 3 == 0
                                      ? SolidBrush(handle, random.Next() & 0xFFFFFF)
                                      : HatchBrush(handle, static_cast<int16_t>(n % 6), random.Next() & 0xFFFFFF);
      const PhysicalPen pen = SolidPen(handle, random.Next() & 0xFFFFFF);
      const int rop2 = static_cast<int>(1 + random.Below(16));
      const DRAWMODE mode = MakeDrawMode({.rop2 = rop2, .bkMode = static_cast<int>(1 + random.Below(2))});
      const BandRect clip{Coordinate(&random), Coordinate(&random), 30, 18};
      const auto paint = [&](const TestDevice& device, uint32_t code) {
        return QNVOutput(device.handle(), code, list.count, list.points.data(), n % 4 == 0 ? &pen : nullptr, &brush,
                         &mode, &clip) &
               0xFFFF;
      };
      const uint32_t upper = n % 2 == 0 ? 0u : 0x00050000u;  // no part of a style
      EXPECT_EQ(1u, paint(twins.first, style));
      EXPECT_EQ(1u, paint(twins.second, alias | upper));
      ASSERT_TRUE(twins.AreEqual());
    }
  }
}

TEST(SpanAliases, HundredAndFourIsFour) { CheckAlias(4, 104, Scanlines); }
TEST(SpanAliases, HundredAndFiveIsFive) { CheckAlias(5, 105, BandedSpans); }

}  // namespace
}  // namespace qnv::test
