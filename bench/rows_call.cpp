// Rows of small calls, in which reaching the pixels takes longer than painting them, and of calls that paint nothing
// because all is clipped away.
#include <vector>

#include "device_fixture.h"
#include "dib_source.h"
#include "raster_font.h"

namespace qnv::bench {
namespace {

// Why nothing is painted.
enum SkipKind : uint32_t {
  kClippedPixel,
  kEmptyClip,
  kSpansAbove,
  kSpansBelow,
  kImageColumns,
  kImageRows,
  kRleRowsAbove,
  // What other bands show of a page: each call lies below the band.
  kBox,
  kFigure,
  kTextLine,
  kImage,
};

// Adds a row of small calls; the name of the band is appended.
void Add(std::vector<Row>& rows, const std::string& name, const RowSpec& spec) {
  rows.push_back({name + "_" + BandName(spec.band), spec, {Shape::kCall}});
}

// A place that moves through the band, so that no call uses the cache line of the call before.
struct Place {
  int x, y;
};

Place PlaceOf(int run) {
  const uint32_t n = static_cast<uint32_t>(run);
  return {static_cast<int>(n * 37 % 1024), static_cast<int>(n * 7 % 112)};
}

// code: R2_..., or 0 to read pixels.
std::unique_ptr<Job> MakePixelJob(std::unique_ptr<DeviceFixture> device, uint32_t code) {
  const int scale = device->pageScale();
  if (code == 0) {
    return MakeDeviceJob(std::move(device), [scale](DeviceFixture& d, int run) {
      const Place place = PlaceOf(run);
      d.library().Pixel(d.handle(), place.x * scale, place.y * scale, 0, nullptr, &d.clip);
    });
  }
  device->mode.Rop2 = static_cast<int16_t>(code);
  return MakeDeviceJob(std::move(device), [scale](DeviceFixture& d, int run) {
    const Place place = PlaceOf(run);
    d.library().Pixel(d.handle(), place.x * scale, place.y * scale, 0x00285AC8, &d.mode, &d.clip);
  });
}

// One span per call.
std::unique_ptr<Job> MakeSpanJob(std::unique_ptr<DeviceFixture> device, const RowSpec& spec) {
  device->MakeBrush(spec.brush);
  device->mode.Rop2 = static_cast<int16_t>(spec.code);
  const int scale = device->pageScale();
  return MakeDeviceJob(std::move(device), [scale, width = spec.cellWidth](DeviceFixture& d, int run) {
    const Place place = PlaceOf(run);
    const int16_t left = static_cast<int16_t>(place.x * scale);
    const int16_t points[] = {0, static_cast<int16_t>(place.y * scale), left,
                              static_cast<int16_t>(left + width * scale)};
    d.library().Output(d.handle(), OS_SCANLINES, 2, points, nullptr, &d.brush, &d.mode, &d.clip);
  });
}

std::unique_ptr<Job> MakeSmallBltJob(std::unique_ptr<DeviceFixture> device, const RowSpec& spec) {
  device->MakeBrush(spec.brush);
  const int scale = device->pageScale();
  const int width = spec.cellWidth * scale;
  const int height = spec.cellHeight * scale;
  SourceBitmap source = {};
  if (spec.source != Source::kNone) {
    source.bmWidth = static_cast<int16_t>(width);
    source.bmHeight = static_cast<int16_t>(height);
    source.bmPlanes = 1;
    source.bmBitsPixel = spec.source == Source::kMono ? 1 : spec.source == Source::kGray8 ? 8 : 24;
    source.bmWidthBytes = static_cast<uint16_t>((width * source.bmBitsPixel + 15) / 16 * 2);
    source.bmBits = device->memory().source();
    device->memory().FillSource(4096);
  }
  return MakeDeviceJob(std::move(device), [=, code = spec.code](DeviceFixture& d, int run) {
    const Place place = PlaceOf(run);
    d.library().BitBlt(d.handle(), place.x * scale, place.y * scale, &source, 0, 0, width, height, code, &d.brush,
                       &d.mode, &d.clip);
  });
}

// One character per call.
std::unique_ptr<Job> MakeGlyphJob(std::unique_ptr<DeviceFixture> device, const RowSpec& spec) {
  device->mode.bkMode = spec.opaqueText ? OPAQUE : TRANSPARENT;
  const int scale = device->pageScale();
  return MakeDeviceJob(std::move(device),
                       [scale, font = MakeRasterFont(spec.cellWidth, spec.cellHeight)](DeviceFixture& d, int run) {
                         const Place place = PlaceOf(run);
                         const char character = static_cast<char>('A' + run % 26);
                         d.library().ExtTextOut(d.handle(), place.x * scale, place.y * scale, &d.clip, &character, 1,
                                                font.data(), 0, &d.mode, nullptr, nullptr, nullptr, 0);
                       });
}

// A list of 10000 spans, all above or all below the band.
std::unique_ptr<Job> MakeLongSpanListJob(std::unique_ptr<DeviceFixture> device, bool above) {
  constexpr int kRows = 10000;
  std::vector<int16_t> points;
  points.push_back(static_cast<int16_t>(above ? -kRows : 200));
  for (int row = 0; row < kRows; ++row) {
    points.push_back(100);
    points.push_back(300);
  }
  device->MakeBrush(Brush::kSolid);
  return MakeDeviceJob(std::move(device), [points = std::move(points)](DeviceFixture& d, int) {
    d.library().Output(d.handle(), OS_ROW_SPANS, kRows, points.data(), nullptr, &d.brush, &d.mode, &d.clip);
  });
}

// An image that the clip cuts to a corner of the given size.
std::unique_ptr<Job> MakeClippedImageJob(std::unique_ptr<DeviceFixture> device, bool rle, int width, int height,
                                         int shownWidth, int shownHeight) {
  const ImageSource image = {8, rle, false, 1, 1};
  DibSource dib = MakeDib(device->memory(), image, width, height);
  device->clip = {0, 0, shownWidth, shownHeight};
  // The visible rows are stored last, so that a decoder has to pass all others.
  return MakeDeviceJob(std::move(device), [dib = std::move(dib)](DeviceFixture& d, int) {
    d.library().StretchDIBits(d.handle(), 0, 0, 0, dib.width, dib.height, 0, 0, dib.width, dib.height, dib.bits,
                              dib.info.data(), nullptr, SRCCOPY, nullptr, &d.mode, &d.clip);
  });
}

// Calls of a page for which another band is responsible.
constexpr int kBelow = 5000;

std::unique_ptr<Job> MakeFigureBelowJob(std::unique_ptr<DeviceFixture> device) {
  std::vector<int16_t> points = {kBelow};
  for (int row = 0; row < 100; ++row) {
    points.push_back(100);
    points.push_back(300);
  }
  device->MakeBrush(Brush::kSolid);
  return MakeDeviceJob(std::move(device), [points = std::move(points)](DeviceFixture& d, int) {
    d.library().Output(d.handle(), OS_ROW_SPANS, 100, points.data(), nullptr, &d.brush, &d.mode, &d.clip);
  });
}

std::unique_ptr<Job> MakeTextBelowJob(std::unique_ptr<DeviceFixture> device) {
  Random random(9);
  std::string line;
  for (int i = 0; i < 130; ++i) line += RandomCharacter(random);
  return MakeDeviceJob(std::move(device), [line, font = MakeRasterFont(8, 16)](DeviceFixture& d, int) {
    d.library().ExtTextOut(d.handle(), 80, kBelow, &d.clip, line.data(), static_cast<int32_t>(line.size()), font.data(),
                           0, &d.mode, nullptr, nullptr, nullptr, 0);
  });
}

std::unique_ptr<Job> MakeImageBelowJob(std::unique_ptr<DeviceFixture> device) {
  DibSource dib = MakeDib(device->memory(), {24, false, false, 1, 1}, 400, 300);
  return MakeDeviceJob(std::move(device), [dib = std::move(dib)](DeviceFixture& d, int) {
    d.library().StretchDIBits(d.handle(), 0, 100, kBelow, 900, 675, 0, 0, dib.width, dib.height, dib.bits,
                              dib.info.data(), nullptr, SRCCOPY, nullptr, &d.mode, &d.clip);
  });
}

std::unique_ptr<Job> MakeSkipJob(std::unique_ptr<DeviceFixture> device, uint32_t kind) {
  switch (kind) {
    case kClippedPixel:
      return MakeDeviceJob(std::move(device),
                           [](DeviceFixture& d, int) { d.library().Pixel(d.handle(), 10, 5000, 0, &d.mode, &d.clip); });
    case kEmptyClip:
      device->MakeBrush(Brush::kSolid);
      device->clip = {5, 5, 5, 5};
      return MakeDeviceJob(std::move(device), [](DeviceFixture& d, int) {
        d.library().BitBlt(d.handle(), 0, 0, nullptr, 0, 0, 1000, 100, PATCOPY, &d.brush, &d.mode, &d.clip);
      });
    case kSpansAbove: return MakeLongSpanListJob(std::move(device), true);
    case kSpansBelow: return MakeLongSpanListJob(std::move(device), false);
    case kImageColumns: return MakeClippedImageJob(std::move(device), false, 20000, 16, 8, 16);
    case kImageRows: return MakeClippedImageJob(std::move(device), false, 64, 20000, 64, 8);
    case kRleRowsAbove: return MakeClippedImageJob(std::move(device), true, 64, 20000, 64, 8);
    case kBox:
      device->MakeBrush(Brush::kSolid);
      return MakeDeviceJob(std::move(device), [](DeviceFixture& d, int) {
        d.library().BitBlt(d.handle(), 100, kBelow, nullptr, 0, 0, 120, 40, PATCOPY, &d.brush, &d.mode, &d.clip);
      });
    case kFigure: return MakeFigureBelowJob(std::move(device));
    case kTextLine: return MakeTextBelowJob(std::move(device));
    default: return MakeImageBelowJob(std::move(device));
  }
}

}  // namespace

void AddCallRows(std::vector<Row>& rows) {
  for (int b = 0; b < kBandCount; ++b) {
    RowSpec spec;
    spec.band = static_cast<Band>(b);
    spec.operation = Operation::kPixel;
    Add(rows, "pixel_read", spec);
    spec.code = R2_COPYPEN;
    Add(rows, "pixel", spec);
    spec.code = R2_XORPEN;
    Add(rows, "pixel_xor", spec);

    spec.operation = Operation::kSpan;
    spec.brush = Brush::kSolid;
    for (const int width : {1, 7, 30}) {
      spec.cellWidth = width;
      spec.code = R2_COPYPEN;
      Add(rows, "span_" + std::to_string(width), spec);
      if (width != 7) continue;
      spec.code = R2_XORPEN;
      Add(rows, "span_7_xor", spec);
      spec.code = R2_COPYPEN;
      spec.brush = Brush::kHatch;
      Add(rows, "span_7_hatch", spec);
      spec.brush = Brush::kSolid;
    }
    spec.cellWidth = 100;
    Add(rows, "output_one_span", spec);

    spec.operation = Operation::kSmallBlt;
    spec.cellWidth = spec.cellHeight = 8;
    spec.code = PATCOPY;
    Add(rows, "patblt_8x8", spec);
    spec.brush = Brush::kPattern8;
    Add(rows, "patblt_8x8_pattern", spec);
    spec.brush = Brush::kNone;
    spec.code = DSTINVERT;
    Add(rows, "invert_8x8", spec);
    spec.code = SRCCOPY;
    spec.source = spec.band == Band::kGray8 ? Source::kGray8 : Source::kRgb24;
    Add(rows, "srccopy_8x8", spec);
    spec.source = Source::kMono;
    Add(rows, "srccopy_8x8_mono", spec);
    spec.source = Source::kNone;

    spec.operation = Operation::kGlyph;
    spec.cellHeight = 16;
    Add(rows, "glyph_transparent_8x16", spec);
    spec.opaqueText = true;
    Add(rows, "glyph_opaque_8x16", spec);

    spec = {};
    spec.band = static_cast<Band>(b);
    spec.operation = Operation::kSkip;
    static constexpr const char* kNames[] = {"skip_pixel",
                                             "skip_empty_clip",
                                             "skip_10000_spans_above",
                                             "skip_10000_spans_below",
                                             "skip_20000_image_columns",
                                             "skip_20000_image_rows",
                                             "skip_20000_rle_rows",
                                             "skip_box",
                                             "skip_figure",
                                             "skip_text_line",
                                             "skip_image"};
    for (spec.code = kClippedPixel; spec.code <= kImage; ++spec.code) Add(rows, kNames[spec.code], spec);
  }
}

RowJob MakeCallJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape) {
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, shape);
  RowJob job;
  switch (spec.operation) {
    case Operation::kPixel: job.job = MakePixelJob(std::move(device), spec.code); break;
    case Operation::kSpan: job.job = MakeSpanJob(std::move(device), spec); break;
    case Operation::kSmallBlt: job.job = MakeSmallBltJob(std::move(device), spec); break;
    case Operation::kGlyph: job.job = MakeGlyphJob(std::move(device), spec); break;
    default: job.job = MakeSkipJob(std::move(device), spec.code); break;
  }
  return job;
}

}  // namespace qnv::bench
