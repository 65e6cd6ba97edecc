// Prints a job: checks the options, counts the pages of all files, then paints page after page.
#include "qnvtool/job/print_job.h"

#include <fmt/core.h>

#include <cstdio>
#include <filesystem>
#include <set>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/job/document.h"
#include "qnvtool/job/job_pages.h"
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

}  // namespace

void Print(const PrintOptions& options, const PrintParts& parts) {
  JobOutput output({options.out, options.tags, options.overlay}, options.format, options.device, parts.output);
  CheckEncoding(options.text);
  const Rasteriser rasteriser = ChooseRasteriser(options.library, parts);
  FontShelf fonts = parts.openFonts(options);
  const PageSetup setup{MakeSheet(options.paper, options.device.pageDpi, options.marginMm), &fonts, options.points,
                        options.header};
  std::set<std::string> noted;
  DocumentOpener opener(options, parts.decoders, setup, [&](const std::string& name, const std::string& remark) {
    const std::string line = fmt::format("qnvtool: {}: note: {}\n", name, remark);
    if (!options.quiet && noted.insert(line).second) std::fputs(line.c_str(), stderr);
  });
  const InterruptionGuard guard;
  JobPages pages(opener);
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
  std::vector<std::string> inputs = InputsOf(options);
  inputs.insert(inputs.end(), opener.references().begin(), opener.references().end());
  const int pageCount = pages.count();
  output.Name(pageCount, inputs);

  BandPrinter printer(rasteriser, options.device, setup.sheet.width, setup.sheet.height, options.bandRows);
  Progress progress(!options.quiet);
  const double bands = static_cast<double>(printer.bands()) * pageCount;
  double done = 0;
  Page page;
  for (int number = 1; pages.Next(page); ++number) {
    output.StartPage(page, printer.width(), printer.height());
    const PhaseTimer timer(Phase::kRasterising);
    printer.Print(page, [&](const BandView& band) {
      output.Write(band);
      progress.Show(++done / bands, fmt::format("page {} of {}", number, pageCount));
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
