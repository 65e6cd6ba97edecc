// Translates the items of a page into calls of the library: text, spans, and images cut into strips.
#include "qnvtool/paint/page_painter.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <numeric>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/paint/kept_rows.h"
#include "qnvtool/paint/picture_strips.h"

namespace qnv::tool {
namespace {

[[noreturn]] void Refused(const char* function, const std::string& what) {
  throw ToolError(ExitCode::kLibrary, fmt::format("the library refuses {} for {}", function, what));
}

// A draw mode that copies, with a transparent background.
DRAWMODE PlainMode() {
  DRAWMODE mode;
  std::memset(&mode, 0, sizeof mode);
  mode.Rop2 = R2_COPYPEN;
  mode.bkMode = TRANSPARENT;
  return mode;
}

// Whether rows [top, bottom) may touch the band. On a scaled device rows beside the band may be rounded into it.
bool MayTouch(int top, int bottom, const Rect& view) { return bottom > view.top - 2 && top < view.bottom + 2; }

// Whether a 16-bit result reports success.
bool Done(uint32_t result) { return (result & 0xFFFF) == 1; }

// Eight steps from one color to another and back, running down the diagonal.
Color WeaveColor(const Fill& fill, int row, int column) {
  const int step = (row + column) % 8;
  const int weight = step < 4 ? step : 8 - step;  // 0..4
  Color result = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const uint32_t a = fill.color >> shift & 0xFF;
    const uint32_t b = fill.background >> shift & 0xFF;
    result |= (a * static_cast<uint32_t>(4 - weight) + b * static_cast<uint32_t>(weight)) / 4 << shift;
  }
  return result;
}

}  // namespace

PagePainter::PagePainter(const Rasteriser& rasteriser, DeviceHandle* handle, const DeviceChoice& device,
                         const Page& page)
    : rasteriser_(rasteriser), device_(device), pageRect_{0, 0, page.width, page.height} {
  items_.reserve(page.items.size());
  for (const auto& item : page.items) {
    std::visit([&](const auto& one) { items_.emplace_back(Prepare(handle, one)); }, item);
  }
}

void PagePainter::Paint(DeviceHandle* handle, const Rect& view) const {
  for (const auto& item : items_) {
    std::visit([&](const auto& one) { Paint(handle, one, view); }, item);
  }
}

bool PagePainter::ShowsPicture(const Rect& view) const {
  return std::any_of(items_.begin(), items_.end(), [&](const auto& item) {
    const auto* const picture = std::get_if<ReadyPicture>(&item);
    return picture != nullptr && !ShownPart(*picture, view).empty();
  });
}

uint32_t PagePainter::Physical(DeviceHandle* handle, Color color) const {
  return rasteriser_.colorInfo(handle, color, nullptr);
}

PagePainter::ReadyText PagePainter::Prepare(DeviceHandle* handle, const TextLine& line) const {
  ReadyText text{&line, Physical(handle, line.color), Physical(handle, kWhite), {}, line.baseline, line.baseline};
  for (const TextRun& run : line.runs) {
    text.records.push_back(run.codes.empty() ? run.oneByte : run.sheet->Record());
    const FontRecord& font = *text.records.back();
    const int top = line.baseline - run.rise - font.ascent;
    text.top = std::min(text.top, top);
    text.bottom = std::max(text.bottom, top + font.height);
  }
  return text;
}

void PagePainter::Paint(DeviceHandle* handle, const ReadyText& text, const Rect& view) const {
  if (!MayTouch(text.top, text.bottom, view)) return;
  const TextLine& line = *text.line;
  DRAWMODE mode = PlainMode();
  mode.TextColor = text.color;
  mode.bkColor = text.background;
  mode.TBreakExtra = static_cast<int16_t>(line.breakExtra);
  mode.BreakCount = static_cast<int16_t>(line.breakCount);
  mode.BreakErr = 1;  // with this start the line becomes exactly as wide as asked
  int x = line.left;
  for (std::size_t i = 0; i < line.runs.size(); ++i) {
    const TextRun& run = line.runs[i];
    x += run.gap;
    x += PaintRun(handle, run, *text.records[i], x, line.baseline - run.rise, mode, i + 1 == line.runs.size());
  }
}

