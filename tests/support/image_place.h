// Where an image is taken from and where it goes.
#pragma once

#include <cstdint>

namespace qnv::test {

struct ImagePlace {
  int32_t dstX = 0;  // page coordinates
  int32_t dstY = 0;
  int32_t dstWidth = 0;
  int32_t dstHeight = 0;
  int32_t srcX = 0;
  int32_t srcY = 0;
  int32_t srcWidth = 0;
  int32_t srcHeight = 0;
};

}  // namespace qnv::test
