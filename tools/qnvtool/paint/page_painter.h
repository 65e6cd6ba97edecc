// Paints the items of a page by calls of the rasteriser.
#pragma once

#include <vector>

#include "qnvtool/layout/page.h"
#include "qnvtool/paint/device_choice.h"
#include "qnvtool/paint/picture_strips.h"
#include "qnvtool/paint/rasteriser.h"
#include "qnvtool/paint/span_list.h"

namespace qnv::tool {

class PagePainter {
 public:
  // Realises pens and brushes and encodes spans once for all bands. Everything named must outlive the painter.
  PagePainter(const Rasteriser& rasteriser, DeviceHandle* handle, const DeviceChoice& device, const Page& page);

  // Calls the rasteriser for every item that touches `view`, the part of the page that the band shows. Throws
  // ToolError (library) when a call is refused.
  void Paint(const Rect& view) const;

 private:
  // Items with everything that is the same for all bands: realised objects, encoded spans, strips, physical colors.
  // top, bottom: the page rows that an item may touch.
  struct ReadyFigure {
    PhysicalPen pen;
    PhysicalBrush brush;
    bool usesPen = false;
    DRAWMODE mode;
    std::vector<SpanList> lists;
    int top = 0;
    int bottom = 0;
  };
  struct ReadyPicture {
    const Picture* picture = nullptr;
    std::vector<Strip> strips;
    int maxRows = 0;                            // of the picture, in memory at a time
    mutable std::shared_ptr<PictureRows> rows;  // from the first band that shows the picture to the last
  };
  struct ReadyText {
    const TextLine* line = nullptr;
    uint32_t color = 0;
    std::vector<std::shared_ptr<const FontRecord>> records;  // of each run
    int top = 0;
    int bottom = 0;
  };

  ReadyText Prepare(const TextLine& line) const;
  ReadyFigure Prepare(const Figure& figure) const;
  ReadyPicture Prepare(const Picture& picture) const;
  PhysicalBrush RealiseBrush(const Fill& fill) const;
  uint32_t Physical(Color color) const;

  void Paint(const ReadyText& text, const Rect& view) const;
  void Paint(const ReadyFigure& figure, const Rect& view) const;
  void Paint(const ReadyPicture& picture, const Rect& view) const;
  void PaintUnscaled(const ReadyPicture& picture, const Rect& shown, const BandRect& clip, const DRAWMODE& mode) const;
  int PaintRun(const TextRun& run, const FontRecord& font, int x, int baseline, DRAWMODE& mode, bool last) const;

  const Rasteriser& rasteriser_;
  DeviceHandle* const handle_;
  const DeviceChoice& device_;
  const BandRect pageRect_;
  std::vector<std::variant<ReadyText, ReadyFigure, ReadyPicture>> items_;
};

}  // namespace qnv::tool
