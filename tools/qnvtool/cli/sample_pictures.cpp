// Computes the sample pictures from noise.
#include "qnvtool/cli/sample_pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "qnvtool/output/bmp_writer.h"

namespace qnv::tool {
namespace {

// Only additions, multiplications, divisions and square roots are used, because their results are the same on every
// machine.

struct Rgb {
  double r = 0;
  double g = 0;
  double b = 0;
};

// From a (t = 0) to b (t = 1).
Rgb Mix(const Rgb& a, const Rgb& b, double t) {
  const double u = std::clamp(t, 0.0, 1.0);
  return {a.r + (b.r - a.r) * u, a.g + (b.g - a.g) * u, a.b + (b.b - a.b) * u};
}

// From 0 at `low` to 1 at `high`, without corners.
double Smooth(double low, double high, double value) {
  const double t = std::clamp((value - low) / (high - low), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

// A random number from 0 to 1 for each point of a grid.
double Lattice(int x, int y, uint32_t seed) {
  uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1u ^ static_cast<uint32_t>(y) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  h = (h ^ h >> 12) * 0x297A2D39u;
  return (h ^ h >> 15) / 4294967296.0;
}

// Smooth noise: the numbers of the grid, interpolated.
double Noise(double x, double y, uint32_t seed) {
  const double fx = std::floor(x);
  const double fy = std::floor(y);
  const int ix = static_cast<int>(fx);
  const int iy = static_cast<int>(fy);
  const double tx = Smooth(0, 1, x - fx);
  const double ty = Smooth(0, 1, y - fy);
  const double top = Lattice(ix, iy, seed) * (1 - tx) + Lattice(ix + 1, iy, seed) * tx;
  const double bottom = Lattice(ix, iy + 1, seed) * (1 - tx) + Lattice(ix + 1, iy + 1, seed) * tx;
  return top * (1 - ty) + bottom * ty;
}

// Noise at several scales, about 0.5 on average.
double Clouds(double x, double y, uint32_t seed, int octaves) {
  double sum = 0;
  double weight = 0.5;
  for (int i = 0; i < octaves; ++i) {
    sum += weight * Noise(x, y, seed + static_cast<uint32_t>(i));
    weight /= 2;
    x *= 2;
    y *= 2;
  }
  return sum;
}

constexpr double kShore = 0.62;  // height of the water line, as part of the picture

// The sky with the sun and clouds.
Rgb Sky(double x, double y) {
  const Rgb zenith{38, 66, 122};
  const Rgb middle{178, 128, 140};
  const Rgb horizon{255, 196, 120};
  Rgb sky = Mix(zenith, middle, y / 0.38);
  sky = Mix(sky, horizon, Smooth(0.25, 0.6, y));
  const double dx = x - 0.98;
  const double dy = y - 0.27;
  const double distance = std::sqrt(dx * dx + dy * dy);
  sky = Mix(sky, {255, 236, 190}, 0.8 / (1 + 45 * distance * distance));
  sky = Mix(sky, {255, 250, 230}, 1 - Smooth(0.035, 0.045, distance));
  const double cloud = Smooth(0.46, 0.72, Clouds(x * 2.2, y * 7, 11, 5));
  return Mix(sky, Mix({250, 214, 190}, {120, 96, 124}, y * 1.4), cloud * 0.75);
}

// Sky and three ranges of mountains. y is 0 at the top of the picture and 1 at the bottom; x runs from 0 to the
// picture's aspect ratio.
Rgb Land(double x, double y) {
  Rgb color = Sky(x, y);
  struct Range {
    double base, height, scale;
    uint32_t seed;
    Rgb lit, dark;
  };
  static const Range kRanges[] = {{0.46, 0.26, 2.6, 101, {150, 122, 150}, {96, 84, 128}},
                                  {0.55, 0.22, 3.4, 202, {118, 92, 96}, {58, 56, 84}},
                                  {0.62, 0.13, 6.0, 303, {62, 74, 52}, {24, 34, 38}}};
  for (const Range& range : kRanges) {
    const double ridge = range.base - range.height * (Clouds(x * range.scale, 0.5, range.seed, 6) - 0.25);
    if (y < ridge) continue;
    const auto relief = [&](double u, double v) {
      return Clouds(u * range.scale * 3, v * range.scale * 2, range.seed + 9, 6);
    };
    const double slope = relief(x - 0.004, y + 0.004) - relief(x + 0.004, y - 0.004);  // lit from the upper right
    const double texture = Clouds(x * 28, y * 40, range.seed + 50, 4);
    Rgb rock = Mix(range.dark, range.lit, 0.45 + slope * 7 + (texture - 0.5) * 0.7);
    if (range.seed == 101) rock = Mix(rock, {244, 236, 240}, Smooth(0.1, 0.0, y - ridge) * Smooth(0.4, 0.55, texture));
    color = Mix(color, rock, Smooth(0, 0.003, y - ridge));
  }
  return color;
}

// The whole picture: land, the lake that mirrors it, and the bank.
Rgb Scene(double x, double y) {
  if (y < kShore) return Land(x, y);
  const double depth = (y - kShore) / (1 - kShore);
  const double ripple = Clouds(x * 9, 60 * std::sqrt(depth), 77, 4) - 0.47;
  const double mirrored = kShore - (y - kShore) * 1.15 + ripple * 0.05 * (0.3 + depth);
  Rgb water = Mix(Land(x + ripple * 0.02, std::clamp(mirrored, 0.0, kShore)), {22, 40, 66}, 0.25 + depth * 0.4);
  water = Mix(water, {255, 238, 205}, Smooth(0.2, 0.34, ripple) * 0.5);
  const double bank = 1.02 - 0.14 * Clouds(x * 3, 0.5, 404, 5) - 0.1 * Smooth(0.9, 0.0, x);
  if (y < bank) return water;
  const double grass = Clouds(x * 140, y * 50, 505, 3);
  return Mix({20, 26, 14}, {126, 118, 48}, grass * grass * 1.8);
}

// Rounded and limited to a byte.
uint8_t Byte(double value) { return static_cast<uint8_t>(std::clamp(std::floor(value + 0.5), 0.0, 255.0)); }

}  // namespace

Bytes MakeSamplePhoto(int width, int height) {
  std::vector<uint8_t> pixels;
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const double grain = (Lattice(column, row, 9) - 0.5) * 5;
      const Rgb color = Scene((column + 0.5) / height, (row + 0.5) / height);
      pixels.insert(pixels.end(), {Byte(color.b + grain), Byte(color.g + grain), Byte(color.r + grain)});
    }
  }
  return EncodeBmp24(width, height, 150, pixels);
}

// Heights from noise, in 30 colors, with contour lines and a grid in two more.
Bytes MakeSampleMap(int width, int height) {
  constexpr int kLevels = 30;
  constexpr uint8_t kContour = 30;
  constexpr uint8_t kGrid = 31;
  const Rgb stops[] = {{24, 62, 112}, {96, 160, 200}, {120, 168, 96}, {206, 196, 122}, {158, 112, 72}, {244, 240, 236}};
  std::vector<uint32_t> palette;
  for (int level = 0; level < kLevels; ++level) {
    const double place = level * 5.0 / (kLevels - 1);
    const int stop = std::min(static_cast<int>(place), 4);
    const Rgb color = Mix(stops[stop], stops[stop + 1], place - stop);
    palette.push_back(uint32_t{Byte(color.r)} << 16 | uint32_t{Byte(color.g)} << 8 | Byte(color.b));
  }
  palette.push_back(0x4A3826);
  palette.push_back(0x7A8288);
  const auto level = [&](int column, int row) {
    const double land = Clouds(column * 5.0 / height, row * 5.0 / height, 21, 6);
    return std::clamp(static_cast<int>((land - 0.22) / 0.56 * kLevels), 0, kLevels - 1);
  };
  std::vector<uint8_t> indices;
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const int here = level(column, row);
      const bool contour = here / 3 != level(column + 1, row) / 3 || here / 3 != level(column, row + 1) / 3;
      const bool grid = column % 64 == 0 || row % 64 == 0;
      indices.push_back(grid ? kGrid : contour ? kContour : static_cast<uint8_t>(here));
    }
  }
  return EncodeBmpRle8(width, height, 150, indices, palette);
}

}  // namespace qnv::tool
