// The model of every device with one band: plain 24-bit, plain 8-bit and resolution-mapping. What a mapping
// device does differently is asked for by name (CallerBand, Kept, ...), so that each rule stands once.
#pragma once

#include <functional>
#include <vector>

#include "reference/arithmetic.h"
#include "reference/fill_pattern.h"
#include "reference/image_walk.h"
#include "reference/model.h"

namespace qnv::reference {

// Span lists as the host writes them, taken apart without any clipping.
enum class RowKind {
  kOneRow,   // the row is mapped by itself
  kBand,     // top and bottom are mapped, the rows between follow
  kThinned,  // a row that the band does not keep is dropped
};

struct CallerSpan {
  RowKind kind;
  int top, bottom;  // bottom exclusive; top + 1 unless kBand
  int left, right;
};

using SpanList = std::vector<CallerSpan>;

bool IsSpanStyle(uint32_t style);
bool IsMarkerStyle(uint32_t style);

// In painting order. Requires: the style is a span style, and there are points.
SpanList DecodeSpans(uint32_t style, uint32_t count, const int16_t* points);

// The two mappings of a device that draws at one resolution and keeps its band at another.
class ResolutionMap {
 public:
  ResolutionMap(int from, int to);
  int ToBand(int value) const { return MulDiv(value, to_, from_); }
  int ToPage(int value) const { return MulDiv(value, from_, to_); }
  int Kept(int value) const;         // band coordinate, or -1 for a dropped one
  int TextColumn(int column) const;  // may be negative; kDropped for a dropped one
  static constexpr int kDropped = -0x7FFFFFFF;

 private:
  int from_;
  int to_;
  std::vector<int64_t> kept_;  // by position within an inch; negative: dropped
};

class BandModel : public Model {
 public:
  BandModel(const DeviceDescription& description, const BandRect& bandRect, Plane band);

  const Plane& band() const override { return plane_; }
  void SetContents(const std::vector<uint8_t>& band, const std::vector<uint8_t>&) override { plane_.SetBytes(band); }
  uint32_t Control(uint32_t code, const void* data) override;
  uint32_t ColorInfo(uint32_t color) const override;
  uint32_t RealizeObject(uint32_t kind, const void* input, void* output) const override;
  uint32_t Pixel(int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode, const BandRect* clip) override;
  uint32_t BitBlt(const BlitArgs& args) override;
  uint32_t Output(const OutputArgs& args) override;
  int32_t ExtTextOut(const TextArgs& args) override;
  uint32_t StretchDIBits(const ImageArgs& args) override;

  // Parts that the dual-plane model drives itself.
  const DeviceDescription& description() const { return description_; }
  const Rect& rect() const { return rect_; }
  Point origin() const { return origin_; }
  void set_origin(Point origin) { origin_ = origin; }
  void FillStart(std::size_t count, uint8_t value) { plane_.FillStart(count, value); }
  void Put(int column, int row, uint32_t value);  // re-grays where the device does
  void PaintSpans(const FillPattern& pattern, const SpanList& spans, const Rect& callerClip);
  void StoreImageRow(const ImageWalk& walk, const ImageWalk::Row& row);
  void MinimumImageRow(const ImageWalk& walk, const ImageWalk::Row& row, const std::vector<Rgb>& colors);
  // Hands each destination row of a source row to `blit`: a transfer without a clip, from a bitmap of one row.
  void RowBlits(const ImageWalk& walk, const ImageWalk::Row& row, const std::vector<Rgb>& colors, const ImageArgs& args,
                uint32_t rop, const std::function<void(const BlitArgs&)>& blit) const;

 private:
  struct Spot {
    int column, row;
  };
  bool scaled() const { return map_ != nullptr; }
  bool gray() const;         // logical colors turn into gray levels
  bool inPlaceGray() const;  // written pixels turn gray
  Rect CallerBand() const;
  bool Kept(int x, int y, Spot* spot) const;  // caller position relative to CallerBand's corner
  void FillOpaqueRect(const Rect& rect, const DRAWMODE* drawMode);
  uint32_t ScaledCopy(ImageWalk& walk);
  uint32_t RunImage(ImageWalk& walk, const ImageArgs& args);
  void CopyColumns(int left, int right, int fromRow, int toRow);
  bool MapTextPixel(int x, int y, Spot* spot) const;
  struct GlyphRun;
  int32_t RunGlyphs(const GlyphRun& run);
  void PaintGlyph(const GlyphRun& run, int x, int width, const uint8_t* glyph);

  DeviceDescription description_;
  Rect rect_;
  Point origin_{0, 0};
  Plane plane_;
  FillPattern pattern_;
  std::shared_ptr<const ResolutionMap> map_;  // null on plain devices
};

}  // namespace qnv::reference
