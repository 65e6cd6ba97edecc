// Pairs of resolutions, and the map that a device makes of one.
#pragma once

#include <gtest/gtest.h>

#include <ostream>

#include "raster/coordinate_map.h"

namespace qnv::test {

struct Resolutions {
  uint16_t a, b;  // of the page, of the band
};

inline std::ostream& operator<<(std::ostream& out, const Resolutions& r) { return out << r.a << ":" << r.b; }

inline constexpr Resolutions kResolutions[] = {{720, 360}, {600, 400}, {360, 720}, {360, 360}, {1200, 361},
                                               {300, 72},  {72, 300},  {7, 3},     {3, 7},     {1, 1},
                                               {10, 1},    {1, 5},     {5, 1},     {100, 99},  {360, 1440}};

struct BuiltMap : CoordinateMap {
  explicit BuiltMap(const Resolutions& r) {
    SetResolutions(r.a, r.b);
    EXPECT_TRUE(Build());
  }
};

}  // namespace qnv::test
