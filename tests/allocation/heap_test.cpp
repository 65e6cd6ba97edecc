// What calls take from the heap: nothing where the header says so, and when there is nothing to be had a defined
// result, no leak, and a device that goes on exactly.
#include <gtest/gtest.h>

#include <limits>

#include "allocation/calls.h"
#include "allocation/counting_heap.h"
#include "image/dib_builder.h"

namespace qnv::test {
namespace {

std::vector<uint8_t> Painted(const TestDevice& device) {
  std::vector<uint8_t> bytes = device.BandBytes();
  const std::vector<uint8_t> tags = device.TagBytes();
  bytes.insert(bytes.end(), tags.begin(), tags.end());
  return bytes;
}

// As it was made, but for what a device keeps.
void Repaint(TestDevice& device) {
  device.band().Fill(device.options().fill);
  if (device.tags() != nullptr) device.tags()->Fill(device.options().fill);
}

uint64_t AllocationsOf(const OrdinaryCall& call, const TestDevice& device) {
  call.make(device);  // what the test itself keeps is made here
  const TestDevice fresh(device.options());
  BeginCounting();
  call.make(fresh);
  return EndCounting().allocations;
}

// The first call of its kind, too.
TEST(Heap, PaintingTakesNothing) {
  for (const OrdinaryDevice& d : kOrdinaryDevices) {
    const TestDevice device(d.options);
    for (const OrdinaryCall& call : OrdinaryCalls()) {
      const uint64_t taken = AllocationsOf(call, device);
      if (!call.allocates) {
        EXPECT_EQ(0u, taken) << d.name << ", " << call.name;
      }
    }
  }
}

// Work memory stays with the device; a record of spans that does not fit it takes a block each time.
TEST(Heap, ImagesTakeOnce) {
  for (const OrdinaryDevice& d : kOrdinaryDevices) {
    const TestDevice device(d.options);
    uint64_t first = 0;
    for (const OrdinaryCall& call : OrdinaryCalls()) {
      BeginCounting();
      call.make(device);
      first += EndCounting().allocations;
    }
    EXPECT_NE(0u, first);
    for (const OrdinaryCall& call : OrdinaryCalls()) {
      BeginCounting();
      call.make(device);
      const HeapCounts counts = EndCounting();
      const bool longRecord = std::string(call.name) == "Output, a long record";
      EXPECT_EQ(longRecord ? 1u : 0u, counts.allocations) << d.name << ", " << call.name;
      EXPECT_EQ(counts.allocations, counts.frees) << d.name << ", " << call.name;
    }
  }
}

TEST(Heap, EveryAllocationOfEveryCallFails) {
  uint64_t failures = 0;
  for (const OrdinaryDevice& d : kOrdinaryDevices) {
    for (const OrdinaryCall& call : OrdinaryCalls()) {
      std::vector<uint8_t> expected;
      uint32_t expectedResult;
      {
        const TestDevice device(d.options);
        expectedResult = call.make(device);
        expected = Painted(device);
      }
      const uint64_t taken = AllocationsOf(call, TestDevice(d.options));
      for (uint64_t failing = 0; failing < taken; ++failing, ++failures) {
        SCOPED_TRACE(std::string(d.name) + ", " + call.name + ", allocation " + std::to_string(failing));
        const uint64_t blocks = Heap().liveBlocks;
        {
          TestDevice device(d.options);
          const std::vector<uint8_t> untouched = Painted(device);
          FailAllocation(failing);
          BeginCounting();
          const uint32_t result = call.make(device) & 0xFFFF;
          EndCounting();
          FailAllocation(kNoFailure);
          const std::vector<uint8_t> after = Painted(device);
          if (std::string(call.name) == "Output, a long record") {
            // It paints nothing, the record behind it all the same.
            EXPECT_EQ(1u, result);
            EXPECT_NE(untouched, after);
            EXPECT_NE(expected, after);
          } else if (result == 0) {
            EXPECT_EQ(untouched, after);
          } else {
            EXPECT_EQ(expectedResult & 0xFFFF, result);  // it did without
            EXPECT_EQ(expected, after);
          }
          EXPECT_TRUE(device.FencesIntact());
          Repaint(device);
          EXPECT_EQ(expectedResult, call.make(device));
          EXPECT_EQ(expected, Painted(device));
          for (const OrdinaryCall& other : OrdinaryCalls()) other.make(device);
        }
        EXPECT_EQ(blocks, Heap().liveBlocks);
      }
    }
  }
  EXPECT_GT(failures, 60u);
}

struct Made {
  const char* name;
  uint16_t kind, bitsPerPixel;
  bool tags;
};

constexpr Made kMade[] = {{"24 bits", QNV_KIND_RASTER, 24, false},
                          {"8 bits", QNV_KIND_RASTER, 8, false},
                          {"two planes", QNV_KIND_RASTER, 24, true},
                          {"resolution mapping", QNV_KIND_SCALED, 24, false}};

TEST(Heap, EveryAllocationOfEnableFails) {
  uint8_t band[64] = {}, tags[64] = {};
  const BandRect rect{0, 0, 4, 4};
  for (const Made& made : kMade) {
    const DeviceDescription description{made.kind, made.bitsPerPixel, 720, 4, 4, 360};
    BeginCounting();
    QNVDisable(QNVEnable(&description, &rect, band, made.tags ? tags : nullptr));
    const HeapCounts whole = EndCounting();
    EXPECT_EQ(whole.allocations, whole.frees) << made.name;
    EXPECT_GE(whole.allocations, 3u) << made.name;
    for (uint64_t failing = 0; failing < whole.allocations; ++failing) {
      const uint64_t blocks = Heap().liveBlocks;
      FailAllocation(failing);
      BeginCounting();
      EXPECT_EQ(nullptr, QNVEnable(&description, &rect, band, made.tags ? tags : nullptr)) << made.name << failing;
      EndCounting();
      FailAllocation(kNoFailure);
      EXPECT_EQ(blocks, Heap().liveBlocks) << made.name << ", allocation " << failing;
    }
  }
}

// The size of a device needs no memory of its own.
TEST(Heap, DeviceInfoWithoutMemory) {
  for (uint16_t kind : {uint16_t{QNV_KIND_SCALED}, uint16_t{QNV_KIND_RASTER}, uint16_t{QNV_KIND_DUAL_PLANE}}) {
    const DeviceDescription description{kind, 24, 720, 1000, 400, 360};
    const uint64_t blocks = Heap().liveBlocks;
    FailAllocation(0);
    BeginCounting();
    DeviceSize size{};
    EXPECT_EQ(8u, QNVGetDeviceInfo(&description, &size));
    EndCounting();
    FailAllocation(kNoFailure);
    EXPECT_EQ(500u, size.width);
    EXPECT_EQ(200u, size.height);
    EXPECT_EQ(blocks, Heap().liveBlocks);
  }
}

// The work memory of images never follows a page: pictures of every depth and size over pages of millions of pixels.
TEST(Heap, WorkMemoryOfImagesIsBounded) {
  constexpr uint32_t kColumns = 200;
  for (const OrdinaryDevice& d : kOrdinaryDevices) {
    for (uint16_t ratio : {uint16_t{1}, uint16_t{300}, uint16_t{65535}}) {
      DeviceOptions options = d.options;
      options.width = kColumns;
      options.resolutionA = ratio;
      options.resolutionB = 1;
      const uint64_t before = Heap().liveBytes;
      const TestDevice device(options);
      const std::vector<uint8_t> bits(std::size_t{4} * 32767 * 3, 0x21);
      const DRAWMODE mode = MakeDrawMode();
      for (uint16_t bitCount : {uint16_t{1}, uint16_t{8}, uint16_t{24}, uint16_t{32}}) {
        std::vector<uint8_t> info = DibInfo(32767, 3, {.bitCount = bitCount});
        info.resize(40 + 1024, 0x31);
        for (int32_t width : {32767, 65535, 1 << 20, std::numeric_limits<int32_t>::max(), -65535}) {
          for (uint32_t rop : {uint32_t{SRCCOPY}, uint32_t{SRCINVERT}}) {
            QNVStretchDIBits(device.handle(), 0, width < 0 ? -width : 0, 0, width, 30000, 0, 0, 32767, 3, bits.data(),
                             info.data(), nullptr, rop, nullptr, &mode, &kEverywhere);
          }
        }
      }
      // Run lengths keep the beginning of every row.
      const std::vector<uint8_t> rows(260 + 2 * 32767 + 2 * 32767, 0);
      std::vector<uint8_t> info = DibInfo(32767, 32767, {.bitCount = 8, .compression = BI_RLE8});
      info.resize(40 + 1024, 0x31);
      QNVStretchDIBits(device.handle(), 0, 0, 0, 65535, 30000, 0, 0, 32767, 32767, rows.data(), info.data(), nullptr,
                       SRCCOPY, nullptr, &mode, &kEverywhere);
      const uint64_t tables = options.kind == QNV_KIND_SCALED ? 4u * (ratio + 1u + 1u) : 0;
      EXPECT_LT(Heap().liveBytes - before, (3u << 20) + 32 * kColumns + tables) << d.name << ", " << ratio << " to 1";
    }
  }
}

TEST(Heap, AMillionDevices) {
#if defined(__SANITIZE_ADDRESS__)
  constexpr int kRounds = 20000;
#else
  constexpr int kRounds = 250000;
#endif
  uint8_t band[64] = {}, tags[64] = {};
  const BandRect rect{0, 0, 4, 4};
  const HeapCounts before = Heap();
  for (int round = 0; round < kRounds; ++round) {
    for (const Made& made : kMade) {
      const DeviceDescription description{made.kind, made.bitsPerPixel, 72, 4, 4, 36};
      DeviceHandle* handle = QNVEnable(&description, &rect, band, made.tags ? tags : nullptr);
      ASSERT_NE(nullptr, handle);
      QNVDisable(handle);
    }
  }
  EXPECT_EQ(before.liveBlocks, Heap().liveBlocks);
  EXPECT_EQ(before.liveBytes, Heap().liveBytes);
}

}  // namespace
}  // namespace qnv::test
