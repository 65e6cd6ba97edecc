// Cuts pages into bands, and keeps as many of them at work as there are threads and memory for.
#include "qnvtool/paint/band_pipeline.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"

namespace qnv::tool {
namespace {

// A band that stays in the processor's cache from its painting to its compression takes a sixth less time than one of
// eight times the size. Lower bands than so many rows paint too much of a page several times.
constexpr std::size_t kBandBytes = std::size_t{512} << 10;
constexpr int kMinBandRows = 32;

constexpr std::size_t kMaxBandMemory = std::size_t{64} << 20;  // bytes, of all bands but the first

}  // namespace

struct BandPipeline::PreparedPage {
  PreparedPage(const Rasteriser& rasteriser, DeviceHandle* handle, const DeviceChoice& device, Page taken,
               PageWork itsWork)
      : page(std::move(taken)), painter(rasteriser, handle, device, page), work(std::move(itsWork)) {}

  const Page page;
  const PagePainter painter;
  const PageWork work;
};

struct BandPipeline::BandTask {
  std::shared_ptr<const PreparedPage> page;
  Form form;
  PaintedBand band;
  StationPtr station;  // from the painting to the end of the work
};

BandPipeline::BandPipeline(Workers& workers, const Rasteriser& rasteriser, const DeviceChoice& device, int bandRows,
                           Begin begin)
    : rasteriser_(rasteriser),
      device_(device),
      bandRows_(bandRows),
      threads_(workers.count()),
      begin_(std::move(begin)) {
  tasks_.emplace(workers, std::numeric_limits<int>::max(), [this](const std::function<void()>& rest) {
    if (rest == nullptr) return;
    --bandsAtWork_;
    rest();
  });
}

// A device that nobody uses, if possible the one that this thread used before: its memory is in the thread's cache.
BandPipeline::StationPtr BandPipeline::TakeStation(const Form& form) {
  std::unique_ptr<Station> station;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    auto place = std::find_if(free_.begin(), free_.end(),
                              [](const auto& one) { return one->user == std::this_thread::get_id(); });
    if (place == free_.end() && stations_ >= threads_ && !free_.empty()) --place;
    if (place != free_.end()) {
      station = std::move(*place);
      free_.erase(place);
    } else {
      free_.reserve(static_cast<std::size_t>(++stations_));
    }
  }
  if (station == nullptr) station = std::make_unique<Station>();
  station->user = std::this_thread::get_id();
  StationPtr taken(station.release(), [this](Station* used) {
    const std::lock_guard<std::mutex> lock(mutex_);
    free_.emplace_back(used);
  });
  if (!taken->printer || taken->form != form) {
    taken->printer.emplace(rasteriser_, device_, form.pageWidth, form.pageHeight, form.bandRows);
    taken->form = form;
  }
  return taken;
}

