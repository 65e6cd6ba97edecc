// Sets figure files: each instruction becomes an item of the current page.
#include "qnvtool/layout/figures.h"

#include <fmt/core.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>

#include "qnvdrv10.h"
#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/base/utf8.h"
#include "qnvtool/layout/figure_line.h"
#include "qnvtool/layout/picture_layout.h"
#include "qnvtool/layout/text_lines.h"

namespace qnv::tool {
namespace {

const std::map<std::string, int16_t> kRop2Names{
    {"copy", R2_COPYPEN}, {"xor", R2_XORPEN}, {"and", R2_MASKPEN}, {"or", R2_MERGEPEN}, {"not", R2_NOT}};

const std::map<std::string, uint32_t> kRop3Names{{"copy", SRCCOPY},   {"and", SRCAND},         {"or", SRCPAINT},
                                                 {"xor", SRCINVERT},  {"notcopy", NOTSRCCOPY}, {"erase", SRCERASE},
                                                 {"min", ROP_MINIMUM}};

// The operation that an option names.
template <class Names>
auto Named(const Names& names, const std::string& name, const char* option, const FigureLine& line) {
  const auto found = names.find(name);
  if (found == names.end()) line.Fail(fmt::format("{}: \"{}\" is no operation", option, name));
  return found->second;
}

// Collects the pages of one file.
class FigureSetter {
 public:
  FigureSetter(const PageSetup& setup, const std::string& path, const OpenFigureImage& openImage)
      : setup_(setup), path_(path), openImage_(openImage) {
    pages_.push_back(EmptyPage(setup));
  }

  void Set(const FigureLine& line) {
    const std::string& verb = line.verb();
    if (verb == "page") {
      line.Expect(0, {});
      pages_.push_back(EmptyPage(setup_));
    } else if (verb == "rect" || verb == "ellipse") {
      Box(line);
    } else if (verb == "polygon" || verb == "path") {
      Points(line);
    } else if (verb == "image") {
      Image(line);
    } else if (verb == "text") {
      Text(line);
    } else {
      line.Fail(fmt::format("\"{}\" is no instruction (page, rect, ellipse, polygon, path, image, text are)", verb));
    }
  }

  std::vector<Page> Take() { return std::move(pages_); }

 private:
  // Millimetres to pixels of the page.
  double Px(double mm) const { return mm * setup_.sheet.dpi / 25.4; }
  int RoundPx(double mm) const { return static_cast<int>(std::lround(Px(mm))); }

  // Adds a figure, cut to the page.
  void Add(const SpanRegion& region, const Fill& fill, const FigureLine& line) {
    Figure figure;
    figure.region = Clip(region, {0, 0, setup_.sheet.width, setup_.sheet.height});
    figure.fill = fill;
    figure.rop2 = Named(kRop2Names, line.Option("rop2", "copy"), "rop2", line);
    if (!figure.region.empty()) pages_.back().items.emplace_back(std::move(figure));
  }

  // A figure with neither fill nor line is filled black.
  std::optional<Fill> FillOf(const FigureLine& line) const {
    const std::string fill = line.Option("fill", "");
    if (!fill.empty()) return ParseFill(fill, line);
    if (!line.Option("line", "").empty()) return std::nullopt;
    return Fill{};
  }

  static Fill PenOf(const LineStyle& style) {
    Fill fill;
    fill.kind = Fill::Kind::kPen;
    fill.color = style.color;
    return fill;
  }

  // rect and ellipse: the outline is the difference of a larger and a smaller figure.
  void Box(const FigureLine& line) {
    line.Expect(4, {"fill", "line", "rop2"});
    const double x = Px(line.Number(0, "X"));
    const double y = Px(line.Number(1, "Y"));
    const double right = x + Px(line.Number(2, "W"));
    const double bottom = y + Px(line.Number(3, "H"));
    const bool rect = line.verb() == "rect";
    const auto region = rect ? RectRegion : EllipseRegion;
    if (const auto fill = FillOf(line)) Add(region(x, y, right, bottom), *fill, line);
    const std::string style = line.Option("line", "");
    if (style.empty()) return;
    const LineStyle pen = ParseLineStyle(style, line);
    const double half = std::max(Px(pen.widthMm), 1.0) / 2;
    Add(Subtract(region(x - half, y - half, right + half, bottom + half),
                 region(x + half, y + half, right - half, bottom - half)),
        PenOf(pen), line);
  }

