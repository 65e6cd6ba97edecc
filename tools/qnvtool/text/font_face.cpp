// Shapes with HarfBuzz and renders with FreeType.
#include "qnvtool/text/font_face.h"

#include <ft2build.h>
#include <hb-ft.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "qnvtool/base/tool_error.h"
#include FT_FREETYPE_H

namespace qnv::tool {
namespace {

constexpr std::size_t kFrequent = 0x3000;  // characters whose presence is remembered

// FreeType counts in 64ths of a pixel.
int CeilFrom26Dot6(FT_Pos value) { return static_cast<int>((value + 63) >> 6); }

}  // namespace

FontLibrary StartFontLibrary() {
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) != 0) throw ToolError(ExitCode::kBadInput, "FreeType cannot start");
  return {library, FT_Done_FreeType};
}

std::unique_ptr<FontFace> FontFace::Open(const FontLibrary& library, const FontFile& file, double points, int dpi) {
  FT_Face face = nullptr;
  if (FT_New_Face(library.get(), file.path.c_str(), file.index, &face) != 0) return nullptr;
  const auto size = static_cast<FT_F26Dot6>(std::lround(points * 64));
  const auto resolution = static_cast<FT_UInt>(dpi);
  if (!FT_IS_SCALABLE(face) || FT_Set_Char_Size(face, 0, size, resolution, resolution) != 0) {
    FT_Done_Face(face);
    return nullptr;
  }
  return std::unique_ptr<FontFace>(new FontFace(library, file, face));
}

FontFace::FontFace(FontLibrary library, FontFile file, FT_FaceRec_* face)
    : library_(std::move(library)),
      file_(std::move(file)),
      face_(face),
      font_(hb_ft_font_create_referenced(face)),
      buffer_(hb_buffer_create()),
      known_(kFrequent, -1) {
  // Advances are not rounded to pixels, so that a text breaks at the same places at every resolution.
  hb_ft_font_set_load_flags(font_, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
}

FontFace::~FontFace() {
  hb_buffer_destroy(buffer_);
  hb_font_destroy(font_);
  FT_Done_Face(face_);
}

int FontFace::ascent() const { return CeilFrom26Dot6(face_->size->metrics.ascender); }
int FontFace::descent() const { return CeilFrom26Dot6(-face_->size->metrics.descender); }
int FontFace::lineHeight() const { return CeilFrom26Dot6(face_->size->metrics.height); }
bool FontFace::fixedWidth() const { return FT_IS_FIXED_WIDTH(face_) != 0; }

bool FontFace::Has(char32_t code) {
  if (code >= kFrequent) return FT_Get_Char_Index(face_, code) != 0;
  int8_t& known = known_[code];
  if (known < 0) known = FT_Get_Char_Index(face_, code) != 0 ? 1 : 0;
  return known == 1;
}

std::vector<PlacedGlyph> FontFace::Shape(std::u32string_view text, const ShapeRun& run) {
  hb_buffer_clear_contents(buffer_);
  // The characters around the run decide how its first and last letter join.
  hb_buffer_add_utf32(buffer_, reinterpret_cast<const uint32_t*>(text.data()), static_cast<int>(text.size()),
                      static_cast<unsigned>(run.begin), static_cast<int>(run.end - run.begin));
  hb_buffer_set_direction(buffer_, run.rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
  hb_buffer_set_script(buffer_, hb_script_from_iso15924_tag(run.script));
  // Not the language of the user, on which the page would depend.
  static const hb_language_t undetermined = hb_language_from_string("und", -1);
  hb_buffer_set_language(buffer_, undetermined);
  static constexpr hb_tag_t kDecoration[] = {HB_TAG('l', 'i', 'g', 'a'), HB_TAG('c', 'l', 'i', 'g'),
                                             HB_TAG('c', 'a', 'l', 't'), HB_TAG('k', 'e', 'r', 'n')};
  hb_feature_t off[std::size(kDecoration)];
  for (std::size_t i = 0; i < std::size(kDecoration); ++i) {
    off[i] = {kDecoration[i], 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END};
  }
  hb_shape(font_, buffer_, off, run.plain ? std::size(off) : 0);

  unsigned count = 0;
  const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(buffer_, &count);
  const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(buffer_, &count);
  std::vector<PlacedGlyph> glyphs(count);
  for (unsigned i = 0; i < count; ++i) {
    const bool isUnsafe = (hb_glyph_info_get_glyph_flags(&infos[i]) & HB_GLYPH_FLAG_UNSAFE_TO_BREAK) != 0;
    glyphs[i] = {infos[i].codepoint,    infos[i].cluster,      positions[i].x_advance,
                 positions[i].x_offset, positions[i].y_offset, isUnsafe};
  }
  return glyphs;
}

const SheetGlyph& FontFace::Bitmap(uint32_t index, std::shared_ptr<GlyphSheet>& sheet) {
  const auto known = bitmaps_.find(index);
  if (known != bitmaps_.end()) return known->second;
  Glyph glyph = Render(index);
  SheetGlyph result;
  if (glyph.columns != 0) {
    if (sheet == nullptr || sheet->full()) sheet = std::make_shared<GlyphSheet>(0, 0);
    result.sheet = sheet;
    result.left = glyph.left;
    result.columns = glyph.columns;
    // The cell is the ink alone: a text places the ink, and nothing is cut off that leaves the advance.
    glyph.left = 0;
    glyph.advance = glyph.columns;
    result.code = sheet->Add(std::move(glyph));
  }
  return bitmaps_.emplace(index, std::move(result)).first->second;
}

Glyph FontFace::Render(uint32_t index) {
  Glyph glyph;
  if (FT_Load_Glyph(face_, index, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP) != 0) return glyph;
  const FT_GlyphSlot slot = face_->glyph;
  glyph.left = slot->bitmap_left;
  glyph.top = slot->bitmap_top;
  glyph.columns = static_cast<int>(slot->bitmap.width);
  glyph.rows = static_cast<int>(slot->bitmap.rows);
  const std::size_t stride = static_cast<std::size_t>(glyph.columns + 7) / 8;
  for (int row = 0; row < glyph.rows; ++row) {
    const uint8_t* const from = slot->bitmap.buffer + std::ptrdiff_t{row} * slot->bitmap.pitch;
    glyph.bits.insert(glyph.bits.end(), from, from + stride);
  }
  // The bitmap of a space may have a pixel that is not set.
  if (std::all_of(glyph.bits.begin(), glyph.bits.end(), [](uint8_t byte) { return byte == 0; })) return {};
  return glyph;
}

}  // namespace qnv::tool
