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
  // Realises pens and brushes and encodes spans once for all bands, with a device of this kind. Everything named but
  // the device must outlive the painter.
  PagePainter(const Rasteriser& rasteriser, DeviceHandle* handle, const DeviceChoice& device, const Page& page);

  // Calls the rasteriser for every item that touches `view`, the part of the page that the band of the device shows.
  // Throws ToolError (library) when a call is refused. Several threads may call it, each with a device of its own, but
  // views that show pictures must be painted one after the other, as the files are read; from the top of the page to
  // the bottom is fastest.
  void Paint(DeviceHandle* handle, const Rect& view) const;

  // Whether a part of a picture is in `view`.
  bool ShowsPicture(const Rect& view) const;

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
    uint32_t background = 0;
    std::vector<std::shared_ptr<const FontRecord>> records;  // of each run
    int top = 0;
    int bottom = 0;
  };

  ReadyText Prepare(DeviceHandle* handle, const TextLine& line) const;
  ReadyFigure Prepare(DeviceHandle* handle, const Figure& figure) const;
  ReadyPicture Prepare(DeviceHandle* handle, const Picture& picture) const;
  PhysicalBrush RealiseBrush(DeviceHandle* handle, const Fill& fill) const;
  uint32_t Physical(DeviceHandle* handle, Color color) const;

  static Rect ShownPart(const ReadyPicture& picture, const Rect& view);
  void Paint(DeviceHandle* handle, const ReadyText& text, const Rect& view) const;
  void Paint(DeviceHandle* handle, const ReadyFigure& figure, const Rect& view) const;
  void Paint(DeviceHandle* handle, const ReadyPicture& picture, const Rect& view) const;
  void PaintUnscaled(DeviceHandle* handle, const ReadyPicture& picture, const Rect& shown, const BandRect& clip,
                     const DRAWMODE& mode) const;
  int PaintRun(DeviceHandle* handle, const TextRun& run, const FontRecord& font, int x, int baseline, DRAWMODE& mode,
               bool last) const;

  const Rasteriser& rasteriser_;
  const DeviceChoice& device_;
  const BandRect pageRect_;
  std::vector<std::variant<ReadyText, ReadyFigure, ReadyPicture>> items_;
};

}  // namespace qnv::tool
