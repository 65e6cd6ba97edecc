// Computes size and place of an image on its page.
#include "qnvtool/layout/picture_layout.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

constexpr double kDefaultPixelsPerMetre = 72 / 0.0254;

struct Size {
  double width = 0;
  double height = 0;
};

// The size of the picture in metres, from its resolution.
Size NaturalSize(const PictureFile& picture) {
  const bool x = picture.xPixelsPerMetre() > 0;
  const bool y = picture.yPixelsPerMetre() > 0;
  const double fallback = x ? picture.xPixelsPerMetre() : y ? picture.yPixelsPerMetre() : kDefaultPixelsPerMetre;
  return {picture.width() / (x ? picture.xPixelsPerMetre() : fallback),
          picture.height() / (y ? picture.yPixelsPerMetre() : fallback)};
}

// The size of the picture on the page, in pixels.
Size PageSize(const PictureFile& picture, const PictureScale& scale, const Rect& body, int dpi) {
  if (scale.mode == PictureScale::Mode::kPixels)
    return {static_cast<double>(picture.width()), static_cast<double>(picture.height())};
  const Size natural = NaturalSize(picture);
  const double factor = scale.mode == PictureScale::Mode::kFactor
                            ? scale.factor * dpi / 0.0254
                            : std::min(body.width() / natural.width, body.height() / natural.height);
  return {natural.width * factor, natural.height * factor};
}

}  // namespace

PictureScale ParseScale(const std::string& text) {
  if (text == "pixels") return {PictureScale::Mode::kPixels, 1};
  char* end = nullptr;
  const double factor = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(factor > 0) || factor > 1000) {
    throw ToolError(ExitCode::kUsage, fmt::format("--scale {}: use \"pixels\" or a factor above 0, up to 1000", text));
  }
  return {PictureScale::Mode::kFactor, factor};
}

double PictureAspect(const PictureFile& picture) {
  const Size natural = NaturalSize(picture);
  return natural.height / natural.width;
}

Page LayOutPicture(PicturePtr picture, const PictureScale& scale, const PageSetup& setup, const std::string& name,
                   int number) {
  const Rect body = BodyOf(setup);
  const Size size = PageSize(*picture, scale, body, setup.sheet.dpi);
  if (size.width > kMaxSide || size.height > kMaxSide) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: would be {:.0f} x {:.0f} pixels large; use a smaller --scale",
                                                  name, size.width, size.height));
  }
  const int width = std::max(1, static_cast<int>(std::lround(size.width)));
  const int height = std::max(1, static_cast<int>(std::lround(size.height)));
  const int left = body.left + (body.width() - width) / 2;
  const int top = body.top + (body.height() - height) / 2;
  Page page = EmptyPage(setup);
  AddHeader(page, setup, name, number);
  Picture item;
  item.file = std::move(picture);
  item.name = name;
  item.place = {left, top, left + width, top + height};
  item.clip = body;
  page.items.emplace_back(std::move(item));
  return page;
}

}  // namespace qnv::tool
