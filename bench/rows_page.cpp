// Rows of a page of mixed calls, painted as one band or as fifty. Every call is made for every band, as hosts do.
#include <algorithm>
#include <functional>

#include "device_fixture.h"
#include "dib_source.h"
#include "raster_font.h"

namespace qnv::bench {
namespace {

constexpr int kPageWidth = 1200;
constexpr int kPageHeight = 1600;

struct Page {
  std::vector<uint8_t> font;
  std::vector<std::string> lines;
  std::vector<std::vector<int16_t>> figures;  // OS_ROW_SPANS
  std::vector<BandRect> boxes;
  DibSource photograph;  // 24 bits in the front part of the source memory
};

// Text over the whole page, an image, figures and boxes at random places.
Page MakePage(Memory& memory) {
  Page page;
  Random random(9);
  page.font = MakeRasterFont(8, 16);
  for (int line = 0; line < 60; ++line) {
    std::string characters;
    for (int i = 0; i < 130; ++i) characters += RandomCharacter(random);
    page.lines.push_back(std::move(characters));
  }
  // Rhombs.
  for (int i = 0; i < 40; ++i) {
    const int half = 20 + random.Below(60);
    const int x = 100 + random.Below(kPageWidth - 200);
    const int y = random.Below(kPageHeight - 2 * half);
    std::vector<int16_t> points = {static_cast<int16_t>(y)};
    for (int row = 0; row < 2 * half; ++row) {
      const int reach = half - std::abs(row - half) + 1;
      points.push_back(static_cast<int16_t>(x - reach));
      points.push_back(static_cast<int16_t>(x + reach));
    }
    page.figures.push_back(std::move(points));
  }
  for (int i = 0; i < 60; ++i) {
    const int x = random.Below(kPageWidth - 200);
    const int y = random.Below(kPageHeight - 60);
    page.boxes.push_back({x, y, x + 20 + random.Below(180), y + 4 + random.Below(56)});
  }
  page.photograph = MakeDib(memory, {24, false, false, 1, 1}, 400, 300);
  return page;
}

// Makes all calls of the page; the library clips them to the current band.
void Paint(DeviceFixture& d, const Page& page, const PhysicalBrush& hatch) {
  const Library& library = d.library();
  for (const BandRect& box : page.boxes) {
    library.BitBlt(d.handle(), box.left, box.top, nullptr, 0, 0, box.right - box.left, box.bottom - box.top, PATCOPY,
                   &d.brush, &d.mode, &d.clip);
  }
  const DibSource& dib = page.photograph;
  library.StretchDIBits(d.handle(), 0, 150, 200, 900, 675, 0, 0, dib.width, dib.height, dib.bits, dib.info.data(),
                        nullptr, SRCCOPY, nullptr, &d.mode, &d.clip);
  for (std::size_t i = 0; i < page.figures.size(); ++i) {
    const std::vector<int16_t>& points = page.figures[i];
    library.Output(d.handle(), OS_ROW_SPANS, static_cast<uint32_t>(points.size() / 2), points.data(), nullptr,
                   i % 2 == 0 ? &d.brush : &hatch, &d.mode, &d.clip);
  }
  for (std::size_t i = 0; i < page.lines.size(); ++i) {
    library.ExtTextOut(d.handle(), 80, 40 + 25 * static_cast<int>(i), &d.clip, page.lines[i].data(),
                       static_cast<int32_t>(page.lines[i].size()), page.font.data(), 0, &d.mode, nullptr, nullptr,
                       nullptr, 0);
  }
}

}  // namespace

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

RowJob MakePageJob(const Library& library, Memory& memory, const RowSpec& spec, Shape) {
  const int bands = static_cast<int>(spec.code);
  const int bandHeight = kPageHeight / bands;
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, kPageWidth, bandHeight, false);
  device->MakeBrush(Brush::kHatch);
  const PhysicalBrush hatch = device->brush;
  device->MakeBrush(Brush::kSolid);
  device->mode.bkMode = TRANSPARENT;
  device->clip = {0, 0, kPageWidth, kPageHeight};
  RowJob job;
  job.amounts.bytes = 1.0 * kPageWidth * kPageHeight * device->bytesPerPixel();
  job.amounts.calls = 0;
  job.job = MakeDeviceJob(std::move(device), [=, page = MakePage(memory)](DeviceFixture& d, int) {
    for (int band = 0; band < bands; ++band) {
      d.MoveBand(band * bandHeight);
      d.Clear();
      Paint(d, page, hatch);
    }
  });
  return job;
}

}  // namespace qnv::bench
