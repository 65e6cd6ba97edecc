// Headers of bitmaps that would have the library read what the document does not hold: refused before anything is
// painted or tagged.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

struct DeviceCase {
  const char* name;
  DeviceOptions options;
};

const DeviceCase kDevices[] = {
    {"24 bits", {}},
    {"8 bits", {.bitsPerPixel = 8}},
    {"resolution mapping", {.kind = QNV_KIND_SCALED}},
    {"dual plane", {.tagPlane = true}},
};

// One pixel in memory that ends with it, behind a header that is not longer than `infoBytes`.
uint32_t PaintOne(const TestDevice& device, uint16_t bitCount, uint32_t compression, uint32_t headerSize, uint32_t rop,
                  std::size_t infoBytes) {
  std::vector<uint8_t> info = DibInfo(1, 1, {.bitCount = bitCount, .compression = compression});
  for (uint32_t i = 0; i < 4; ++i) info[i] = static_cast<uint8_t>(headerSize >> 8 * i);
  info.resize(infoBytes, 0x11);
  return Stretch(device, Dib(info, std::vector<uint8_t>(4, 0)), {1, 1, 4, 4, 0, 0, 1, 1}, {.rop = rop});
}

std::vector<uint8_t> Painted(const TestDevice& device) {
  std::vector<uint8_t> bytes = device.BandBytes();
  const std::vector<uint8_t> tags = device.TagBytes();
  bytes.insert(bytes.end(), tags.begin(), tags.end());
  return bytes;
}

TEST(DibHeaders, SizesThatPlaceAColorTable) {
  for (const DeviceCase& d : kDevices) {
    for (uint32_t rop : {uint32_t{SRCCOPY}, uint32_t{SRCINVERT}, uint32_t{ROP_MINIMUM}}) {
      for (uint16_t bitCount : {uint16_t{1}, uint16_t{4}, uint16_t{8}}) {
        for (uint32_t size : {0u, 1u, 12u, 39u, 4097u, 0x10000u, 0x10000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
          TestDevice device(d.options);
          const std::vector<uint8_t> before = Painted(device);
          EXPECT_EQ(0u, PaintOne(device, bitCount, BI_RGB, size, rop, 40)) << d.name << ", " << size;
          EXPECT_EQ(before, Painted(device)) << d.name << ", " << size;
        }
        for (uint32_t size : {40u, 41u, 108u, 124u, 4095u, 4096u}) {
          TestDevice device(d.options);
          EXPECT_EQ(1u, PaintOne(device, bitCount, BI_RGB, size, rop, size + (4u << bitCount))) << d.name << size;
          EXPECT_TRUE(device.FencesIntact());
        }
      }
    }
  }
}

// Where no table is read the size says nothing.
TEST(DibHeaders, SizesThatAreNotRead) {
  for (const DeviceCase& d : kDevices) {
    for (uint16_t bitCount : {uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
      for (uint32_t size : {0u, 12u, 0x10000000u, 0xFFFFFFFFu}) {
        TestDevice device(d.options);
        const std::vector<uint8_t> before = Painted(device);
        EXPECT_EQ(1u, PaintOne(device, bitCount, BI_RGB, size, SRCCOPY, 40)) << d.name << ", " << size;
        EXPECT_NE(before, Painted(device)) << d.name << ", " << size;
      }
    }
  }
}

// Data that is no rows of pixels.
TEST(DibHeaders, Compressions) {
  for (const DeviceCase& d : kDevices) {
    for (uint32_t rop : {uint32_t{SRCCOPY}, uint32_t{SRCINVERT}, uint32_t{ROP_MINIMUM}}) {
      for (uint16_t bitCount : {uint16_t{1}, uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        const std::size_t infoBytes = 40 + (bitCount <= 8 ? std::size_t{4} << bitCount : 12u);
        for (uint32_t compression : {4u, 5u, 7u, 8u, 11u, 13u, 0x80000000u, 0xFFFFFFFFu}) {
          TestDevice device(d.options);
          const std::vector<uint8_t> before = Painted(device);
          EXPECT_EQ(0u, PaintOne(device, bitCount, compression, 40, rop, infoBytes)) << d.name << ", " << compression;
          EXPECT_EQ(before, Painted(device)) << d.name << ", " << compression;
        }
        for (uint32_t compression : {0u, 3u, 6u}) {
          TestDevice device(d.options);
          EXPECT_EQ(1u, PaintOne(device, bitCount, compression, 40, rop, infoBytes)) << d.name << ", " << compression;
        }
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
