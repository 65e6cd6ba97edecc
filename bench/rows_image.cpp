// Rows of images: every depth, mirrored or not, several scales, under three kinds of raster code.
#include <algorithm>

#include "device_fixture.h"
#include "dib_source.h"

namespace qnv::bench {
namespace {

struct Depth {
  uint16_t bits;
  bool rle;
  const char* name;
};

constexpr Depth kDepths[] = {{1, false, "1"},   {4, false, "4"},   {8, false, "8"},  {16, false, "16"},
                             {24, false, "24"}, {32, false, "32"}, {8, true, "rle8"}};

struct Scale {
  int sourceParts, targetParts;
  const char* name;
};

// The sizes of source and destination are in these proportions.
constexpr Scale kScales[] = {{1, 1, "1to1"},      {1, 2, "x2"},   {1, 4, "x4"},
                             {100, 137, "x1.37"}, {2, 1, "half"}, {33, 10, "third"}};

struct Code {
  uint32_t code;
  LimitKind limit;
  const char* name;
};

// An exclusive or keeps the content of the band random; other codes would soon turn it black or white.
constexpr Code kCodes[] = {{SRCCOPY, LimitKind::kCopy, "copy"},
                           {SRCINVERT, LimitKind::kReadModifyWrite, "rop"},
                           {ROP_MINIMUM, LimitKind::kReadModifyWrite, "min"}};

// The rows that are measured on the special devices too. They share the converters with the plain ones, so a few
// suffice.
bool IsCore(const Depth& depth, const Scale& scale, bool mirrored) {
  const bool depthShown = depth.bits == 24 || (depth.bits == 8 && !depth.rle) || depth.bits == 1;
  const bool scaleShown = scale.sourceParts != 100 && scale.targetParts != 4 && scale.sourceParts != 33;
  return depthShown && scaleShown && !mirrored;
}

}  // namespace

void AddImageRows(std::vector<Row>& rows) {
  for (int b = 0; b < kBandCount; ++b) {
    const Band band = static_cast<Band>(b);
    const bool everything = band == Band::kBgr24 || band == Band::kGray8;
    for (const Depth& depth : kDepths) {
      for (const bool mirrored : {false, true}) {
        for (const Scale& scale : kScales) {
          if (!everything && !IsCore(depth, scale, mirrored)) continue;
          for (const Code& code : kCodes) {
            // On scaled devices the extended codes paint nothing.
            if (IsScaled(band) && code.code == ROP_MINIMUM) continue;
            RowSpec spec;
            spec.operation = Operation::kImage;
            spec.band = band;
            spec.code = code.code;
            spec.limit = code.limit;
            spec.image = {depth.bits, depth.rle, mirrored, scale.sourceParts, scale.targetParts};
            // Reading one bit a pixel takes hardly any time.
            if (depth.bits == 1 && code.limit == LimitKind::kCopy) spec.limit = LimitKind::kStore;
            rows.push_back({std::string("stretch_") + depth.name + (mirrored ? "_mirror_" : "_fwd_") + scale.name +
                                "_" + code.name + "_" + BandName(band),
                            spec, RectangleShapes()});
          }
        }
      }
    }
  }
}

RowJob MakeImageJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape) {
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, shape);
  const ShapeInfo& info = Info(shape);
  const PageRect rect = RectOnPage(*device, shape);
  DibSource dib =
      MakeDib(memory, spec.image, SourceExtent(spec.image, rect.width), SourceExtent(spec.image, rect.height));
  RowJob job;
  job.amounts.bytes = 1.0 * info.width * info.height * device->bytesPerPixel();
  // Of several source rows for one band row only the last need be read.
  const double rowBytes = static_cast<double>(dib.size) / dib.height;
  job.amounts.sourceBytes =
      spec.image.rle ? static_cast<double>(dib.size) : rowBytes * std::min(dib.height, info.height);
  const int x = spec.image.mirrored ? rect.x + rect.width : rect.x;
  const int width = spec.image.mirrored ? -rect.width : rect.width;
  job.job = MakeDeviceJob(std::move(device), [=, dib = std::move(dib), code = spec.code](DeviceFixture& d, int) {
    d.library().StretchDIBits(d.handle(), 0, x, rect.y, width, rect.height, 0, 0, dib.width, dib.height, dib.bits,
                              dib.info.data(), nullptr, code, nullptr, &d.mode, &d.clip);
  });
  return job;
}

}  // namespace qnv::bench
