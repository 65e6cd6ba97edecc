// The invisible text of a PDF document: what programs that search and copy find behind the pictures of the pages.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "qnvtool/layout/page_words.h"

namespace qnv::tool {

// The text has fonts without ink, which name the characters of their codes. They are made of the characters that the
// document uses, at most 256 a font.
class PdfText {
 public:
  static constexpr std::size_t kFontSize = 256;  // codes of a font

  // The drawing instructions for the words, on a page of `height` pixels. `scale`: points of a pixel.
  std::string Draw(const std::vector<PageWord>& words, int height, double scale);

  std::size_t fonts() const { return (characters_.size() + kFontSize - 1) / kFontSize; }

  // The number of codes of a font.
  std::size_t CodesOf(std::size_t font) const;

  // The contents of the ToUnicode stream of a font: code to character.
  std::string CharacterMap(std::size_t font) const;

 private:
  std::size_t IndexOf(char32_t character);

  std::u32string characters_;  // by font and code
  std::map<char32_t, std::size_t> indices_;
};

// The name of a font in the resources of the pages.
std::string PdfFontName(std::size_t font);

// Width and vertical extent of every character of the fonts, in thousandths of the size.
inline constexpr int kPdfCharacterWidth = 500;
inline constexpr int kPdfDescent = 250;
inline constexpr int kPdfAscent = 750;

}  // namespace qnv::tool
