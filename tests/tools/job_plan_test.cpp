// What is chosen from the lists of a printer.
#include "qnvtool/ipp/job_plan.h"

#include <gtest/gtest.h>

#include "tool_errors.h"

namespace qnv::test {
namespace {

tool::PrinterTraits ColorPrinter() {
  return {.name = "P",
          .color = true,
          .formats = {"application/pdf", "image/urf", "image/pwg-raster"},
          .resolutions = {1200, 300, 600},
          .defaultResolution = 300,
          .pwgResolutions = {1200, 600, 300},
          .pwgTypes = {"sgray_8", "srgb_8"},
          .urf = {"V1.4", "W8", "SRGB24", "RS600-1200"},
          .media = {{"iso_a4_210x297mm", 210, 297}, {"na_letter_8.5x11in", 215.9, 279.4}},
          .smallestCustom = {},
          .largestCustom = {},
          .defaultMedium = {"na_letter_8.5x11in", 215.9, 279.4}};
}

const tool::Medium kA4{"iso_a4_210x297mm", 210, 297};
const tool::Medium kCard{"custom_100x150mm", 100, 150};

std::string Describe(const tool::PrinterTraits& printer, const tool::JobWishes& wishes) {
  const tool::JobPlan plan = tool::PlanJob(printer, wishes);
  return plan.format + " " + plan.mimeType + (plan.gray ? " gray " : " color ") + std::to_string(plan.dpi) + " " +
         plan.medium.name;
}

TEST(JobPlan, WhatThePrinterPrefers) {
  const struct {
    const char* name;
    void (*change)(tool::PrinterTraits&);
    tool::JobWishes wishes;
    const char* expected;
  } cases[] = {
      {"no wishes", [](auto&) {}, {}, "pwg image/pwg-raster color 300 na_letter_8.5x11in"},
      {"no PWG raster", [](auto& p) { p.formats.pop_back(); }, {}, "urf image/urf color 600 na_letter_8.5x11in"},
      {"PDF only", [](auto& p) { p.formats.resize(1); }, {}, "pdf application/pdf color 300 na_letter_8.5x11in"},
      {"no color", [](auto& p) { p.color = false; }, {}, "pwg image/pwg-raster gray 300 na_letter_8.5x11in"},
      {"no color rasters",
       [](auto& p) { p.pwgTypes.pop_back(); },
       {},
       "pwg image/pwg-raster gray 300 na_letter_8.5x11in"},
      {"color rasters only",
       [](auto& p) {
         p.color = false;
         p.pwgTypes = {"srgb_8"};
       },
       {},
       "pwg image/pwg-raster color 300 na_letter_8.5x11in"},
      {"no default resolution",
       [](auto& p) { p.defaultResolution = 0; },
       {},
       "pwg image/pwg-raster color 600 na_letter_8.5x11in"},
      {"high resolutions only",
       [](auto& p) {
         p.defaultResolution = 0;
         p.pwgResolutions = {2400, 1200};
       },
       {},
       "pwg image/pwg-raster color 1200 na_letter_8.5x11in"},
      {"no default paper",
       [](auto& p) { p.defaultMedium = {}; },
       {.paper = kA4},
       "pwg image/pwg-raster color 300 iso_a4_210x297mm"},
      {"no list of papers",
       [](auto& p) { p.media.clear(); },
       {.hasPaper = true, .paper = kCard},
       "pwg image/pwg-raster color 300 custom_100x150mm"},
      {"any size",
       [](auto& p) {
         p.smallestCustom = {"custom_min_50x50mm", 50, 50};
         p.largestCustom = {"custom_max_300x400mm", 300, 400};
       },
       {.hasPaper = true, .paper = kCard},
       "pwg image/pwg-raster color 300 custom_100x150mm"},
      {"all wishes",
       [](auto&) {},
       {.format = "urf", .hasDevice = true, .gray = true, .dpi = 1200, .hasPaper = true, .paper = kA4},
       "urf image/urf gray 1200 iso_a4_210x297mm"},
      {"any resolution in PDF",
       [](auto&) {},
       {.format = "pdf", .dpi = 123},
       "pdf application/pdf color 123 na_letter_8.5x11in"},
      {"a printer that says little",
       [](auto& p) { p = {.name = "P", .formats = {"image/urf"}}; },
       {.paper = kA4},
       "urf image/urf gray 300 iso_a4_210x297mm"},
  };
  for (const auto& c : cases) {
    tool::PrinterTraits printer = ColorPrinter();
    c.change(printer);
    EXPECT_EQ(Describe(printer, c.wishes), c.expected) << c.name;
  }
}

TEST(JobPlan, WishesThatCannotBeFulfilled) {
  const struct {
    const char* expected;
    void (*change)(tool::PrinterTraits&);
    tool::JobWishes wishes;
  } cases[] = {
      {"printer P: takes neither PWG raster nor Apple raster nor PDF; it takes image/jpeg, text/plain",
       [](auto& p) {
         p.formats = {"image/jpeg", "text/plain"};
       },
       {}},
      {"printer P: --format pwg: not taken; it takes image/urf",
       [](auto& p) { p.formats = {"image/urf"}; },
       {.format = "pwg"}},
      {"printer P: --format png: only pwg, urf and pdf are sent to printers", [](auto&) {}, {.format = "png"}},
      {"printer P: --dpi 400: not a resolution of the printer in pwg documents; it has 300, 600, 1200",
       [](auto&) {},
       {.dpi = 400}},
      {"printer P: --dpi 300: not a resolution of the printer in urf documents; it has 600, 1200",
       [](auto&) {},
       {.format = "urf", .dpi = 300}},
      {"printer P: takes no color in pwg documents; use --device gray",
       [](auto& p) { p.pwgTypes = {"sgray_8"}; },
       {.hasDevice = true}},
      {"printer P: takes no 8-bit gray in urf documents",
       [](auto& p) {
         p.urf = {"SRGB24", "RS300"};
       },
       {.format = "urf", .hasDevice = true, .gray = true}},
      {"printer P: takes neither 8-bit gray nor 24-bit color in pwg documents",
       [](auto& p) { p.pwgTypes = {"black_1"}; },
       {}},
      {"printer P: has no paper of 100 x 150 mm (custom_100x150mm); it has iso_a4_210x297mm, na_letter_8.5x11in",
       [](auto&) {},
       {.hasPaper = true, .paper = kCard}},
  };
  for (const auto& c : cases) {
    tool::PrinterTraits printer = ColorPrinter();
    c.change(printer);
    EXPECT_EQ(UsageErrorOf([&] { tool::PlanJob(printer, c.wishes); }), c.expected);
  }
}

}  // namespace
}  // namespace qnv::test
