// A font file at one size: which characters it has, the glyphs of a text, and their bitmaps.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qnvtool/text/font_finder.h"
#include "qnvtool/text/glyph_sheet.h"

struct FT_FaceRec_;
struct FT_LibraryRec_;
struct hb_buffer_t;
struct hb_font_t;

namespace qnv::tool {

// The font library, shared by all faces of a job.
using FontLibrary = std::shared_ptr<FT_LibraryRec_>;
FontLibrary StartFontLibrary();

// A glyph of a shaped text, in visual order. Lengths are in 1/64 pixels.
struct PlacedGlyph {
  uint32_t index = 0;    // in the face
  uint32_t cluster = 0;  // first character of the cluster that it shows
  int32_t advance = 0;
  int32_t x = 0;             // from the pen position to the glyph's origin
  int32_t y = 0;             // upwards
  bool unsafeBreak = false;  // a text that begins with its cluster must be shaped again
};

// A bitmap of a glyph in a sheet; no sheet: the glyph is empty.
struct SheetGlyph {
  std::shared_ptr<GlyphSheet> sheet;
  uint16_t code = 0;
  int left = 0;     // pixels from the origin to the first ink column
  int columns = 0;  // width of the ink
};

// How a run of characters is to be shaped.
struct ShapeRun {
  std::size_t begin = 0;  // characters [begin, end) of the text
  std::size_t end = 0;
  bool rightToLeft = false;
  uint32_t script = 0;  // an ISO 15924 tag
  bool plain = false;   // without ligatures and kerning
};

class FontFace {
 public:
  // Null for a file that is no scalable font.
  static std::unique_ptr<FontFace> Open(const FontLibrary& library, const FontFile& file, double points, int dpi);

  ~FontFace();
  FontFace(const FontFace&) = delete;
  FontFace& operator=(const FontFace&) = delete;

  const FontFile& file() const { return file_; }
  int ascent() const;      // pixels
  int descent() const;     // pixels, positive
  int lineHeight() const;  // pixels
  bool fixedWidth() const;

  bool Has(char32_t code);

  // The glyphs of a run of the text.
  std::vector<PlacedGlyph> Shape(std::u32string_view text, const ShapeRun& run);

  // The bitmap of a glyph. New ones go into `sheet`, which is replaced by a new one when it is full.
  const SheetGlyph& Bitmap(uint32_t index, std::shared_ptr<GlyphSheet>& sheet);

 private:
  FontFace(FontLibrary library, FontFile file, FT_FaceRec_* face);
  Glyph Render(uint32_t index);

  const FontLibrary library_;
  const FontFile file_;
  FT_FaceRec_* const face_;
  hb_font_t* const font_;
  hb_buffer_t* const buffer_;
  std::unordered_map<uint32_t, SheetGlyph> bitmaps_;
  std::vector<int8_t> known_;  // for frequent characters: -1 not looked up yet, else whether the face has them
};

}  // namespace qnv::tool
