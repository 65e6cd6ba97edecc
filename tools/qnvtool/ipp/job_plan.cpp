// Looks up every choice in the lists of the printer, and names what it takes when a wish is not among them.
#include "qnvtool/ipp/job_plan.h"

#include <fmt/core.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// In the order in which they are preferred: rasters show exactly the pixels that were made here.
struct Offer {
  const char* format;
  const char* mimeType;
};
constexpr Offer kOffers[] = {{"pwg", "image/pwg-raster"}, {"urf", "image/urf"}, {"pdf", "application/pdf"}};

constexpr int kHighestUsual = 600;  // dots per inch, where the printer names no default
constexpr double kSamePaperMm = 1;

template <class List, class Value>
bool Has(const List& list, const Value& value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

[[noreturn]] void Refuse(const PrinterTraits& printer, const std::string& why) {
  throw ToolError(ExitCode::kUsage, fmt::format("printer {}: {}", printer.name, why));
}

Offer ChooseFormat(const PrinterTraits& printer, const std::string& wish) {
  for (const Offer& offer : kOffers) {
    if ((wish.empty() || wish == offer.format) && Has(printer.formats, offer.mimeType)) return offer;
  }
  const std::string takes = fmt::format("it takes {}", fmt::join(printer.formats, ", "));
  if (wish.empty()) Refuse(printer, "takes neither PWG raster nor Apple raster nor PDF; " + takes);
  if (!std::any_of(std::begin(kOffers), std::end(kOffers), [&](const Offer& offer) { return wish == offer.format; })) {
    Refuse(printer, fmt::format("--format {}: only pwg, urf and pdf are sent to printers", wish));
  }
  Refuse(printer, fmt::format("--format {}: not taken; {}", wish, takes));
}

// The numbers of a capability for Apple raster, "RS300-600".
std::vector<int> UrfResolutions(const std::vector<std::string>& urf) {
  std::vector<int> result;
  for (const std::string& capability : urf) {
    if (capability.rfind("RS", 0) != 0) continue;
    for (std::size_t at = 2; at < capability.size();
         at = std::min(capability.find('-', at), capability.size() - 1) + 1) {
      int dpi = 0;
      if (std::sscanf(capability.c_str() + at, "%5d", &dpi) == 1) result.push_back(dpi);
    }
  }
  return result;
}

// What the printer takes in a format.
struct Colors {
  bool color = false;
  bool gray = false;
};

Colors ColorsOf(const PrinterTraits& printer, const std::string& format) {
  if (format == "pwg" && !printer.pwgTypes.empty()) {
    return {Has(printer.pwgTypes, "srgb_8"), Has(printer.pwgTypes, "sgray_8")};
  }
  if (format == "urf" && !printer.urf.empty()) return {Has(printer.urf, "SRGB24"), Has(printer.urf, "W8")};
  return {printer.color || format == "pdf", true};
}

bool ChooseGray(const PrinterTraits& printer, const std::string& format, const JobWishes& wishes) {
  const Colors colors = ColorsOf(printer, format);
  if (!colors.color && !colors.gray) {
    Refuse(printer, fmt::format("takes neither 8-bit gray nor 24-bit color in {} documents", format));
  }
  if (!wishes.hasDevice) return !colors.gray ? false : !printer.color || !colors.color;
  if (wishes.gray && !colors.gray) Refuse(printer, fmt::format("takes no 8-bit gray in {} documents", format));
  if (!wishes.gray && !colors.color) {
    Refuse(printer, fmt::format("takes no color in {} documents; use --device gray", format));
  }
  return wishes.gray;
}

int ChooseResolution(const PrinterTraits& printer, const std::string& format, int wish) {
  std::vector<int> list = format == "pwg" ? printer.pwgResolutions : UrfResolutions(printer.urf);
  if (format == "pdf") {  // the printer scales the pages as it needs
    if (wish != 0) return wish;
    list = printer.resolutions;
  }
  if (list.empty()) list = printer.resolutions;
  if (list.empty()) return wish != 0 ? wish : printer.defaultResolution != 0 ? printer.defaultResolution : 300;
  std::sort(list.begin(), list.end());
  if (wish != 0) {
    if (Has(list, wish)) return wish;
    Refuse(printer, fmt::format("--dpi {}: not a resolution of the printer in {} documents; it has {}", wish, format,
                                fmt::join(list, ", ")));
  }
  if (Has(list, printer.defaultResolution)) return printer.defaultResolution;
  int best = list.front();
  for (const int dpi : list) {
    if (dpi <= kHighestUsual) best = dpi;
  }
  return best;
}

bool SamePaper(const Medium& a, const Medium& b) {
  return std::abs(a.widthMm - b.widthMm) <= kSamePaperMm && std::abs(a.heightMm - b.heightMm) <= kSamePaperMm;
}

Medium ChooseMedium(const PrinterTraits& printer, const JobWishes& wishes) {
  // Without a wish: the default of the printer.
  if (!wishes.hasPaper && !printer.defaultMedium.name.empty()) return printer.defaultMedium;
  if (printer.media.empty()) return wishes.paper;
  for (const Medium& medium : printer.media) {
    if (SamePaper(medium, wishes.paper)) return medium;
  }
  const Medium& low = printer.smallestCustom;
  const Medium& high = printer.largestCustom;
  const auto between = [](double value, double from, double to) { return value >= from && value <= to; };
  if (!low.name.empty() && between(wishes.paper.widthMm, low.widthMm, high.widthMm) &&
      between(wishes.paper.heightMm, low.heightMm, high.heightMm)) {
    return wishes.paper;
  }
  std::vector<std::string> names;
  for (const Medium& medium : printer.media) names.push_back(medium.name);
  Refuse(printer, fmt::format("has no paper of {} x {} mm ({}); it has {}", wishes.paper.widthMm, wishes.paper.heightMm,
                              wishes.paper.name, fmt::join(names, ", ")));
}

}  // namespace

JobPlan PlanJob(const PrinterTraits& printer, const JobWishes& wishes) {
  const Offer offer = ChooseFormat(printer, wishes.format);
  JobPlan plan;
  plan.format = offer.format;
  plan.mimeType = offer.mimeType;
  plan.gray = ChooseGray(printer, plan.format, wishes);
  plan.dpi = ChooseResolution(printer, plan.format, wishes.dpi);
  plan.medium = ChooseMedium(printer, wishes);
  return plan;
}

}  // namespace qnv::tool
