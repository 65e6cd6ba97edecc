// Parses paper sizes and computes the sheet in pixels.
#include "qnvtool/layout/paper.h"

#include <fmt/core.h>

#include <cctype>
#include <cmath>
#include <optional>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/layout/paper_names.h"

namespace qnv::tool {
namespace {

// ASCII letters in lower case.
std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

Paper ParsePaper(const std::string& text) {
  const std::string name = Lower(text);
  const std::optional<Paper> named = PaperOfName(name);
  const std::optional<Paper> paper = named ? named : PaperOfSize(name);
  if (!paper) {
    throw ToolError(
        ExitCode::kUsage,
        fmt::format("--paper {}: use a name such as a4, letter or jis_b5, or a size in mm or in, for example "
                    "100x150mm or 8.5x11in",
                    text));
  }
  const auto inRange = [](double side) { return side >= 5 && side <= 3000; };
  if (!inRange(paper->widthMm) || !inRange(paper->heightMm)) {
    throw ToolError(ExitCode::kUsage, fmt::format("--paper {}: each side must have 5 to 3000 mm", text));
  }
  return *paper;
}

int PixelsFromMm(double mm, int dpi) { return static_cast<int>(std::lround(mm * dpi / 25.4)); }

Sheet MakeSheet(const Paper& paper, int dpi, double marginMm) {
  Sheet sheet;
  sheet.dpi = dpi;
  sheet.width = PixelsFromMm(paper.widthMm, dpi);
  sheet.height = PixelsFromMm(paper.heightMm, dpi);
  if (sheet.width > kMaxSide || sheet.height > kMaxSide) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("the page would have {} x {} pixels; at most {} a side can be painted", sheet.width,
                                sheet.height, kMaxSide));
  }
  const int margin = PixelsFromMm(marginMm, dpi);
  sheet.content = {margin, margin, sheet.width - margin, sheet.height - margin};
  if (sheet.content.empty()) {
    throw ToolError(ExitCode::kUsage, fmt::format("--margin {}: leaves nothing of the paper", marginMm));
  }
  return sheet;
}

}  // namespace qnv::tool