  // polygon and path.
  void Points(const FigureLine& line) {
    const bool closed = line.verb() == "polygon";
    if (closed) {
      line.ExpectOptions({"fill", "line", "rop2"});
    } else {
      line.ExpectOptions({"line", "rop2"});
    }
    const std::size_t least = closed ? 3 : 2;
    if (line.count() < least) line.Fail(fmt::format("{}: needs {} points", line.verb(), least));
    std::vector<Point> points;
    for (std::size_t i = 0; i < line.count(); ++i) {
      const Point mm = line.PointAt(i);
      points.push_back({Px(mm.x), Px(mm.y)});
    }
    if (closed) {
      if (const auto fill = FillOf(line)) Add(PolygonRegion(points), *fill, line);
    }
    const std::string style = line.Option("line", closed ? "" : "#000000:0.2");
    if (style.empty()) return;
    const LineStyle pen = ParseLineStyle(style, line);
    Add(StrokeRegion(points, Px(pen.widthMm), closed), PenOf(pen), line);
  }

  PicturePtr Open(const std::string& file, const FigureLine& line) const {
    try {
      return openImage_(file);
    } catch (const ToolError& error) {
      if (error.code() != ExitCode::kBadInput) throw;
      line.Fail(fmt::format("image: {}", error.what()));
    }
  }

  // image: a file is read once, however often it is shown.
  void Image(const FigureLine& line) {
    line.Expect(5, {"rop"});
    const std::string file = FileNameOf(PathOf(path_).parent_path() / PathOf(line.Word(0, "FILE")));
    PicturePtr& image = images_[file];
    if (image == nullptr) image = Open(file, line);
    const bool freeWidth = line.Word(3, "W") == "-";
    const bool freeHeight = line.Word(4, "H") == "-";
    if (freeWidth && freeHeight) line.Fail("image: only one of W and H can be left open");
    const double height = freeHeight ? line.Number(3, "W") * PictureAspect(*image) : line.Number(4, "H");
    const double width = freeWidth ? height / PictureAspect(*image) : line.Number(3, "W");
    if (!(width > 0 && width <= 2000) || !(height > 0 && height <= 2000)) {
      line.Fail(
          fmt::format("image: would have {:.1f} x {:.1f} mm; each side must be above 0, up to 2000", width, height));
    }
    const int left = RoundPx(line.Number(1, "X"));
    const int top = RoundPx(line.Number(2, "Y"));
    Picture picture;
    picture.file = image;
    picture.name = file;
    picture.place = {left, top, left + std::max(1, RoundPx(width)), top + std::max(1, RoundPx(height))};
    if (picture.place.width() > 32767 || picture.place.height() > 32767) line.Fail("image: has too many pixels");
    picture.clip = {0, 0, setup_.sheet.width, setup_.sheet.height};
    picture.rop = Named(kRop3Names, line.Option("rop", "copy"), "rop", line);
    pages_.back().items.emplace_back(std::move(picture));
  }

  // text: one line, or a justified paragraph when a width is given.
  void Text(const FigureLine& line) {
    line.Expect(4, {"font", "color", "width"});
    const double points = line.Number(2, "POINTS");
    if (points < 2 || points > 500) line.Fail(fmt::format("text: {} points; 2 to 500 can be set", points));
    const std::map<std::string, FontRole> roles{
        {"body", FontRole::kBody}, {"heading", FontRole::kHeading}, {"listing", FontRole::kListing}};
    const auto role = roles.find(line.Option("font", "body"));
    if (role == roles.end()) line.Fail("font: is none of body, heading, listing");
    const Color color = ParseColor(line.Option("color", "#000000"), line);
    const std::string& bytes = line.Word(3, "TEXT");
    const std::u32string text = DecodeTextFile(Bytes(bytes.begin(), bytes.end()), path_);
    const std::shared_ptr<Font> font = setup_.fonts->Get(role->second, points);
    const int left = RoundPx(line.Number(0, "X"));
    int baseline = RoundPx(line.Number(1, "Y"));
    const int width = RoundPx(line.NumberOption("width", 0));
    const auto add = [&](TextLine set) {
      set.color = color;
      pages_.back().items.emplace_back(std::move(set));
    };
    if (width <= 0) return add(MakeLine(text, *font, left, baseline));
    const Paragraph paragraph(text, *font, width);
    for (std::size_t i = 0; i < paragraph.lines(); ++i) {
      add(paragraph.Line(i, left, baseline, true));
      baseline += font->lineHeight();
    }
  }

  const PageSetup& setup_;
  const std::string& path_;
  const OpenFigureImage& openImage_;
  std::vector<Page> pages_;
  std::map<std::string, PicturePtr> images_;
};

}  // namespace

std::vector<Page> LayOutFigures(const Bytes& file, const PageSetup& setup, const std::string& path,
                                const OpenFigureImage& openImage) {
  DecodeTextFile(file, path);  // only for its check that this is text
  FigureSetter setter(setup, path, openImage);
  std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  int number = 0;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string one(text.substr(begin, end - begin));
    ++number;
    begin = end + 1;
    if (one.find_first_not_of(" \t\r") == std::string::npos || one[one.find_first_not_of(" \t")] == '#') continue;
    setter.Set(FigureLine(one, fmt::format("{}:{}", path, number)));
  }
  return setter.Take();
}

}  // namespace qnv::tool