// Paints a run and returns its advance. The remainder of the justification continues from run to run in `mode`. Drawing
// does not update it, so a run that is followed by another is also measured.
int PagePainter::PaintRun(DeviceHandle* handle, const TextRun& run, const FontRecord& font, int x, int baseline,
                          DRAWMODE& mode, bool last) const {
  if (!run.codes.empty()) {
    const int count = static_cast<int>(run.codes.size());
    const int advance = std::accumulate(run.widths.begin(), run.widths.end(), 0);
    const int32_t drawn = rasteriser_.extTextOut(handle, x, baseline - font.ascent, &pageRect_, run.codes.data(), count,
                                                 font.memory.data(), 0, &mode, nullptr, run.widths.data(), nullptr, 0);
    if (drawn == 0 && advance != 0) Refused("QNVDevExtTextOut", "two-byte text");
    return advance;
  }
  const int count = static_cast<int>(run.latin.size());
  const auto call = [&](int characters) {
    return rasteriser_.extTextOut(handle, x, baseline - font.ascent, &pageRect_, run.latin.data(), characters,
                                  font.memory.data(), 0, &mode, nullptr, nullptr, nullptr, 0);
  };
  if (call(count) == 0 && count != 0) Refused("QNVDevExtTextOut", "text");
  return last ? 0 : static_cast<int16_t>(call(-count) & 0xFFFF);
}

// Realises a fill as a solid, hatched or pattern brush.
PhysicalBrush PagePainter::RealiseBrush(DeviceHandle* handle, const Fill& fill) const {
  LogicalBrush logical{BS_SOLID, fill.color, 0, Physical(handle, fill.background)};
  uint8_t bytes[8 * 8 * 3] = {};
  SourceBitmap bitmap{0, 8, 8, 0, 1, 0, bytes};
  if (fill.kind == Fill::Kind::kHatch) {
    logical.style = BS_HATCHED;
    logical.hatch = static_cast<int16_t>(fill.hatch);
  } else if (fill.kind == Fill::Kind::kBits) {
    bitmap.bmBitsPixel = 1;
    bitmap.bmWidthBytes = 2;
    for (std::size_t row = 0; row < 8; ++row) bytes[row * 2] = fill.bits[row];
  } else if (fill.kind == Fill::Kind::kWeave) {
    // On gray devices the bitmap of a pattern has one byte a pixel, the gray level.
    const int step = device_.isGray() ? 1 : 3;
    bitmap.bmBitsPixel = static_cast<uint8_t>(step * 8);
    bitmap.bmWidthBytes = static_cast<uint16_t>(8 * step);
    for (int i = 0; i < 64; ++i) {
      const uint32_t color = Physical(handle, WeaveColor(fill, i / 8, i % 8));
      for (int byte = 0; byte < step; ++byte) bytes[i * step + byte] = static_cast<uint8_t>(color >> 8 * byte);
    }
  }
  if (bitmap.bmBitsPixel != 0) {
    logical.style = BS_PATTERN;
    logical.colour = reinterpret_cast<uintptr_t>(&bitmap);
  }
  PhysicalBrush brush;
  std::memset(&brush, 0, sizeof brush);
  if (rasteriser_.realizeObject(handle, OBJ_BRUSH, &logical, &brush, nullptr) == 0) {
    Refused("QNVRealizeObject", "a brush");
  }
  return brush;
}

PagePainter::ReadyFigure PagePainter::Prepare(DeviceHandle* handle, const Figure& figure) const {
  ReadyFigure ready;
  std::memset(&ready.pen, 0, sizeof ready.pen);
  std::memset(&ready.brush, 0, sizeof ready.brush);
  const Fill& fill = figure.fill;
  ready.usesPen = fill.kind == Fill::Kind::kPen;
  if (ready.usesPen) {
    const LogicalPen pen{PS_SOLID, 1, 1, fill.color};
    if (rasteriser_.realizeObject(handle, OBJ_PEN, &pen, &ready.pen, nullptr) == 0) {
      Refused("QNVRealizeObject", "a pen");
    }
  } else {
    ready.brush = RealiseBrush(handle, fill);
  }
  ready.mode = PlainMode();
  ready.mode.Rop2 = figure.rop2;
  ready.mode.bkMode = fill.opaque ? OPAQUE : TRANSPARENT;
  ready.mode.TextColor = Physical(handle, fill.color);
  ready.mode.bkColor = Physical(handle, fill.background);
  const SpanRegion region = Clip(figure.region, {0, 0, pageRect_.right, pageRect_.bottom});
  // Where page rows and band rows differ, only banded spans paint every band row of a figure exactly once.
  const uint16_t style = device_.isScaled() ? uint16_t{OS_BANDED_SPANS} : ShortestStyle(region);
  ready.lists = EncodeSpans(region, style);
  ready.top = region.top;
  ready.bottom = region.bottom();
  return ready;
}

