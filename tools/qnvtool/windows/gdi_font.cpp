// Asks GDI for the outlines of letters as bitmaps of one bit a pixel. No window and no printer is needed for that.
#include "qnvtool/windows/gdi_font.h"

#include <fmt/core.h>
#include <windows.h>

#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/text/plain_font.h"

namespace qnv::tool {
namespace {

// What a font is asked for.
struct FontWish {
  std::wstring face;
  bool bold = false;
  bool italic = false;
};

std::wstring Wide(const std::string& text) {
  const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring result(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(), length);
  return result;
}

std::string Narrow(const std::wstring& text) {
  const int length =
      WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(), length, nullptr, nullptr);
  return result;
}

FontWish ParseName(const std::string& name) {
  std::error_code error;
  if (std::filesystem::is_regular_file(PathOf(name), error)) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: this build takes the names of installed fonts, no files", name));
  }
  std::istringstream words(name);
  std::string face;
  std::getline(words, face, ':');
  FontWish wish;
  wish.face = face == "serif"       ? L"Times New Roman"
              : face == "sans"      ? L"Arial"
              : face == "monospace" ? L"Courier New"
                                    : Wide(face);
  for (std::string word; std::getline(words, word, ':');) {
    if (word == "bold") {
      wish.bold = true;
    } else if (word == "italic") {
      wish.italic = true;
    } else {
      throw ToolError(ExitCode::kUsage, fmt::format("{}: {} is neither bold nor italic", name, word));
    }
  }
  return wish;
}

class GdiGlyphs final : public GlyphSource {
 public:
  GdiGlyphs(const FontWish& wish, int height, NoteSink note) : note_(std::move(note)) {
    context_ = CreateCompatibleDC(nullptr);
    font_ = CreateFontW(-height, 0, 0, 0, wish.bold ? FW_BOLD : FW_NORMAL, wish.italic ? TRUE : FALSE, FALSE, FALSE,
                        DEFAULT_CHARSET, OUT_TT_ONLY_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                        DEFAULT_PITCH | FF_DONTCARE, wish.face.c_str());
    if (context_ != nullptr && font_ != nullptr) SelectObject(context_, font_);
    wchar_t face[LF_FACESIZE] = {};
    if (context_ == nullptr || font_ == nullptr || GetTextMetricsW(context_, &metrics_) == 0 ||
        GetTextFaceW(context_, LF_FACESIZE, face) == 0) {
      throw ToolError(ExitCode::kBadInput, "the system has no fonts");
    }
    face_ = Narrow(face);
    if (lstrcmpiW(face, wish.face.c_str()) != 0) {
      note_(fmt::format("the font {} is not installed; {} is used", Narrow(wish.face), face_));
    }
  }
  ~GdiGlyphs() override {
    DeleteDC(context_);
    DeleteObject(font_);
  }
  GdiGlyphs(const GdiGlyphs&) = delete;
  GdiGlyphs& operator=(const GdiGlyphs&) = delete;

  int ascent() const override { return metrics_.tmAscent; }
  int descent() const override { return metrics_.tmDescent; }
  int lineHeight() const override { return metrics_.tmHeight + metrics_.tmExternalLeading; }

  // The upper left corner of a character's box of ink counts from the origin of the character on the baseline.
  Glyph Load(char32_t code) override {
    const WORD index = IndexOf(code);
    const MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    GLYPHMETRICS box{};
    constexpr UINT kFormat = GGO_BITMAP | GGO_GLYPH_INDEX;
    Glyph glyph;
    const DWORD size = GetGlyphOutlineW(context_, index, kFormat, &box, 0, nullptr, &identity);
    if (size == GDI_ERROR) return glyph;
    glyph.advance = box.gmCellIncX;
    if (size == 0) return glyph;  // a space
    std::vector<uint8_t> rows(size);
    GetGlyphOutlineW(context_, index, kFormat, &box, size, rows.data(), &identity);
    glyph.left = box.gmptGlyphOrigin.x;
    glyph.top = box.gmptGlyphOrigin.y;
    glyph.columns = static_cast<int>(box.gmBlackBoxX);
    glyph.rows = static_cast<int>(box.gmBlackBoxY);
    const std::size_t stride = (box.gmBlackBoxX + 7) / 8;
    const std::size_t paddedStride = (box.gmBlackBoxX + 31) / 32 * 4;
    if (rows.size() < paddedStride * box.gmBlackBoxY) return Glyph{};
    for (std::size_t row = 0; row < box.gmBlackBoxY; ++row) {
      const uint8_t* const first = rows.data() + row * paddedStride;
      glyph.bits.insert(glyph.bits.end(), first, first + stride);
    }
    return glyph;
  }

 private:
  // The glyph of a character; 0, which is a box in most fonts, when the font lacks it.
  WORD IndexOf(char32_t code) {
    const auto unit = static_cast<wchar_t>(code);
    WORD index = 0xFFFF;
    if (code > 0xFFFF || GetGlyphIndicesW(context_, &unit, 1, &index, GGI_MARK_NONEXISTING_GLYPHS) == GDI_ERROR ||
        index == 0xFFFF) {
      const bool isInvisible = code < 0x20 || (code >= 0x7F && code < 0xA0);
      if (!isInvisible && !hasNoted_) {
        note_(fmt::format("{} lacks characters (such as U+{:04X}); boxes stand for them", face_,
                          static_cast<uint32_t>(code)));
        hasNoted_ = true;
      }
      return 0;
    }
    return index;
  }

  const NoteSink note_;
  HDC context_ = nullptr;
  HFONT font_ = nullptr;
  TEXTMETRICW metrics_{};
  std::string face_;
  bool hasNoted_ = false;
};

}  // namespace

std::unique_ptr<Font> OpenGdiFont(const std::string& name, double points, int dpi, const NoteSink& note) {
  const int height = static_cast<int>(std::lround(points * dpi / 72));
  return std::make_unique<PlainFont>(std::make_unique<GdiGlyphs>(ParseName(name), height < 1 ? 1 : height, note));
}

}  // namespace qnv::tool
