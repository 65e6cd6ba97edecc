// Rows of a pattern, laid out for kernels.
#include "raster/rows/tile.h"

#include <gtest/gtest.h>

namespace qnv {
namespace {

TEST(Tile, RepeatsItsCells) {
  uint32_t cells[16];
  for (uint32_t i = 0; i < 16; ++i) cells[i] = 0xAA000000 | i * 0x030201;
  for (const std::size_t bytesPerPixel : {1u, 3u}) {
    for (const std::size_t width : {1u, 8u, 16u}) {
      Tile tile;
      MakeTile(&tile, cells, width, bytesPerPixel);
      for (std::size_t i = 0; i < sizeof tile.bytes; ++i) {
        const uint32_t cell = cells[i / bytesPerPixel % width];
        ASSERT_EQ(tile.bytes[i], static_cast<uint8_t>(cell >> i % bytesPerPixel * 8))
            << "byte " << i << ", " << width << " cells of " << bytesPerPixel;
      }
    }
  }
}

}  // namespace
}  // namespace qnv
