// Writes the tags of bit-block transfers. Which source pixels or brush cells count as painting is decided by a color
// that does not, the skip color of the operation's rule.
#include "device/dual_plane/tag_plane.h"

#include <cstring>

#include "color/color_forms.h"
#include "device/dual_plane/tag_brushes.h"
#include "device/dual_plane/tag_rules.h"
#include "raster/bit_blt.h"
#include "raster/rop3.h"
#include "raster/transfer_geometry.h"

namespace qnv {
namespace {

constexpr uint32_t kReplaceMasked = 0x00E20746;  // the pattern where the source is 1, else the destination
constexpr uint32_t kAndPattern = 0x00A000C9;
constexpr uint32_t kOrPattern = 0x00FA0089;

// The clip with the origin added. Intended: an edge that the host passes as 0 does not limit.
Rect OpenEdges(const Rect& clip, Origin origin) {
  const Rect shifted = Shifted(clip, origin.x, origin.y);
  return {clip.left != 0 ? shifted.left : INT32_MIN, clip.top != 0 ? shifted.top : INT32_MIN,
          clip.right != 0 ? shifted.right : INT32_MAX, clip.bottom != 0 ? shifted.bottom : INT32_MAX};
}

// Tags the pixels of a 24-bit source that are not of the skip color.
void TagFromPixels(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip) {
  // With a negative size the rectangle below could wrap to one that contains everything.
  if (a.source->bmWidth <= 0 || a.source->bmHeight <= 0) return;
  const BandView& band = plane.band;
  const Origin origin = plane.paint.origin;
  const int32_t x = WrapAdd(a.destX, origin.x);
  const int32_t y = WrapAdd(a.destY, origin.y);
  Rect area{x, y, WrapAdd(x, a.width), WrapAdd(y, a.height)};
  const Rect source =
      Shifted(Rect{0, 0, a.source->bmWidth, a.source->bmHeight}, WrapSubtract(x, a.srcX), WrapSubtract(y, a.srcY));
  if (!RectIntersect(area, area, band.rect) || !RectIntersect(area, area, source) ||
      !RectIntersect(area, area, OpenEdges(*a.clip, origin))) {
    return;
  }
  const auto* bits = static_cast<const uint8_t*>(a.source->bmBits);
  for (int32_t row = area.top; row < area.bottom; ++row) {
    const uint8_t* const pixel =
        bits + std::ptrdiff_t{row - source.top} * a.source->bmWidthBytes + std::ptrdiff_t{area.left - source.left} * 3;
    // The skip color is black or white, so one byte stands for all three.
    plane.paint.rows.image->MarkRow24(band.At(area.left, row), pixel, static_cast<std::size_t>(area.right - area.left),
                                      static_cast<uint8_t>(skip), tag);
  }
}

// Tags the pixels of a one-bit source whose color is not the skip color: a transfer that writes the tag through the
// source as a mask.
void TagFromBits(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip) {
  DRAWMODE mode = *a.drawMode;
  mode.bkColor = a.drawMode->bkColor != skip ? kWhite : 0;
  mode.TextColor = a.drawMode->TextColor != skip ? kWhite : 0;
  if (mode.bkColor == 0 && mode.TextColor == 0) return;
  PhysicalBrush brush;
  MakeTagBrush(nullptr, mode, tag, &brush);
  BltArguments tagging = a;
  tagging.rop = kReplaceMasked;
  tagging.brush = &brush;
  tagging.drawMode = &mode;
  BitBlt8(plane.paint, plane.band, tagging);
}

// Tags the pixels whose brush cell is not of the skip color. A transfer cannot leave single cells out, so it takes two:
// the first clears the tags of the painting cells with AND, the second sets them with OR.
void TagFromCells(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip) {
  const bool backgroundPaints = a.drawMode->bkColor != skip;
  const PhysicalBrush cells = MakeCellBrush(*a.brush, BS_PATTERN, 1, kWhite, 0, [=](uint32_t cell) {
    return (cell & kForeground) != 0 ? (cell & kColorBits) != skip : backgroundPaints;
  });
  DRAWMODE mode = *a.drawMode;
  BltArguments tagging = a;
  tagging.source = nullptr;
  tagging.brush = &cells;
  tagging.drawMode = &mode;
  tagging.rop = kAndPattern;
  mode.bkColor = 0;  // the color of painting cells
  mode.TextColor = kWhite;
  BitBlt8(plane.paint, plane.band, tagging);
  tagging.rop = kOrPattern;
  mode.bkColor = TagColor(tag);
  mode.TextColor = 0;
  BitBlt8(plane.paint, plane.band, tagging);
}

}  // namespace

void FillTagRect(const TagPlane& plane, uint8_t value, int32_t x, int32_t y, int32_t width, int32_t height,
                 const Rect& clip) {
  const BandView& band = plane.band;
  const Origin origin = plane.paint.origin;
  const int32_t left = WrapAdd(x, origin.x);
  const int32_t top = WrapAdd(y, origin.y);
  Rect area{left, top, WrapAdd(left, width), WrapAdd(top, height)};
  if (!IsAllZero(clip) && !RectIntersect(area, area, WidenedClip(Shifted(clip, origin.x, origin.y), left, top))) return;
  if (!RectIntersect(area, area, band.rect)) return;
  // Rows that follow each other without padding are filled as one.
  std::size_t pixels = static_cast<std::size_t>(area.right - area.left);
  if (band.IsWholeRow(area.right - area.left)) {
    pixels *= static_cast<std::size_t>(area.bottom - area.top);
    area.bottom = area.top + 1;
  }
  for (int32_t row = area.top; row < area.bottom; ++row) std::memset(band.At(area.left, row), value, pixels);
}

namespace {

// Tags the destination pixels whose source pixel is not of the skip color. False for a source that has neither 24 bits
// nor one bit in a single plane. A source that cannot be read (null, or one-bit without a draw mode) is not painted
// either, so nothing is tagged.
bool TagFromSource(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip) {
  if (a.source == nullptr) return true;
  const bool oneBit = a.source->bmBitsPixel == 1;
  if (a.source->bmPlanes != 1 || (!oneBit && a.source->bmBitsPixel != 24)) return false;
  if (a.source->bmBits == nullptr) return true;
  if (!oneBit) {
    TagFromPixels(plane, tag, a, skip);
  } else if (a.drawMode != nullptr) {
    TagFromBits(plane, tag, a, skip);
  }
  return true;
}

// Tags the destination pixels whose brush cell is not of the skip color. False for a style above 3. Nothing is tagged
// without a brush, or for a hatch or pattern without the draw mode that gives it its colors.
bool TagFromBrush(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip) {
  if (a.brush == nullptr) return true;
  switch (a.brush->style) {
    case BS_SOLID:
      if (a.brush->colour != skip) FillTagRect(plane, tag, a.destX, a.destY, a.width, a.height, *a.clip);
      return true;
    case BS_HOLLOW: return true;
    case BS_HATCHED:
    case BS_PATTERN:
      if (a.drawMode == nullptr) return true;
      if (a.brush->style == BS_HATCHED && a.brush->colour == skip && a.drawMode->bkColor == skip) return true;
      TagFromCells(plane, tag, a, skip);
      return true;
    default: return false;
  }
}

}  // namespace

bool TagTransferOn(const TagPlane& plane, uint8_t callersTag, const BltArguments& a) {
  const TransferTagRule rule = TagRuleOfRop3(RopIndex(a.rop));
  const uint8_t tag = rule.takesTag ? callersTag : uint8_t{QNV_TAG_GRAPHICS};
  switch (rule.action) {
    case TagAction::kNothing: return true;
    case TagAction::kFill: FillTagRect(plane, tag, a.destX, a.destY, a.width, a.height, *a.clip); return true;
    case TagAction::kSource: return TagFromSource(plane, tag, a, rule.skip);
    case TagAction::kBrush: return TagFromBrush(plane, QNV_TAG_GRAPHICS, a, rule.skip);
    case TagAction::kBrushThenSource: break;
  }
  return TagFromBrush(plane, QNV_TAG_GRAPHICS, a, 0) && TagFromSource(plane, tag, a, rule.skip);
}

}  // namespace qnv
