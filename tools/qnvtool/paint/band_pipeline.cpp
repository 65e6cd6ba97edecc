// Hands bands to devices that are free, and their results over in order.
#include "qnvtool/paint/band_pipeline.h"

#include <algorithm>
#include <utility>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxBandMemory = std::size_t{64} << 20;  // bytes, of all devices but the first

}  // namespace

struct BandPipeline::PreparedPage {
  PreparedPage(const Rasteriser& rasteriser, DeviceHandle* handle, const DeviceChoice& device, Page taken)
      : page(std::move(taken)), painter(rasteriser, handle, device, page) {}

  const Page page;
  const PagePainter painter;
};

BandPipeline::BandPipeline(Workers& workers, const Rasteriser& rasteriser, const DeviceChoice& device, int bandRows,
                           Sink sink)
    : rasteriser_(rasteriser), device_(device), bandRows_(bandRows), sink_(std::move(sink)) {
  // One more than can be painted at a time, for the band that the sink has.
  const int stations = workers.count() == 1 ? 1 : workers.count() + 1;
  tasks_.emplace(workers, stations, [this](const Result& result) { HandOver(result); });
}

// A device for a page of this size that nobody uses.
BandPipeline::Station& BandPipeline::StationFor(const Page& page) {
  tasks_->MakeRoom();
  const auto limit = [&] {
    std::size_t bytes = 0;
    for (const auto& station : stations_) bytes += station->printer->bandBytes();
    return !stations_.empty() && bytes + stations_.back()->printer->bandBytes() > kMaxBandMemory;
  };
  if (free_.empty() && limit()) {
    while (free_.empty()) tasks_->UseOldest();
  }
  if (free_.empty()) {
    auto station = std::make_unique<Station>();
    station->printer.emplace(rasteriser_, device_, page.width, page.height, bandRows_);
    free_.push_back(stations_.emplace_back(std::move(station)).get());
    free_.back()->width = page.width;
    free_.back()->height = page.height;
  }
  Station& station = *free_.back();
  if (station.width != page.width || station.height != page.height) {
    station.printer.emplace(rasteriser_, device_, page.width, page.height, bandRows_);
    station.width = page.width;
    station.height = page.height;
  }
  free_.pop_back();
  return station;
}

void BandPipeline::Print(Page page) {
  const PhaseTimer timer(Phase::kRasterising);
  Station* station = &StationFor(page);
  const auto prepared =
      std::make_shared<const PreparedPage>(rasteriser_, station->printer->device(), device_, std::move(page));
  const int bands = station->printer->bands();
  for (int index = 0; index < bands; ++index) {
    if (station == nullptr) station = &StationFor(prepared->page);
    Result result{
        prepared, station, {&prepared->page, index, bands, station->printer->width(), station->printer->height(), {}}};
    const bool picture = prepared->painter.ShowsPicture(station->printer->ViewOf(index));
    const auto paint = [result = std::move(result)]() mutable {
      const PhaseTimer painting(Phase::kRasterising);
      ThrowIfInterrupted();
      result.band.view = result.station->printer->PrintBand(result.page->painter, result.band.index);
      return std::move(result);
    };
    const Workers::TaskPtr task = tasks_->Start(paint, picture ? lastPicture_ : nullptr);
    if (picture) lastPicture_ = task;
    station = nullptr;
  }
}

void BandPipeline::HandOver(const Result& result) {
  sink_(result.band);
  free_.push_back(result.station);
}

void BandPipeline::Finish() {
  const PhaseTimer timer(Phase::kRasterising);
  tasks_->Finish();
}

}  // namespace qnv::tool
