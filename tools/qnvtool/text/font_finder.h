// Finds installed fonts with fontconfig.
#pragma once

#include <string>
#include <string_view>

namespace qnv::tool {

// A font in a file; files may hold several.
struct FontFile {
  std::string path;
  int index = 0;
  bool operator==(const FontFile& other) const { return path == other.path && index == other.index; }
};

struct FoundFont {
  FontFile file;       // an empty path: none is installed
  std::string family;  // its name
  bool asked = false;  // whether it is of a family that was asked for, or the name was a generic one such as "serif"
};

// The installed font that fits a fontconfig name, such as "DejaVu Serif:bold", best.
FoundFont FindFontByName(const std::string& name);

// Whether an installed font that can be scaled has the character.
bool IsInInstalledFonts(char32_t code);

// The installed font that has most of the characters; of equally good ones that which fits the name best.
FoundFont FindFontByCharacters(std::u32string_view characters, const std::string& name);

}  // namespace qnv::tool
