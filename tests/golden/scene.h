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

// A picture of a scene; the name is that of its file, without suffix.
struct ScenePicture {
  std::string name;
  Picture picture;
};

struct PaintedScene {
  const char* name;
  std::vector<ScenePicture> (*paint)();
};

inline void PrintTo(const PaintedScene& scene, std::ostream* out) { *out << scene.name; }

const std::vector<PaintedScene>& AllScenes();

std::vector<ScenePicture> PaintHatchesAndPatterns();
std::vector<ScenePicture> PaintRop2Bars();
std::vector<ScenePicture> PaintSpanEncodings();
std::vector<ScenePicture> PaintTextModes();
std::vector<ScenePicture> PaintTextOnGray();
std::vector<ScenePicture> PaintImageDepths();
std::vector<ScenePicture> PaintImageScales();
std::vector<ScenePicture> PaintImagesOnGray();
std::vector<ScenePicture> PaintRunLengthImages();
std::vector<ScenePicture> PaintTransfers();
std::vector<ScenePicture> PaintMappedPages();
std::vector<ScenePicture> PaintDualPlanePage();

// ---- What the scenes share -------------------------------------------------------------------------------------

Picture BandPicture(const TestDevice& device);
// Tags 0, 1 and 3 as gray levels 0, 85 and 255.
Picture TagPicture(const TestDevice& device);

// Capitals, digits and space, 7 rows high in cells of 9, each font pixel `scale` wide and high.
const Font& LetterFont(int scale);

void Caption(const TestDevice& device, int32_t x, int32_t y, std::string_view text, uint32_t color = 0);
void FillRectangle(const TestDevice& device, const BandRect& rect, uint32_t color);
void FillRectangle(const TestDevice& device, const BandRect& rect, const PhysicalBrush& brush, const DRAWMODE& mode);

// A generated photograph: two gradients, a sun, and a letter F that shows which way is up and right.
inline constexpr int32_t kPhotoWidth = 48;
inline constexpr int32_t kPhotoHeight = 40;
Dib PhotoDib(uint16_t bitCount, bool topDown = false);

}  // namespace qnv::test
