// Which pixels a bit-block transfer tags.
#include <cstring>

#include "reference/dual_plane_model.h"

namespace qnv::reference {
namespace {

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
  uint32_t kind = args.rop >> 16 & 0xFF;
  if (kind < 0x80) kind = ~kind & 0xFF;
  const auto fill = [&](uint8_t value) {
    FillTagRect(value, args.destX, args.destY, args.width, args.height, ToRect(*args.clip));
    return true;
  };
  switch (kind) {
    case 0x88:
    case 0xBB: return TagFromSource(tag, args, kWhite);
    case 0x99:
    case 0xA5:
    case 0xAA: return true;
    case 0xA0:
    case 0xAF: return TagFromBrush(args, kWhite);
    case 0xB8: return TagFromSource(QNV_TAG_GRAPHICS, args, kWhite);
    case 0xDD:
    case 0xEE: return TagFromSource(tag, args, kBlack);
    case 0xE2:
    case 0xEA: return TagFromSource(QNV_TAG_GRAPHICS, args, kBlack);
    case 0xF0: return fill(QNV_TAG_GRAPHICS);
    case 0xF5:
    case 0xFA: return TagFromBrush(args, kBlack);
    case 0xFB: return TagFromBrush(args, kBlack) && TagFromSource(tag, args, kWhite);
    default: return fill(tag);
  }
}

void DualPlaneModel::FillTagRect(uint8_t value, int x, int y, int width, int height, const Rect& clip) {
  const Point origin = tags_.origin();
  const int left = Sum(x, origin.x);
  const int top = Sum(y, origin.y);
  Rect area{left, top, Sum(left, width), Sum(top, height)};
  if (!AllZero(clip)) {
    Rect shifted = Shift(clip, origin);
    if (left < 0) shifted.left = Sum(shifted.left, left);
    if (top < 0) shifted.top = Sum(shifted.top, top);
    area = Intersect(area, shifted);
  }
  area = Intersect(area, tags_.rect());
  for (int row = area.top; row < area.bottom; ++row) {
    for (int column = area.left; column < area.right; ++column) {
      tags_.Put(column - tags_.rect().left, row - tags_.rect().top, value);
    }
  }
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
    PhysicalBrush brush;
    std::memset(&brush, 0, sizeof brush);
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
  for (int row = 0; row < args.height; ++row) {
    for (int column = 0; column < args.width; ++column) {
      const int x = args.destX + origin.x + column;
      const int y = args.destY + origin.y + row;
      if (!Contains(tags_.rect(), x, y)) continue;
      if (clip.left != 0 && x < clip.left + origin.x) continue;
      if (clip.top != 0 && y < clip.top + origin.y) continue;
      if (clip.right != 0 && x >= clip.right + origin.x) continue;
      if (clip.bottom != 0 && y >= clip.bottom + origin.y) continue;
      const int sourceX = args.srcX + column;
      const int sourceY = args.srcY + row;
      if (!Contains({0, 0, source.bmWidth, source.bmHeight}, sourceX, sourceY)) continue;
      const uint8_t* p = static_cast<const uint8_t*>(source.bmBits) + sourceY * source.bmWidthBytes + 3 * sourceX;
      if ((p[0] | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16) == skip) continue;
      tags_.Put(x - tags_.rect().left, y - tags_.rect().top, tag);
    }
  }
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
  painting.SetScaledPeriod(brush);
  for (int cell = 0; cell < 64; ++cell) {
    painting.SetBlock(brush, cell / 8, cell % 8, CellPaints(brush.cells[cell], background, skip) ? 1 : 0, 255);
  }
  if (!painting.HasCells()) return true;
  const Point origin = tags_.origin();
  const Rect clip = Shift(ToRect(*args.clip), origin);
  const int left = args.destX + origin.x;
  const int top = args.destY + origin.y;
  Rect area{left, top, left + args.width, top + args.height};
  if (!AllZero(clip)) area = Intersect(area, clip);
  area = Intersect(area, tags_.rect());
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      const int column = x - tags_.rect().left;
      const int row = y - tags_.rect().top;
      if (painting.Cell(column, row) != 0) tags_.Put(column, row, QNV_TAG_GRAPHICS);
    }
  }
  return true;
}

}  // namespace qnv::reference
