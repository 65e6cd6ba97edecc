// Rows of transfers with a source: operations of two operands by name, those of three by number.
#include <cstdio>

#include "device_fixture.h"

namespace qnv::bench {
namespace {

struct SourceName {
  Source source;
  const char* name;
};

constexpr SourceName kSources[] = {{Source::kRgb24, "rgb24"}, {Source::kGray8, "gray8"}, {Source::kMono, "mono"}};

// Whether a source is measured on a band: byte sources on gray bands, color sources on color bands, one-bit ones on
// both.
bool Fits(Source source, Band band) {
  return source == Source::kMono || (source == Source::kGray8) == (band == Band::kGray8);
}

struct CodeName {
  uint32_t code;
  const char* name;
};

constexpr CodeName kTwoOperandCodes[] = {
    {SRCCOPY, "srccopy"},   {SRCAND, "srcand"},         {SRCPAINT, "srcpaint"},       {SRCINVERT, "srcinvert"},
    {SRCERASE, "srcerase"}, {NOTSRCCOPY, "notsrccopy"}, {NOTSRCERASE, "notsrcerase"}, {MERGEPAINT, "mergepaint"},
};

// Copies of one-bit sources store much more than they read, so stores limit them.
LimitKind LimitOf(uint32_t code, Source source) {
  if (code != SRCCOPY && code != NOTSRCCOPY) return LimitKind::kReadModifyWrite;
  return source == Source::kMono ? LimitKind::kStore : LimitKind::kCopy;
}

// A source in the shared source memory, with rows padded to 16 bits.
SourceBitmap MakeSource(Memory& memory, Source source, int width, int height) {
  SourceBitmap bitmap = {};
  bitmap.bmWidth = static_cast<int16_t>(width);
  bitmap.bmHeight = static_cast<int16_t>(height);
  bitmap.bmPlanes = 1;
  bitmap.bmBitsPixel = source == Source::kRgb24 ? 24 : source == Source::kGray8 ? 8 : 1;
  bitmap.bmWidthBytes = static_cast<uint16_t>((width * bitmap.bmBitsPixel + 15) / 16 * 2);
  bitmap.bmBits = memory.source();
  memory.FillSource(static_cast<std::size_t>(bitmap.bmWidthBytes) * static_cast<std::size_t>(height));
  return bitmap;
}

}  // namespace

void AddCopyRows(std::vector<Row>& rows) {
  for (int b = 0; b < kBandCount; ++b) {
    const Band band = static_cast<Band>(b);
    for (const CodeName& code : kTwoOperandCodes) {
      const bool everywhere = code.code == SRCCOPY || code.code == SRCAND;
      if (!everywhere && band != Band::kBgr24 && band != Band::kGray8) continue;
      for (const SourceName& source : kSources) {
        if (!Fits(source.source, band)) continue;
        RowSpec spec;
        spec.band = band;
        spec.source = source.source;
        spec.code = code.code;
        spec.limit = LimitOf(code.code, source.source);
        rows.push_back({std::string(code.name) + "_" + source.name + "_" + BandName(band), spec, RectangleShapes()});
      }
    }
  }
}

void AddRop3Rows(std::vector<Row>& rows) {
  // Measured one by one: the ternary codes that drawings use, and two that are long to evaluate. The others on request.
  static constexpr uint8_t kShown[] = {0xB8, 0xE2, 0xCA, 0xC0, 0xFB, 0x6A, 0x96, 0x69};
  for (int b = 0; b < kBandCount; ++b) {
    const Band band = static_cast<Band>(b);
    const bool everything = band == Band::kBgr24 || band == Band::kGray8;
    for (const SourceName& source : kSources) {
      if (!Fits(source.source, band)) continue;
      RowSpec spec;
      spec.band = band;
      spec.source = source.source;
      spec.brush = Brush::kPattern8;
      spec.limit = LimitKind::kReadModifyWrite;
      const std::string end = std::string("_") + source.name + "_pattern_" + BandName(band);
      for (uint32_t index = 0; index < 256; ++index) {
        if (index == 0xAA) continue;  // paints nothing
        bool shown = false;
        for (const uint8_t code : kShown) shown = shown || code == index;
        spec.code = index << 16;
        spec.detail = !shown;
        if (!everything && index != 0xB8) continue;
        char name[16];
        std::snprintf(name, sizeof name, "rop_%02x", static_cast<unsigned>(index));
        rows.push_back({name + end, spec, RectangleShapes()});
      }
      if (!everything) continue;
      spec.detail = false;
      spec.operation = Operation::kBltAllCodes;
      rows.push_back({"rop_all" + end, spec, {Shape::kTile, Shape::kBand1200}});
    }
  }
}

RowJob MakeBltJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape) {
  auto device = std::make_unique<DeviceFixture>(library, memory, spec.band, shape, spec.brush == Brush::kPattern16);
  device->MakeBrush(spec.brush);
  const PageRect rect = RectOnPage(*device, shape);
  RowJob job;
  SourceBitmap source = {};
  if (spec.source != Source::kNone) {
    source = MakeSource(memory, spec.source, rect.width, rect.height);
    // On a scaled device every other row is dropped unread.
    job.amounts.sourceBytes = 1.0 * source.bmWidthBytes * Info(shape).height;
  }
  job.amounts.bytes = 1.0 * Info(shape).width * Info(shape).height * device->bytesPerPixel();
  job.job = MakeDeviceJob(std::move(device), [rect, source, code = spec.code](const DeviceFixture& d, int) {
    d.library().BitBlt(d.handle(), rect.x, rect.y, &source, 0, 0, rect.width, rect.height, code, &d.brush, &d.mode,
                       &d.clip);
  });
  return job;
}

}  // namespace qnv::bench
