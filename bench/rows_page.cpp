// Rows of a page of mixed calls: text over the whole page, a photograph, spans and boxes, painted as one band or as
// fifty. The calls come from a call file. Every call is made for every band, as hosts do.
#include <cstdio>
#include <cstdlib>

#include "device_fixture.h"
#include "page_calls.h"

namespace qnv::bench {

void AddPageRows(std::vector<Row>& rows) {
  for (const Band band : {Band::kBgr24, Band::kGray8, Band::kDual}) {
    for (const uint32_t bands : {1u, 50u}) {
      RowSpec spec;
      spec.operation = Operation::kPage;
      spec.band = band;
      spec.code = bands;
      rows.push_back({"page_" + std::to_string(bands) + (bands == 1 ? "_band_" : "_bands_") + BandName(band),
                      spec,
                      {Shape::kPage}});
    }
  }
}

// The device, its bands and their clearing are made here: a file for each number of bands would hold the same calls
// again for each band, and the device has to paint into the memory that all rows share.
RowJob MakePageJob(const Library& library, Memory& memory, const RowSpec& spec, Shape) {
  const int bands = static_cast<int>(spec.code);
  const int bandHeight = kPageHeight / bands;
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, kPageWidth, bandHeight, false);
  std::string error;
  const std::shared_ptr<PageCalls> page = PageCalls::Read(spec.band, error);
  if (page == nullptr) {
    std::fprintf(stderr, "qnvbench: %s\n", error.c_str());
    std::exit(1);
  }
  page->SetHandle(device->handle());
  RowJob job;
  job.amounts.bytes = 1.0 * kPageWidth * kPageHeight * device->bytesPerPixel();
  job.amounts.calls = 0;
  job.job = MakeDeviceJob(std::move(device), [=, functions = FunctionsOf(library)](DeviceFixture& d, int) {
    for (int band = 0; band < bands; ++band) {
      d.MoveBand(band * bandHeight);
      d.Clear();
      page->Make(functions);
    }
  });
  return job;
}

}  // namespace qnv::bench