void BandPipeline::Print(Page page) {
  const PhaseTimer timer(Phase::kRasterising);
  const PictureSize size = PictureSizeOf(rasteriser_, device_, page.width, page.height);
  PageWork work = begin_(page, size);
  const std::size_t rowBytes =
      static_cast<std::size_t>(size.width) * static_cast<std::size_t>(device_.bandBytesPerPixel());
  const bool automatic = bandRows_ == kAutomaticBandRows;
  const int wanted = automatic ? std::max(kMinBandRows, static_cast<int>(kBandBytes / rowBytes)) : bandRows_;
  const int rows = wanted == 0 ? size.height : std::max(wanted / work.unit, 1) * work.unit;
  // Rows above are painted once more with the band, unless bands are to be lower than the work demands.
  const int painted = automatic || rows <= wanted ? rows + work.rowsAbove : wanted;
  const Form form{page.width, page.height, painted};
  const std::size_t bytes = static_cast<std::size_t>(std::min(rows, size.height)) * rowBytes;
  const int mostBands =
      threads_ == 1
          ? 1
          : static_cast<int>(std::min<std::size_t>(static_cast<std::size_t>(threads_) * 2, 1 + kMaxBandMemory / bytes));
  const auto makeRoom = [&] {
    while (bandsAtWork_ >= mostBands) tasks_->UseOldest();
  };
  makeRoom();
  const int bands = (size.height + rows - 1) / rows;
  const auto topOf = [&](int index) { return index * rows; };
  const auto rowsOf = [&](int index) { return std::min(rows, size.height - topOf(index)); };
  std::shared_ptr<const PreparedPage> prepared;
  std::vector<bool> showsPicture;  // of the bands
  {
    const StationPtr station = TakeStation(form);
    const int rowsAbove = work.rowsAbove;
    prepared = std::make_shared<const PreparedPage>(rasteriser_, station->printer->device(), device_, std::move(page),
                                                    std::move(work));
    for (int index = 0; index < bands; ++index) {
      const int above = std::min(rowsAbove, topOf(index));
      const Rect view = station->printer->ViewOf(topOf(index) - above, rowsOf(index) + above);
      showsPicture.push_back(prepared->painter.ShowsPicture(view));
    }
  }
  for (int index = 0; index < bands; ++index) {
    makeRoom();
    ++bandsAtWork_;
    const auto task = std::make_shared<BandTask>();
    task->page = prepared;
    task->form = form;
    task->band = {&prepared->page, index, bands, size.width, size.height, {}};
    task->band.view.top = topOf(index);
    task->band.view.rows = rowsOf(index);
    if (!showsPicture[static_cast<std::size_t>(index)]) {
      tasks_->Start([this, task] {
        PaintBand(*task);
        return WorkOn(task);
      });
      continue;
    }
    // The rows of pictures are read in order, but not so the work on them.
    lastPicture_ = tasks_->Start(
        [this, task]() -> std::function<void()> {
          PaintBand(*task);
          return nullptr;
        },
        lastPicture_);
    tasks_->Start([task]() -> std::function<void()> { return task->station == nullptr ? nullptr : WorkOn(task); },
                  lastPicture_);
  }
}

void BandPipeline::PaintBand(BandTask& task) {
  const PhaseTimer timer(Phase::kRasterising);
  ThrowIfInterrupted();
  StationPtr station = TakeStation(task.form);
  BandPrinter& printer = *station->printer;
  const PagePainter& painter = task.page->painter;
  BandView& view = task.band.view;
  const int rows = view.rows;
  const int above = std::min(task.page->work.rowsAbove, view.top);
  const int first = view.top - above;
  if (above + rows <= printer.bandRows()) {
    view = printer.PrintRows(painter, first, above + rows);
  } else {
    // In parts, which are put together.
    station->pixels.clear();
    station->tags.clear();
    for (int top = first; top < first + above + rows; top += printer.bandRows()) {
      view = printer.PrintRows(painter, top, std::min(printer.bandRows(), first + above + rows - top));
      const auto append = [&](std::vector<uint8_t>& to, const uint8_t* from, std::size_t stride) {
        to.insert(to.end(), from, from + stride * static_cast<std::size_t>(view.rows));
      };
      append(station->pixels, view.pixels, view.stride);
      if (view.tags != nullptr) append(station->tags, view.tags, view.tagStride);
    }
    view.pixels = station->pixels.data();
    if (view.tags != nullptr) view.tags = station->tags.data();
  }
  view.top = first + above;
  view.rows = rows;
  view.pixels += view.stride * static_cast<std::size_t>(above);
  if (view.tags != nullptr) view.tags += view.tagStride * static_cast<std::size_t>(above);
  task.station = std::move(station);
}

// Done with the device and its memory, whatever is left to be done.
std::function<void()> BandPipeline::WorkOn(const std::shared_ptr<BandTask>& task) {
  const auto rest = task->page->work.work(task->band);
  task->station = nullptr;
  return [page = task->page, rest] { rest(); };
}

void BandPipeline::Finish() {
  const PhaseTimer timer(Phase::kRasterising);
  tasks_->Finish();
}

}  // namespace qnv::tool
