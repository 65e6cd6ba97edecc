// Prints a job: checks the options, counts the pages of all files, then paints page after page.
#include "qnvtool/job/print_job.h"

#include <fmt/core.h>

#include <cstdio>
#include <filesystem>
#include <utility>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/interruption.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/paint/band_pipeline.h"
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {
namespace {

// The files that the job reads, as far as the options name them.
std::vector<std::string> InputsOf(const PrintOptions& options) {
  std::vector<std::string> inputs = options.files;
  std::error_code error;
  for (const std::string& font : {options.fonts.body, options.fonts.heading, options.fonts.listing}) {
    if (std::filesystem::exists(PathOf(font), error)) inputs.push_back(font);  // else a name for fontconfig
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

PrintJob::PrintJob(const PrintOptions& options, const PrintParts& parts, Workers& workers, NotePrinter& notes)
    : options_(options),
      workers_(workers),
      output_({options.out, options.tags, options.overlay}, options.format, options.device, parts.output,
              options.compression) {
  CheckEncoding(options.text);
  rasteriser_ = ChooseRasteriser(options.library, parts);
  imposition_.emplace(OrientedPaper(options.paper, options.orientation), options.device.pageDpi, options.marginMm,
                      options.pagesOnSheet);
  fonts_.emplace(parts.openFonts(options, imposition_->pageSheet().dpi,
                                 [&notes](const std::string& remark) { notes.Show("", remark); }));
  setup_ = {imposition_->pageSheet(), &*fonts_, options.points, options.header};
  if (options.device.pageDpi > options.device.bandDpi) {
    notes.Show("--device", fmt::format("of {} rows and columns {} are kept, so that thinner lines may be missing",
                                       options.device.pageDpi, options.device.bandDpi));
  }
  opener_.emplace(options, parts.decoders, setup_,
                  [&notes](const std::string& name, const std::string& remark) { notes.Show(name, remark); });
  pages_.emplace(*opener_, *imposition_, options.pages, options.copies);
  for (const std::string& file : options.files) {
    try {
      pages_->Add(file);
    } catch (const ToolError& error) {
      if (!options.keepGoing || error.code() != ExitCode::kBadInput) throw;
      fmt::print(stderr, "qnvtool: {}\n", error.what());
      ++unusable_;
    }
  }
  if (pages_->count() == 0 && unusable_ != options.files.size()) {
    throw ToolError(ExitCode::kUsage, fmt::format("--pages: chooses none of the {} pages", pages_->found()));
  }
  inputs_ = InputsOf(options);
  inputs_.insert(inputs_.end(), opener_->references().begin(), opener_->references().end());
  output_.Name(pages_->count());
}

PrintJob::~PrintJob() = default;

void PrintJob::Paint(const ProgressSink& progress) {
  int number = 0;  // of the sheet
  const auto deliver = [&](const PaintedBand& band, const EncodedBand& rows) {
    if (band.index == 0) {
      output_.StartPage(*band.page, {band.width, band.height});
      ++number;
    }
    output_.Write(rows);
    progress(number, static_cast<double>(band.index + 1) / band.bands);
    ThrowIfInterrupted();
    if (band.index + 1 == band.bands) output_.FinishPage();
  };
  const auto begin = [&](const Page&, const PictureSize& size) -> PageWork {
    const std::shared_ptr<const BandEncoder> encoder = output_.EncoderFor(size);
    return {encoder->unit(), encoder->rowsAbove(), [&deliver, encoder](const PaintedBand& band) {
              auto rows = std::make_shared<const EncodedBand>(encoder->Encode(band.view));
              return [&deliver, band, rows] { deliver(band, *rows); };
            }};
  };
  BandPipeline pipeline(workers_, *rasteriser_, options_.device, options_.bandRows, begin);
  for (Page sheet; pages_->Next(sheet);) pipeline.Print(std::move(sheet));
  pipeline.Finish();
  output_.Finish();
  if (unusable_ != 0) {
    throw ToolError(ExitCode::kBadInput,
                    fmt::format("{} of {} files could not be used", unusable_, options_.files.size()));
  }
}

void Print(const PrintOptions& options, const PrintParts& parts) {
  const InterruptionGuard guard;
  Workers workers(options.jobs > 0 ? options.jobs : CoreCount());
  NotePrinter notes(options.quiet);
  PrintJob job(options, parts, workers, notes);
  FileClaims claims;
  for (const std::string& input : job.inputs()) claims.AddInput(input);
  claims.AddOutputs(job.outputs());
  Progress progress(!options.quiet);
  job.Paint([&](int sheet, double share) {
    progress.Show((sheet - 1 + share) / job.sheets(), fmt::format("page {} of {}", sheet, job.sheets()));
  });
}

}  // namespace qnv::tool
