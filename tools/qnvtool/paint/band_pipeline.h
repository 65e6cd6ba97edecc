// Paints the bands of many pages on several threads, each with a device of its own.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "qnvtool/base/ordered_tasks.h"
#include "qnvtool/paint/band_printer.h"

namespace qnv::tool {

// A band and its page. `view` is valid during the call of the sink only.
struct PaintedBand {
  const Page* page = nullptr;
  int index = 0;  // of the band
  int bands = 0;  // of the page
  int width = 0;  // of the picture, pixels
  int height = 0;
  BandView view;
};

class BandPipeline {
 public:
  using Sink = std::function<void(const PaintedBand&)>;

  // `bandRows` as for BandPrinter. The sink gets the bands of all pages in order, from the thread that calls Print and
  // Finish. What is named must outlive the object.
  BandPipeline(Workers& workers, const Rasteriser& rasteriser, const DeviceChoice& device, int bandRows, Sink sink);

  // Takes a page, and returns when all of its bands are at work. Throws what BandPrinter and the sink throw, also for
  // earlier pages.
  void Print(Page page);

  // Returns when the sink has had all bands.
  void Finish();

 private:
  // A device and its band, from the moment that a band is to be painted to that when the sink has it.
  struct Station {
    std::optional<BandPrinter> printer;
    int width = 0;  // of the page
    int height = 0;
  };
  struct PreparedPage;
  struct Result {
    std::shared_ptr<const PreparedPage> page;
    Station* station = nullptr;
    PaintedBand band;
  };

  Station& StationFor(const Page& page);
  void HandOver(const Result& result);

  const Rasteriser& rasteriser_;
  const DeviceChoice& device_;
  const int bandRows_;
  const Sink sink_;
  std::vector<std::unique_ptr<Station>> stations_;
  std::vector<Station*> free_;
  Workers::TaskPtr lastPicture_;  // paints the last band so far that shows a picture
  std::optional<OrderedTasks<Result>> tasks_;
};

}  // namespace qnv::tool
