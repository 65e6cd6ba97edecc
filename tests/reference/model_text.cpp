// Raster-font text.
#include <cstring>

#include "reference/band_model.h"

namespace qnv::reference {
namespace {

constexpr int kFarthest = 32767;

// The font record, field by field from memory.
class Font {
 public:
  Font(const void* base, uint32_t offset)
      : base_(static_cast<const uint8_t*>(base)), record_(base_ + (offset & 0xFFFF)) {
    std::memcpy(&info_, record_, sizeof info_);
  }
  const FONTINFO& info() const { return info_; }
  bool twoByte() const { return (info_.dfType & 0x20) != 0; }
  bool variable() const { return (info_.dfPitchAndFamily & 1) != 0; }
  int TableWidth(int index) const { return Word(Entry(index)); }
  const uint8_t* Glyph(int index) const {
    const uint8_t* at = Entry(index) + 2;
    return base_ + (shortTable() ? Word(at) : Word(at) | Word(at + 2) << 16);
  }

 private:
  bool shortTable() const { return info_.dfType == 0x200; }
  const uint8_t* Entry(int index) const { return record_ + (shortTable() ? 49 + 4 * index : 82 + 6 * index); }
  static int Word(const uint8_t* at) { return at[0] | at[1] << 8; }

  const uint8_t* base_;
  const uint8_t* record_;
  FONTINFO info_;
};

// The far end of a glyph: an end before 0 counts as the farthest one, like one too far away.
int FarEnd(int end) { return end < 0 || end > kFarthest ? kFarthest : end; }

int16_t Word16(int value) { return static_cast<int16_t>(static_cast<uint16_t>(value)); }

}  // namespace

struct BandModel::GlyphRun {
  const TextArgs* args;
  int x, y;  // origin added
  Rect limits;
  const uint8_t* string;
  int count;
};

int32_t BandModel::ExtTextOut(const TextArgs& args) {
  const int count = Word16(args.count);
  if ((args.string == nullptr && count != 0) || args.fontBase == nullptr || args.drawMode == nullptr) return 0;
  const bool hasClip = args.clip != nullptr || (args.opaqueRect != nullptr && (args.options & ETO_CLIPPED) != 0);
  Rect clip = args.clip != nullptr ? ToRect(*args.clip) : Rect{};
  if (args.opaqueRect != nullptr) {
    Rect opaque = ToRect(*args.opaqueRect);
    if ((args.options & ETO_CLIPPED) != 0) clip = args.clip != nullptr ? Intersect(clip, opaque) : opaque;
    if ((args.options & ETO_OPAQUE) != 0) {
      if (hasClip) opaque = Intersect(opaque, clip);
      FillOpaqueRect(opaque, args.drawMode);
    }
  }

  GlyphRun run{&args, args.x + origin_.x, args.y + origin_.y, {}, static_cast<const uint8_t*>(args.string), count};
  if (hasClip) {
    const auto caller = [&](int edge) { return scaled() ? map_->ToPage(Word16(edge)) : edge; };
    const Rect band{caller(rect_.left), caller(rect_.top), caller(rect_.right), caller(rect_.bottom)};
    run.limits = Intersect(Shift(clip, origin_), band);
  } else {
    // Width bounds the rows and height the columns, each less one.
    run.limits = {0, 0, static_cast<int>(description_.height) - 1, static_cast<int>(description_.width) - 1};
  }
  if (args.charWidths == nullptr) return RunGlyphs(run);

  if (count == 0) return 0;
  run.count = count > 0 ? 1 : -1;
  const int last = count * run.count - 1;
  int32_t before = 0;  // what the characters before the last one advance
  for (int i = 0; i < last; ++i) {
    RunGlyphs(run);
    run.x += args.charWidths[i];
    run.string += Font(args.fontBase, args.fontOffset).twoByte() ? 2 : 1;
    before += args.charWidths[i];
  }
  return RunGlyphs(run) + before;
}

void BandModel::FillOpaqueRect(const Rect& rect, const DRAWMODE* drawMode) {
  const BandRect area{std::max(rect.left, 0), std::max(rect.top, 0), rect.right, rect.bottom};
  if (area.right - area.left < 1 || area.bottom - area.top < 1) return;
  const LogicalBrush logical{BS_SOLID, drawMode->bkColor, 0, 0};
  PhysicalBrush brush{};
  RealizeObject(OBJ_BRUSH, &logical, &brush);
  BitBlt({area.left, area.top, nullptr, 0, 0, area.right - area.left, area.bottom - area.top, PATCOPY, &brush, drawMode,
          &area});
}

int32_t BandModel::RunGlyphs(const GlyphRun& run) {
  const Font font(run.args->fontBase, run.args->fontOffset);
  const FONTINFO& info = font.info();
  DRAWMODE& mode = *run.args->drawMode;
  const bool drawing = run.count > 0;
  const int characters = run.count < 0 ? -run.count : run.count;

  const int breakCount = mode.BreakCount;
  const int16_t quotient = Word16(breakCount == 0 ? 0 : mode.TBreakExtra / breakCount);
  const int16_t remainder = Word16(mode.TBreakExtra - breakCount * quotient);
  int16_t error = mode.BreakErr;

  int total = 0;
  int x = run.x;
  for (int i = 0; i < characters; ++i) {
    int index;
    int width;
    int extra = 0;
    if (font.twoByte()) {
      index = run.string[2 * i] | run.string[2 * i + 1] << 8;
      width = font.TableWidth(index);
      const int lead = run.args->charWidths == nullptr ? 0 : run.args->charWidths[0];
      if (drawing && x + lead >= 0) PaintGlyph(run, x, width, font.Glyph(index));
    } else {
      const int code = run.string[i];
      index = code < info.dfFirstChar || code > info.dfLastChar ? info.dfDefaultChar : code - info.dfFirstChar;
      width = font.variable() ? font.TableWidth(index) : info.dfPixWidth;
      if (mode.TBreakExtra != 0 && index == info.dfBreakChar) {
        error = Word16(error - remainder);
        extra = quotient;
        if (error < 1) {
          extra = quotient + 1;
          error = Word16(error + breakCount);
        }
      }
      extra += mode.CharacterExtra;
      if (drawing && x + width >= 0) PaintGlyph(run, x, width, font.Glyph(index));
    }
    total += width + extra;
    x += width + extra;
  }
  if (drawing) return Word16(total);
  mode.BreakErr = font.twoByte() ? int16_t{0} : error;
  return static_cast<int32_t>(static_cast<uint32_t>(info.dfPixHeight) << 16 | (static_cast<uint32_t>(total) & 0xFFFF));
}

void BandModel::PaintGlyph(const GlyphRun& run, int x, int width, const uint8_t* glyph) {
  const Font font(run.args->fontBase, run.args->fontOffset);
  const int height = font.info().dfPixHeight;
  const DRAWMODE& mode = *run.args->drawMode;
  const int firstRow = std::max(run.y, run.limits.top);
  const int endRow = std::min(FarEnd(run.y + height), run.limits.bottom);
  const int firstColumn = std::max(x, run.limits.left);
  const int endColumn = std::min(FarEnd(x + width), run.limits.right);
  for (int y = firstRow; y < endRow; ++y) {
    for (int column = firstColumn; column < endColumn; ++column) {
      const int across = column - x;
      const int down = y - run.y;
      // The far ends above can reach past the glyph, where it has no bits.
      if (across >= width || down >= height) continue;
      Spot spot;
      if (!MapTextPixel(column, y, &spot)) continue;
      const bool set = (glyph[across / 8 * height + down] & (0x80 >> across % 8)) != 0;
      if (!set && mode.bkMode == TRANSPARENT) continue;
      Put(spot.column, spot.row, SwapRedBlue(set ? mode.TextColor : mode.bkColor));
    }
  }
}

}  // namespace qnv::reference
