// Paints the bands of many pages on several threads. What is then to be done with a band, such as compressing it, is
// done by the thread that painted it, while its rows are in that processor's cache; only what has to be in order is
// left to the caller's thread.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "qnvtool/base/ordered_tasks.h"
#include "qnvtool/paint/band_printer.h"

namespace qnv::tool {

inline constexpr int kAutomaticBandRows = -1;  // as few as suit the processor's cache

// A band and its page. `view` is valid during the call of PageWork::work only.
struct PaintedBand {
  const Page* page = nullptr;
  int index = 0;  // of the band
  int bands = 0;  // of the page
  int width = 0;  // of the picture, pixels
  int height = 0;
  BandView view;
};

// What is done with the bands of a page.
struct PageWork {
  int unit = 1;       // bands begin at a multiple of so many rows, and end at one or with the picture
  int rowsAbove = 0;  // that are in memory above each view, too, as far as the picture has them
  // Called by any thread, for several bands at a time. Returns what is left to be done in the order of the bands.
  std::function<std::function<void()>(const PaintedBand&)> work;
};

class BandPipeline {
 public:
  // Called with each page and the size of its picture.
  using Begin = std::function<PageWork(const Page&, const PictureSize&)>;

  // `bandRows`: most rows that are painted at a time, 0 for whole pages, or kAutomaticBandRows. `begin`, and what
  // `work` returns, are called by the thread that calls Print and Finish. What is named must outlive the object.
  BandPipeline(Workers& workers, const Rasteriser& rasteriser, const DeviceChoice& device, int bandRows, Begin begin);

  // Takes a page, and returns when all of its bands are at work. Throws what BandPrinter and the work throw, also for
  // earlier pages.
  void Print(Page page);

  // Returns when all work is done.
  void Finish();

 private:
  // The size of a device.
  struct Form {
    int pageWidth = 0;
    int pageHeight = 0;
    int bandRows = 0;
    bool operator==(const Form&) const = default;
  };
  // A device and its memory. One thread uses it at a time.
  struct Station {
    Form form;
    std::optional<BandPrinter> printer;
    // Rows of bands that are painted in several parts.
    std::vector<uint8_t> pixels;
    std::vector<uint8_t> tags;
    std::thread::id user;  // the last one
  };
  using StationPtr = std::shared_ptr<Station>;
  struct PreparedPage;
  struct BandTask;

  StationPtr TakeStation(const Form& form);
  void PaintBand(BandTask& task);
  static std::function<void()> WorkOn(const std::shared_ptr<BandTask>& task);

  const Rasteriser& rasteriser_;
  const DeviceChoice& device_;
  const int bandRows_;
  const int threads_;
  const Begin begin_;
  std::mutex mutex_;  // for the stations
  std::vector<std::unique_ptr<Station>> free_;
  int stations_ = 0;              // free or not
  int bandsAtWork_ = 0;           // or waiting for their turn
  Workers::TaskPtr lastPicture_;  // paints the last band so far that shows a picture
  std::optional<OrderedTasks<std::function<void()>>> tasks_;
};

}  // namespace qnv::tool
