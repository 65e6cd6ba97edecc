// Rows of text: lines of glyphs that cover the rectangle.
#include <cstring>

#include "device_fixture.h"
#include "raster_font.h"

namespace qnv::bench {
namespace {

struct CellSize {
  int width, height;
  const char* name;
};

constexpr CellSize kCells[] = {{8, 16, "8x16"}, {40, 50, "40x50"}};

struct TextLine {
  int x, y;
  std::string characters;
};

}  // namespace

void AddTextRows(std::vector<Row>& rows) {
  for (int b = 0; b < kBandCount; ++b) {
    for (const CellSize& cell : kCells) {
      for (const bool opaque : {true, false}) {
        RowSpec spec;
        spec.operation = Operation::kText;
        spec.band = static_cast<Band>(b);
        spec.cellWidth = cell.width;
        spec.cellHeight = cell.height;
        spec.opaqueText = opaque;
        spec.limit = opaque ? LimitKind::kStore : LimitKind::kReadModifyWrite;
        rows.push_back(
            {std::string(opaque ? "text_opaque_" : "text_transparent_") + cell.name + "_" + BandName(spec.band), spec,
             RectangleShapes()});
      }
    }
  }
}

RowJob MakeTextJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape) {
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, shape);
  device->mode.bkMode = spec.opaqueText ? OPAQUE : TRANSPARENT;
  const PageRect rect = RectOnPage(*device, shape);
  std::vector<uint8_t> font = MakeRasterFont(spec.cellWidth, spec.cellHeight);
  std::vector<TextLine> lines;
  Random random(6);
  RowJob job;
  // On a scaled device cells are counted in page pixels, of which the band shows a part.
  for (int y = rect.y; y + spec.cellHeight <= rect.y + rect.height; y += spec.cellHeight) {
    TextLine line = {rect.x, y, {}};
    for (int i = 0; i < rect.width / spec.cellWidth; ++i) line.characters += RandomCharacter(random);
    job.amounts.items += static_cast<double>(line.characters.size());
    lines.push_back(std::move(line));
  }
  job.amounts.calls = static_cast<double>(lines.size());
  const int pagePixels = device->pageScale() * device->pageScale();
  job.amounts.bytes = job.amounts.items * spec.cellWidth * spec.cellHeight * device->bytesPerPixel() / pagePixels;
  job.job = MakeDeviceJob(std::move(device), [font = std::move(font), lines = std::move(lines)](DeviceFixture& d, int) {
    for (const TextLine& line : lines) {
      d.library().ExtTextOut(d.handle(), line.x, line.y, &d.clip, line.characters.data(),
                             static_cast<int32_t>(line.characters.size()), font.data(), 0, &d.mode, nullptr, nullptr,
                             nullptr, 0);
    }
  });
  return job;
}

}  // namespace qnv::bench
