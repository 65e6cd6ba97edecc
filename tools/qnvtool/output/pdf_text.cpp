// Places every word by its own matrix, stretched to the width that it has in the picture.
#include "qnvtool/output/pdf_text.h"

#include <fmt/core.h>

#include <algorithm>

namespace qnv::tool {
namespace {

// A character in UTF-16, as hexadecimal digits.
std::string Utf16Hex(char32_t c) {
  if (c < 0x10000) return fmt::format("{:04X}", static_cast<uint32_t>(c));
  const uint32_t rest = static_cast<uint32_t>(c) - 0x10000;
  return fmt::format("{:04X}{:04X}", 0xD800 + (rest >> 10), 0xDC00 + (rest & 0x3FF));
}

}  // namespace

std::string PdfFontName(std::size_t font) { return fmt::format("T{}", font); }

std::size_t PdfText::IndexOf(char32_t character) {
  const auto [place, isNew] = indices_.try_emplace(character, characters_.size());
  if (isNew) characters_.push_back(character);
  return place->second;
}

std::size_t PdfText::CodesOf(std::size_t font) const {
  return std::min(characters_.size() - font * kFontSize, kFontSize);
}

std::string PdfText::Draw(const std::vector<PageWord>& words, int height, double scale) {
  if (words.empty()) return {};
  std::string result = "BT 3 Tr\n";  // neither filled nor stroked
  for (const PageWord& word : words) {
    const double size = std::max(word.ascent + word.descent, 1) * scale;
    const double natural = static_cast<double>(word.text.size()) * size * kPdfCharacterWidth / 1000;
    const double stretch = std::max(word.width, 1) * scale / natural;
    result += fmt::format("{:.2f} Tz 1 0 0 1 {:.3f} {:.3f} Tm", stretch * 100, word.left * scale,
                          (height - word.baseline) * scale);
    std::size_t font = indices_.size();  // none
    std::string codes;
    const auto show = [&] {
      if (!codes.empty()) result += fmt::format(" /{} {:.3f} Tf <{}> Tj", PdfFontName(font), size, codes);
      codes.clear();
    };
    // Programs turn what is read from the right, so the characters have to stand as they do in the picture.
    std::u32string visible = word.text;
    if (word.rightToLeft) std::reverse(visible.begin(), visible.end());
    for (const char32_t c : visible) {
      const std::size_t index = IndexOf(c);
      if (index / kFontSize != font) show();
      font = index / kFontSize;
      codes += fmt::format("{:02X}", index % kFontSize);
    }
    show();
    result += "\n";
  }
  return result + "ET\n";
}

std::string PdfText::CharacterMap(std::size_t font) const {
  std::string result =
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<00> <FF>\nendcodespacerange\n";
  constexpr std::size_t kMaxInBlock = 100;
  const std::size_t codes = CodesOf(font);
  for (std::size_t first = 0; first < codes; first += kMaxInBlock) {
    const std::size_t end = std::min(first + kMaxInBlock, codes);
    result += fmt::format("{} beginbfchar\n", end - first);
    for (std::size_t code = first; code < end; ++code) {
      result += fmt::format("<{:02X}> <{}>\n", code, Utf16Hex(characters_[font * kFontSize + code]));
    }
    result += "endbfchar\n";
  }
  return result + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

}  // namespace qnv::tool
