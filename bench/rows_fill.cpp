// Rows of filled and inverted rectangles: span lists (QNVOutput) and transfers without a source.
#include "device_fixture.h"

namespace qnv::bench {
namespace {

struct BrushName {
  Brush brush;
  const char* name;
};

// The brushes and their words in row names.
constexpr BrushName kBrushes[] = {
    {Brush::kSolid, "solid"}, {Brush::kHatch, "hatch"},   {Brush::kHatchOpaque, "hatchopaque"},
    {Brush::kPattern8, "p8"}, {Brush::kPattern16, "p16"},
};

constexpr Band kAllBands[] = {Band::kBgr24,      Band::kGray8, Band::kScaled,
                              Band::kScaledGray, Band::kDual,  Band::kDualMarked};

// A period of 16 pixels does not exist on scaled devices, whose brushes have cells of one pixel.
bool NeverMade(Brush brush, Band band) { return brush == Brush::kPattern16 && IsScaled(band); }

}  // namespace

void AddFillRows(std::vector<Row>& rows) {
  for (const Band band : kAllBands) {
    const std::string end = std::string("_") + BandName(band);
    const auto add = [&](const std::string& name, const RowSpec& spec) {
      rows.push_back({name + end, spec, RectangleShapes()});
    };
    // Filled by the span painter.
    for (const BrushName& brush : kBrushes) {
      if (NeverMade(brush.brush, band)) continue;
      RowSpec spec;
      spec.operation = Operation::kOutput;
      spec.band = band;
      spec.code = R2_COPYPEN;
      spec.brush = brush.brush;
      spec.limit = brush.brush == Brush::kHatch ? LimitKind::kReadModifyWrite : LimitKind::kStore;
      add(std::string("fill_") + brush.name, spec);
    }
    // Filled by a transfer.
    for (const BrushName& brush : kBrushes) {
      if (brush.brush == Brush::kHatch || brush.brush == Brush::kHatchOpaque) continue;
      if (NeverMade(brush.brush, band)) continue;
      RowSpec spec;
      spec.band = band;
      spec.brush = brush.brush;
      spec.code = PATCOPY;
      spec.limit = LimitKind::kStore;
      add(std::string("patcopy_") + brush.name, spec);
      spec.code = PATINVERT;
      spec.limit = LimitKind::kReadModifyWrite;
      add(std::string("patinvert_") + brush.name, spec);
    }
    RowSpec spec;
    spec.band = band;
    spec.code = DSTINVERT;
    spec.limit = LimitKind::kReadModifyWrite;
    add("invert", spec);
    spec.code = BLACKNESS;
    spec.limit = LimitKind::kStore;
    add("blackness", spec);
    spec.code = WHITENESS;
    add("whiteness", spec);
  }
}

void AddRop2Rows(std::vector<Row>& rows) {
  static constexpr const char* kNames[] = {"black", "notmerge",    "masknotpen", "notcopy", "maskpennot", "not",
                                           "xor",   "notmask",     "mask",       "notxor",  "nop",        "mergenotpen",
                                           "copy",  "mergepennot", "merge",      "white"};
  for (const Band band : kAllBands) {
    const bool everything = band == Band::kBgr24 || band == Band::kGray8;
    for (uint32_t code = R2_BLACK; code <= R2_WHITE; ++code) {
      if (code == R2_COPYPEN || code == R2_NOP) continue;  // the fill rows; nothing to paint
      if (!everything && code != R2_XORPEN && code != R2_MASKPEN) continue;
      for (const BrushName& brush : kBrushes) {
        if (brush.brush == Brush::kHatchOpaque || NeverMade(brush.brush, band)) continue;
        const bool storesOnly = code == R2_BLACK || code == R2_WHITE || code == R2_NOTCOPYPEN;
        RowSpec spec;
        spec.operation = Operation::kOutput;
        spec.band = band;
        spec.code = code;
        spec.brush = brush.brush;
        spec.limit = storesOnly && brush.brush != Brush::kHatch ? LimitKind::kStore : LimitKind::kReadModifyWrite;
        const std::string name = std::string("rop2_") + kNames[code - 1] + "_" + brush.name + "_" + BandName(band);
        rows.push_back({name, spec, RectangleShapes()});
      }
    }
  }
}

RowJob MakeOutputJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape) {
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, shape, spec.brush == Brush::kPattern16);
  device->MakeBrush(spec.brush);
  device->mode.Rop2 = static_cast<int16_t>(spec.code);
  struct Record {
    int16_t count, top, bottom, left, right, countAgain;
  };
  const PageRect rect = RectOnPage(*device, shape);
  const Record record = {2,
                         static_cast<int16_t>(rect.y),
                         static_cast<int16_t>(rect.y + rect.height),
                         static_cast<int16_t>(rect.x),
                         static_cast<int16_t>(rect.x + rect.width),
                         2};
  RowJob job;
  job.amounts.bytes = 1.0 * Info(shape).width * Info(shape).height * device->bytesPerPixel();
  job.job = MakeDeviceJob(std::move(device), [record](const DeviceFixture& d, int) {
    d.library().Output(d.handle(), OS_BANDED_SPANS, 1, &record.count, nullptr, &d.brush, &d.mode, &d.clip);
  });
  return job;
}

}  // namespace qnv::bench
