// Computes size and place of an image on its page.
#include "qnvtool/layout/picture_layout.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

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
  const double across = body.width() / natural.width, down = body.height() / natural.height;
  const double factor = scale.mode == PictureScale::Mode::kFactor ? scale.factor * dpi / 0.0254
                        : scale.mode == PictureScale::Mode::kFill ? std::max(across, down)
                                                                  : std::min(across, down);
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

Alignment ParseAlignment(const std::string& text) {
  Alignment alignment;
  const std::size_t dash = text.find('-');
  const std::string_view first = std::string_view(text).substr(0, dash);
  const std::string_view second = dash == std::string::npos ? first : std::string_view(text).substr(dash + 1);
  if (first == "top" || first == "bottom") alignment.y = first == "top" ? 0 : 1;
  if (second == "left" || second == "right") alignment.x = second == "left" ? 0 : 1;
  const bool vertical = alignment.y != 0.5, horizontal = alignment.x != 0.5;
  if (text != "center" && (dash == std::string::npos ? !vertical && !horizontal : !vertical || !horizontal)) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("--align {}: use center, top, bottom, left, right, top-left, top-right, bottom-left or "
                                "bottom-right",
                                text));
  }
  return alignment;
}

Page LayOutPicture(PicturePtr picture, const PictureStyle& style, const PageSetup& setup, const std::string& name,
                   int number, const NoteSink& note) {
  const Rect body = BodyOf(setup);
  const Size size = PageSize(*picture, style.scale, body, setup.sheet.dpi);
  if (size.width > kMaxSide || size.height > kMaxSide) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: would be {:.0f} x {:.0f} pixels large; use a smaller --scale",
                                                  name, size.width, size.height));
  }
  const int width = std::max(1, static_cast<int>(std::lround(size.width)));
  const int height = std::max(1, static_cast<int>(std::lround(size.height)));
  if (style.scale.mode != PictureScale::Mode::kFill && (width > body.width() || height > body.height())) {
    const auto percent = [](int whole, int shown) { return 100.0 * std::min(shown, whole) / whole; };
    note(
        fmt::format("the picture is cropped: {:.0f} % of its width and {:.0f} % of its height fit on the page; --fit "
                    "shows all of it",
                    percent(width, body.width()), percent(height, body.height())));
  }
  const int left = body.left + static_cast<int>((body.width() - width) * style.alignment.x);
  const int top = body.top + static_cast<int>((body.height() - height) * style.alignment.y);
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
