// Renders glyphs with FreeType, and finds font files with fontconfig.
#include "qnvtool/text/freetype_font.h"

#include <fmt/core.h>
#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include <cmath>
#include <filesystem>
#include <map>

#include "qnvtool/base/tool_error.h"
#include FT_FREETYPE_H

namespace qnv::tool {
namespace {

constexpr int kMaxGlyphHeight = 4096;

// A font in a file; files may hold several.
struct FontFile {
  std::string path;
  int index = 0;
  bool operator<(const FontFile& other) const { return std::tie(path, index) < std::tie(other.path, other.index); }
};

using PatternPtr = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;

FontFile FileOf(FcPattern* match) {
  FcChar8* path = nullptr;
  int index = 0;
  if (match == nullptr || FcPatternGetString(match, FC_FILE, 0, &path) != FcResultMatch) return {};
  FcPatternGetInteger(match, FC_INDEX, 0, &index);
  return {reinterpret_cast<const char*>(path), index & 0xFFFF};
}

// Starts fontconfig at the first call and ends it with the program.
void StartFontconfig() {
  struct Session {
    Session() { FcInit(); }
    ~Session() { FcFini(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
  };
  static const Session session;
}

// The installed font that fits the name best; an empty path when there is none.
FontFile MatchName(const std::string& name) {
  StartFontconfig();
  const PatternPtr pattern(FcNameParse(reinterpret_cast<const FcChar8*>(name.c_str())), FcPatternDestroy);
  if (pattern == nullptr) return {};
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  FcResult result = FcResultNoMatch;
  const PatternPtr match(FcFontMatch(nullptr, pattern.get(), &result), FcPatternDestroy);
  return FileOf(match.get());
}

// An installed font that has the character; an empty path when there is none.
FontFile MatchCharacter(char32_t code) {
  StartFontconfig();
  const std::unique_ptr<FcCharSet, decltype(&FcCharSetDestroy)> set(FcCharSetCreate(), FcCharSetDestroy);
  const PatternPtr pattern(FcPatternCreate(), FcPatternDestroy);
  FcCharSetAddChar(set.get(), code);
  FcPatternAddCharSet(pattern.get(), FC_CHARSET, set.get());
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  FcResult result = FcResultNoMatch;
  const PatternPtr match(FcFontMatch(nullptr, pattern.get(), &result), FcPatternDestroy);
  return FileOf(match.get());
}

// FreeType counts in 64ths of a pixel.
int CeilPixels(FT_Pos value26Dot6) { return static_cast<int>((value26Dot6 + 63) >> 6); }

// The glyphs of one font at one size, with other fonts for characters that it lacks.
class FreeTypeFont final : public GlyphSource {
 public:
  FreeTypeFont(const FontFile& file, double points, int dpi) : points_(points), dpi_(dpi) {
    if (FT_Init_FreeType(&library_) != 0) throw ToolError(ExitCode::kBadInput, "FreeType cannot start");
    main_ = Face(file);
    if (main_ == nullptr) {
      FT_Done_FreeType(library_);
      throw ToolError(ExitCode::kBadInput, fmt::format("{}: is no scalable font", file.path));
    }
  }
  ~FreeTypeFont() override { FT_Done_FreeType(library_); }  // closes the faces too
  FreeTypeFont(const FreeTypeFont&) = delete;
  FreeTypeFont& operator=(const FreeTypeFont&) = delete;

  int ascent() const override { return CeilPixels(main_->size->metrics.ascender); }
  int descent() const override { return CeilPixels(-main_->size->metrics.descender); }
  int lineHeight() const override { return CeilPixels(main_->size->metrics.height); }

  Glyph Load(char32_t code) override {
    FT_Face face = main_;
    if (FT_Get_Char_Index(main_, code) == 0 && !PlainFont::IsLatin(code)) {
      FT_Face other = Face(MatchCharacter(code));
      if (other != nullptr && FT_Get_Char_Index(other, code) != 0) face = other;
    }
    return Render(face, FT_Get_Char_Index(face, code));
  }

 private:
  // The face of a file at the size of this font, opened once; null for a file that cannot be used.
  FT_Face Face(const FontFile& file) {
    if (file.path.empty()) return nullptr;
    const auto known = faces_.find(file);
    if (known != faces_.end()) return known->second;
    FT_Face face = nullptr;
    if (FT_New_Face(library_, file.path.c_str(), file.index, &face) != 0) face = nullptr;
    const auto size = static_cast<FT_F26Dot6>(std::lround(points_ * 64));
    const auto dpi = static_cast<FT_UInt>(dpi_);
    if (face != nullptr && (!FT_IS_SCALABLE(face) || FT_Set_Char_Size(face, 0, size, dpi, dpi) != 0)) {
      FT_Done_Face(face);
      face = nullptr;
    }
    faces_.emplace(file, face);
    return face;
  }

  static Glyph Render(FT_Face face, FT_UInt index) {
    Glyph glyph;
    if (FT_Load_Glyph(face, index, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO) != 0) return glyph;
    const FT_GlyphSlot slot = face->glyph;
    glyph.advance = static_cast<int>((slot->advance.x + 32) >> 6);
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    glyph.columns = static_cast<int>(slot->bitmap.width);
    glyph.rows = static_cast<int>(slot->bitmap.rows);
    if (glyph.columns == 0 || glyph.rows == 0) {
      glyph.columns = glyph.rows = 0;
      return glyph;
    }
    const std::size_t stride = static_cast<std::size_t>(glyph.columns + 7) / 8;
    for (int row = 0; row < glyph.rows; ++row) {
      const uint8_t* const from = slot->bitmap.buffer + std::ptrdiff_t{row} * slot->bitmap.pitch;
      glyph.bits.insert(glyph.bits.end(), from, from + stride);
    }
    return glyph;
  }

  const double points_;
  const int dpi_;
  FT_Library library_ = nullptr;
  FT_Face main_ = nullptr;
  std::map<FontFile, FT_Face> faces_;
};

}  // namespace

std::unique_ptr<GlyphSource> OpenFreeTypeFont(const std::string& fileOrName, double points, int dpi) {
  if (points * dpi / 72 > kMaxGlyphHeight) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("text of {} points has more than {} pixels at {} dpi", points, kMaxGlyphHeight, dpi));
  }
  std::error_code error;
  FontFile file{fileOrName, 0};
  if (!std::filesystem::is_regular_file(fileOrName, error)) {
    if (fileOrName.find('/') != std::string::npos) {
      throw ToolError(ExitCode::kUsage, fmt::format("{}: no such font file", fileOrName));
    }
    file = MatchName(fileOrName);
    if (file.path.empty()) {
      throw ToolError(ExitCode::kUsage, fmt::format("font \"{}\": no font is installed for this name", fileOrName));
    }
  }
  return std::make_unique<FreeTypeFont>(file, points, dpi);
}

}  // namespace qnv::tool
