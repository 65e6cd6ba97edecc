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
Size NaturalSize(const Dib& dib) {
  const bool x = dib.xPixelsPerMetre > 0;
  const bool y = dib.yPixelsPerMetre > 0;
  const double fallback = x ? dib.xPixelsPerMetre : y ? dib.yPixelsPerMetre : kDefaultPixelsPerMetre;
  return {dib.width / (x ? dib.xPixelsPerMetre : fallback), dib.height / (y ? dib.yPixelsPerMetre : fallback)};
}

// The size of the picture on the page, in pixels.
Size PageSize(const Dib& dib, const PictureScale& scale, const Rect& body, int dpi) {
  if (scale.mode == PictureScale::Mode::kPixels)
    return {static_cast<double>(dib.width), static_cast<double>(dib.height)};
  const Size natural = NaturalSize(dib);
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

double PictureAspect(const Dib& dib) {
  const Size natural = NaturalSize(dib);
  return natural.height / natural.width;
}

Page LayOutPicture(std::shared_ptr<const Dib> dib, const PictureScale& scale, const PageSetup& setup,
                   const std::string& name) {
  const Rect body = BodyOf(setup);
  const Size size = PageSize(*dib, scale, body, setup.sheet.dpi);
  if (size.width > kMaxSide || size.height > kMaxSide) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: would be {:.0f} x {:.0f} pixels large; use a smaller --scale",
                                                  name, size.width, size.height));
  }
  const int width = std::max(1, static_cast<int>(std::lround(size.width)));
  const int height = std::max(1, static_cast<int>(std::lround(size.height)));
  const int left = body.left + (body.width() - width) / 2;
  const int top = body.top + (body.height() - height) / 2;
  Page page = EmptyPage(setup);
  AddHeader(page, setup, name, 1);
  Picture picture;
  picture.dib = std::move(dib);
  picture.name = name;
  picture.place = {left, top, left + width, top + height};
  picture.clip = body;
  page.items.emplace_back(std::move(picture));
  return page;
}

}  // namespace qnv::tool
