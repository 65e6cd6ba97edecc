// Parses the value of --device.
#include "qnvtool/paint/device_choice.h"

#include <fmt/core.h>

#include <cstdio>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

constexpr int kDefaultDpi = 300;

// Throws ToolError when a resolution cannot be used.
void CheckDpi(const std::string& option, int dpi) {
  if (dpi >= kMinDpi && dpi <= kMaxDpi) return;
  throw ToolError(ExitCode::kUsage,
                  fmt::format("{}: {} dots per inch; {} to {} can be used", option, dpi, kMinDpi, kMaxDpi));
}

}  // namespace

DeviceChoice ParseDevice(const std::string& text, int dpi) {
  using Kind = DeviceChoice::Kind;
  DeviceChoice choice;
  choice.name = text;
  choice.pageDpi = choice.bandDpi = dpi == 0 ? kDefaultDpi : dpi;
  if (text == "color" || text == "colour" || text == "gray" || text == "grey" || text == "dual") {
    CheckDpi("--dpi", choice.pageDpi);
    choice.kind = text == "dual" ? Kind::kDual : text[0] == 'g' ? Kind::kGray : Kind::kColor;
    return choice;
  }
  const std::size_t colon = text.find(':');
  const std::string family = text.substr(0, colon);
  int end = 0;
  if (colon == std::string::npos || (family != "scaled" && family != "scaled-gray") ||
      std::sscanf(text.c_str() + colon, ":%5d/%5d%n", &choice.pageDpi, &choice.bandDpi, &end) != 2 ||
      colon + static_cast<std::size_t>(end) != text.size()) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("--device {}: use color, gray, dual, scaled:A/B or scaled-gray:A/B", text));
  }
  choice.kind = family == "scaled" ? Kind::kScaled : Kind::kScaledGray;
  CheckDpi("--device " + text, choice.pageDpi);
  CheckDpi("--device " + text, choice.bandDpi);
  if (dpi != 0 && dpi != choice.pageDpi) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("--dpi {} contradicts --device {}, which draws at {}", dpi, text, choice.pageDpi));
  }
  return choice;
}

}  // namespace qnv::tool