void PagePainter::Paint(DeviceHandle* handle, const ReadyFigure& figure, const Rect& view) const {
  if (!MayTouch(figure.top, figure.bottom, view)) return;
  for (const SpanList& list : figure.lists) {
    const uint32_t result =
        rasteriser_.output(handle, list.style, list.count, list.words.data(), figure.usesPen ? &figure.pen : nullptr,
                           figure.usesPen ? nullptr : &figure.brush, &figure.mode, &pageRect_);
    if (!Done(result)) Refused("QNVOutput", fmt::format("a figure in style {}", list.style));
  }
}

// The rows of a strip are in memory at the same time: as many as take some megabytes at 32 bits a pixel.
PagePainter::ReadyPicture PagePainter::Prepare(DeviceHandle*, const Picture& picture) const {
  constexpr std::size_t kMaxStripBytes = std::size_t{8} << 20;
  ReadyPicture ready;
  ready.picture = &picture;
  ready.maxRows = static_cast<int>(std::max<std::size_t>(kMaxStripBytes / DibStride(picture.file->width(), 32), 1));
  const int rows = picture.file->height();
  if (device_.isScaled()) {
    const KeptRows kept(device_.pageDpi, device_.bandDpi);
    const auto isKept = [&](int row) { return kept.Has(row); };
    ready.strips = CutAtKeptRows(rows, picture.place.top, picture.place.height(), isKept, ready.maxRows);
  } else {
    ready.strips = CutIntoStrips(rows, picture.place.top, picture.place.height(), ready.maxRows);
  }
  return ready;
}

// Paints the rows that are shown, a window of the picture at a time.
void PagePainter::PaintUnscaled(DeviceHandle* handle, const ReadyPicture& ready, const Rect& shown,
                                const BandRect& clip, const DRAWMODE& mode) const {
  const Picture& picture = *ready.picture;
  // Of a scaled device, page rows just outside may be rounded into the band.
  const int begin = std::max(shown.top - 2, picture.place.top) - picture.place.top;
  const int end = std::min(shown.bottom + 2, picture.place.bottom) - picture.place.top;
  for (int row = begin; row < end;) {
    const DibWindow window = ready.rows->Window(row, std::min(end - row, ready.maxRows));
    const uint32_t result = rasteriser_.setDIBitsToDevice(handle, picture.place.left, picture.place.top + window.top, 0,
                                                          static_cast<uint32_t>(window.rows), &clip, &mode, window.bits,
                                                          window.info, nullptr);
    // Without a pixel inside clip and band the call has nothing to paint, and says so like an error.
    const bool isShown =
        picture.place.top + window.top < shown.bottom && picture.place.top + window.top + window.rows > shown.top;
    if (!Done(result) && isShown) Refused("QNVDevSetDIBitsToDevice", picture.name);
    row = window.top + window.rows;
  }
}

Rect PagePainter::ShownPart(const ReadyPicture& ready, const Rect& view) {
  return Intersect(Intersect(ready.picture->clip, ready.picture->place), view);
}

void PagePainter::Paint(DeviceHandle* handle, const ReadyPicture& ready, const Rect& view) const {
  const Picture& picture = *ready.picture;
  const PictureFile& file = *picture.file;
  const Rect shown = ShownPart(ready, view);
  if (shown.empty()) {
    // Only a view with pictures may touch the rows of others.
    if (view.top >= picture.place.bottom && ShowsPicture(view)) ready.rows = nullptr;
    return;
  }
  if (ready.rows == nullptr) ready.rows = file.Rows();
  const BandRect clip{picture.clip.left, picture.clip.top, picture.clip.right, picture.clip.bottom};
  const DRAWMODE mode = PlainMode();
  if (picture.rop == SRCCOPY && picture.place.width() == file.width() && picture.place.height() == file.height()) {
    return PaintUnscaled(handle, ready, shown, clip, mode);
  }
  for (const Strip& strip : ready.strips) {
    if (strip.top >= shown.bottom || strip.top + strip.rows <= shown.top) continue;
    const DibWindow window = ready.rows->Window(strip.sourceTop, strip.sourceRows);
    // Source rows count from the bottom of the window, strips from the top of the picture.
    const int srcY = window.rows - (strip.sourceTop - window.top) - strip.sourceRows;
    const uint32_t result = rasteriser_.stretchDIBits(handle, 0, picture.place.left, strip.top, picture.place.width(),
                                                      strip.rows, 0, srcY, file.width(), strip.sourceRows, window.bits,
                                                      window.info, nullptr, picture.rop, nullptr, &mode, &clip);
    if (!Done(result)) Refused("QNVStretchDIBits", picture.name);
  }
}

}  // namespace qnv::tool
