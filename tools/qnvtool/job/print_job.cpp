// Prints a job: checks the options, counts the pages of all files, then paints page after page.
#include "qnvtool/job/print_job.h"

#include <fmt/core.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/job/document.h"
#include "qnvtool/job/job_pages.h"
#include "qnvtool/layout/imposition.h"
#include "qnvtool/layout/page_setup.h"
#include "qnvtool/output/job_output.h"
#include "qnvtool/paint/band_printer.h"
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {
namespace {

// The files that the job reads, as far as the options name them.
std::vector<std::string> InputsOf(const PrintOptions& options) {
  std::vector<std::string> inputs = options.files;
  std::error_code error;
  for (const std::string& font : {options.bodyFont, options.headingFont, options.listingFont}) {
    if (std::filesystem::exists(font, error)) inputs.push_back(font);  // else a name for fontconfig
  }
  if (!options.library.empty()) inputs.push_back(options.library);
  return inputs;
}

Rasteriser ChooseRasteriser(const std::string& library, const PrintParts& parts) {
  if (!library.empty()) return LoadRasteriser(library);
  if (parts.linked == nullptr) throw ToolError(ExitCode::kUsage, "--library is needed: no rasteriser is built in");
  return parts.linked();
}

Paper OrientedPaper(const Paper& paper, PageOrientation orientation) {
  const bool turn = (orientation == PageOrientation::kPortrait && paper.widthMm > paper.heightMm) ||
                    (orientation == PageOrientation::kLandscape && paper.widthMm < paper.heightMm);
  return turn ? Paper{paper.heightMm, paper.widthMm} : paper;
}

}  // namespace

void Print(const PrintOptions& options, const PrintParts& parts) {
  JobOutput output({options.out, options.tags, options.overlay}, options.format, options.device, parts.output);
  CheckEncoding(options.text);
  const Rasteriser rasteriser = ChooseRasteriser(options.library, parts);
  const Imposition imposition(OrientedPaper(options.paper, options.orientation), options.device.pageDpi,
                              options.marginMm, options.pagesOnSheet);
  FontShelf fonts = parts.openFonts(options, imposition.pageSheet().dpi);
  const PageSetup setup{imposition.pageSheet(), &fonts, options.points, options.header};
  std::set<std::string> noted;
  const auto note = [&](const std::string& name, const std::string& remark) {
    const std::string line = fmt::format("qnvtool: {}: note: {}\n", name, remark);
    if (!options.quiet && noted.insert(line).second) std::fputs(line.c_str(), stderr);
  };
  if (options.device.pageDpi > options.device.bandDpi) {
    note("--device", fmt::format("of {} rows and columns {} are kept, so that thinner lines may be missing",
                                 options.device.pageDpi, options.device.bandDpi));
  }
  DocumentOpener opener(options, parts.decoders, setup, note);
  const InterruptionGuard guard;
  JobPages pages(opener, imposition, options.pages, options.copies);
  std::size_t unusable = 0;
  for (const std::string& file : options.files) {
    try {
      pages.Add(file);
    } catch (const ToolError& error) {
      if (!options.keepGoing || error.code() != ExitCode::kBadInput) throw;
      fmt::print(stderr, "qnvtool: {}\n", error.what());
      ++unusable;
    }
  }
  if (pages.count() == 0 && unusable != options.files.size()) {
    throw ToolError(ExitCode::kUsage, fmt::format("--pages: chooses none of the {} pages", pages.found()));
  }
  std::vector<std::string> inputs = InputsOf(options);
  inputs.insert(inputs.end(), opener.references().begin(), opener.references().end());
  const int sheetCount = pages.count();
  output.Name(sheetCount, inputs);

  std::unique_ptr<BandPrinter> printer;  // for sheets of the size of the present one
  int width = 0, height = 0;
  Progress progress(!options.quiet);
  Page sheet;
  for (int number = 1; pages.Next(sheet); ++number) {
    if (printer == nullptr || sheet.width != width || sheet.height != height) {
      width = sheet.width;
      height = sheet.height;
      printer = std::make_unique<BandPrinter>(rasteriser, options.device, width, height, options.bandRows);
    }
    output.StartPage(sheet, printer->width(), printer->height());
    const PhaseTimer timer(Phase::kRasterising);
    int bands = 0;
    printer->Print(sheet, [&](const BandView& band) {
      output.Write(band);
      const double share = static_cast<double>(++bands) / printer->bands();
      progress.Show((number - 1 + share) / sheetCount, fmt::format("page {} of {}", number, sheetCount));
      ThrowIfInterrupted();
    });
    output.FinishPage();
  }
  output.Finish();
  if (unusable != 0) {
    throw ToolError(ExitCode::kBadInput,
                    fmt::format("{} of {} files could not be used", unusable, options.files.size()));
  }
}

}  // namespace qnv::tool
