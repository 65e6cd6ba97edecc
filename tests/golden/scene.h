// Small scenes that a person can look at, each painted through the exported functions.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "golden/picture_file.h"
#include "image/dib_builder.h"
#include "support/test_device.h"
#include "text/font_builder.h"

namespace qnv::test {

// Each picture has the name of its file, without suffix.
struct PaintedScene {
  const char* name;
  std::vector<PlaneImage> (*paint)();
};

inline void PrintTo(const PaintedScene& scene, std::ostream* out) { *out << scene.name; }

std::vector<PaintedScene> AllScenes();
std::vector<PaintedScene> FigureScenes();
std::vector<PaintedScene> TextScenes();
std::vector<PaintedScene> ImageScenes();
std::vector<PaintedScene> DeviceScenes();

// ---- What the scenes share -------------------------------------------------------------------------------------

// A device whose band is white paper.
template <class Device>
struct Cleared : Device {
  explicit Cleared(const DeviceOptions& options) : Device(options) { this->Clear(); }
};

PlaneImage BandPicture(const char* name, const TestDevice& device);
// Tags 0, 1 and 3 as gray levels 0, 85 and 255.
PlaneImage TagPicture(const char* name, const TestDevice& device);

// Capitals, digits and space, 7 rows high in cells of 9, each font pixel `scale` (1 or 2) wide and high.
void DrawLetters(const TestDevice& device, int32_t x, int32_t y, std::string_view text, int scale, DRAWMODE mode,
                 const TextSetup& setup = {});
void Caption(const TestDevice& device, int32_t x, int32_t y, std::string_view text, uint32_t color = 0);
void FillRectangle(const TestDevice& device, const BandRect& rect, uint32_t color);
void FillRectangle(const TestDevice& device, const BandRect& rect, const PhysicalBrush& brush, const DRAWMODE& mode);

// A generated photograph: two gradients, a sun, and a letter F that shows which way is up and right.
inline constexpr int32_t kPhotoWidth = 48;
inline constexpr int32_t kPhotoHeight = 40;
Dib PhotoDib(uint16_t bitCount, bool topDown = false);
// The whole photograph in that rectangle.
inline ImagePlace PhotoAt(int32_t x, int32_t y, int32_t width, int32_t height) {
  return {x, y, width, height, 0, 0, kPhotoWidth, kPhotoHeight};
}

}  // namespace qnv::test
