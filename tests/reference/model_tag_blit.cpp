// Which pixels a bit-block transfer tags.
#include "reference/dual_plane_model.h"

namespace qnv::reference {
namespace {

using test::TagRule;

constexpr uint32_t kSourceWhereOne = 0x00E20746;  // pattern where the source is 1, else destination

// Does this cell of the brush put down a color other than the one to skip?
bool CellPaints(uint32_t cell, uint32_t background, uint32_t skip) {
  return (cell >> 24) != 0 ? (cell & 0xFFFFFF) != skip : background != skip;
}

}  // namespace

uint32_t DualPlaneModel::BitBlt(const BlitArgs& args) {
  if (args.clip == nullptr) return 1;
  if (!TagBlt(args, false)) return 0;
  return color_.BitBlt(args);
}

bool DualPlaneModel::TagBlt(const BlitArgs& args, bool image) {
  const uint8_t tag = image ? QNV_TAG_IMAGE : QNV_TAG_GRAPHICS;
  if (image) uniform_ = false;
  if (uniform_) return true;
  const auto fill = [&](uint8_t value) {
    FillTagRect(value, args.destX, args.destY, args.width, args.height, ToRect(*args.clip));
    return true;
  };
  switch (test::TagRuleOf(args.rop >> 16 & 0xFF)) {
    case TagRule::kImageUnlessWhite: return TagFromSource(tag, args, kWhite);
    case TagRule::kImageUnlessBlack: return TagFromSource(tag, args, kBlack);
    case TagRule::kGraphicsUnlessWhite: return TagFromSource(QNV_TAG_GRAPHICS, args, kWhite);
    case TagRule::kGraphicsUnlessBlack: return TagFromSource(QNV_TAG_GRAPHICS, args, kBlack);
    case TagRule::kBrushUnlessWhite: return TagFromBrush(args, kWhite);
    case TagRule::kBrushUnlessBlack: return TagFromBrush(args, kBlack);
    case TagRule::kPatPaint: return TagFromBrush(args, kBlack) && TagFromSource(tag, args, kWhite);
    case TagRule::kFillGraphics: return fill(QNV_TAG_GRAPHICS);
    case TagRule::kFillImage: return fill(tag);
    case TagRule::kNothing: break;
  }
  return true;
}

Rect DualPlaneModel::Target(const BlitArgs& args) const {
  const Rect target{args.destX, args.destY, args.destX + args.width, args.destY + args.height};
  return Shift(target, tags_.origin());
}

void DualPlaneModel::TagWhere(const Rect& area, uint8_t tag, const auto& where) {
  const Rect& band = tags_.rect();
  const Rect visible = Intersect(area, band);
  for (int y = visible.top; y < visible.bottom; ++y) {
    for (int x = visible.left; x < visible.right; ++x) {
      if (where(x, y)) tags_.Put(x - band.left, y - band.top, tag);
    }
  }
}

void DualPlaneModel::FillTagRect(uint8_t value, int x, int y, int width, int height, const Rect& clip) {
  Rect area = Shift({x, y, Sum(x, width), Sum(y, height)}, tags_.origin());
  if (!AllZero(clip)) {
    Rect widened = Shift(clip, tags_.origin());
    if (area.left < 0) widened.left = Sum(widened.left, area.left);
    if (area.top < 0) widened.top = Sum(widened.top, area.top);
    area = Intersect(area, widened);
  }
  TagWhere(area, value, [](int, int) { return true; });
}

bool DualPlaneModel::TagFromSource(uint8_t tag, const BlitArgs& args, uint32_t skip) {
  if (args.source == nullptr) return true;  // the color plane paints nothing either
  const SourceBitmap& source = *args.source;
  if (source.bmPlanes == 1 && source.bmBitsPixel == 1) {
    if (args.drawMode == nullptr) return true;
    DRAWMODE mode = *args.drawMode;
    const bool backgroundPaints = mode.bkColor != skip;
    const bool textPaints = mode.TextColor != skip;
    if (!backgroundPaints && !textPaints) return true;
    mode.bkColor = backgroundPaints ? 0xFFFFFF : 0;
    mode.TextColor = textPaints ? 0xFFFFFF : 0;
    PhysicalBrush brush{};
    brush.style = BS_SOLID;
    brush.patternDepth = 8;
    brush.colour = tag * 0x010101u;
    BlitArgs tagArgs = args;
    tagArgs.rop = kSourceWhereOne;
    tagArgs.brush = &brush;
    tagArgs.drawMode = &mode;
    tags_.BitBlt(tagArgs);
    return true;
  }
  if (source.bmPlanes != 1 || source.bmBitsPixel != 24) return false;

  // The source is counted from the corner before clipping; an edge of 0 does not limit.
  const Rect clip = ToRect(*args.clip);
  const Point origin = tags_.origin();
  const Rect target = Target(args);
  Rect area = target;
  if (clip.left != 0) area.left = std::max(area.left, clip.left + origin.x);
  if (clip.top != 0) area.top = std::max(area.top, clip.top + origin.y);
  if (clip.right != 0) area.right = std::min(area.right, clip.right + origin.x);
  if (clip.bottom != 0) area.bottom = std::min(area.bottom, clip.bottom + origin.y);
  TagWhere(area, tag, [&](int x, int y) {
    const int sourceX = args.srcX + x - target.left;
    const int sourceY = args.srcY + y - target.top;
    if (!Contains({0, 0, source.bmWidth, source.bmHeight}, sourceX, sourceY)) return false;
    const uint8_t* p = static_cast<const uint8_t*>(source.bmBits) + sourceY * source.bmWidthBytes + 3 * sourceX;
    return (p[0] | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16) != skip;
  });
  return true;
}

bool DualPlaneModel::TagFromBrush(const BlitArgs& args, uint32_t skip) {
  if (args.brush == nullptr) return true;
  const PhysicalBrush& brush = *args.brush;
  if (brush.style == BS_HOLLOW) return true;
  if (brush.style > BS_PATTERN) return false;
  if (brush.style == BS_SOLID) {
    if (brush.colour == skip) return true;
    FillTagRect(QNV_TAG_GRAPHICS, args.destX, args.destY, args.width, args.height, ToRect(*args.clip));
    return true;
  }
  if (args.drawMode == nullptr) return true;
  const uint32_t background = args.drawMode->bkColor;
  if (brush.style == BS_HATCHED && brush.colour == skip && background == skip) return true;

  // Where the cells paint, aligned as the color plane aligns its fill.
  FillPattern painting;
  painting.style = kMasked;
  painting.SetCells(brush, [&](uint32_t cell) -> FillPattern::MaskedColor {
    return {0, CellPaints(cell, background, skip)};
  });
  if (!painting.HasCells()) return true;
  const Rect clip = Shift(ToRect(*args.clip), tags_.origin());
  const Rect area = AllZero(clip) ? Target(args) : Intersect(Target(args), clip);
  TagWhere(area, QNV_TAG_GRAPHICS,
           [&](int x, int y) { return painting.Paints(x - tags_.rect().left, y - tags_.rect().top); });
  return true;
}

}  // namespace qnv::reference
