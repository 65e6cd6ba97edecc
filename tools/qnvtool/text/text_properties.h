// What Unicode says about the characters of a text: scripts, directions, line breaks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qnvtool/text/font.h"

namespace qnv::tool {

// ISO 15924 tags as numbers; kCommonScript stands for characters of several scripts, such as punctuation.
using ScriptTag = uint32_t;
extern const ScriptTag kCommonScript;

// The script of a character by itself.
ScriptTag ScriptOf(char32_t c);

// The script of each character in a text. Characters of several scripts take the script before them, at the start of a
// text the one after them.
std::vector<ScriptTag> ScriptsOf(std::u32string_view text);

// The name of a script, such as "Devanagari".
std::string ScriptName(ScriptTag script);

// Whether letters of the script are single signs, so that they may be set at any distance from each other.
bool HasSingleSigns(ScriptTag script);

// Whether a character belongs to the one before it: combining marks, joiners, variation selectors.
bool IsExtender(char32_t c);

// Characters that show nothing and that fonts need not have.
bool IsInvisible(char32_t c);

struct Directions {
  bool rightToLeft = false;     // the text as a whole
  std::vector<uint8_t> levels;  // for each character the depth of its direction; odd: right to left
};

// The directions of a text of one paragraph. autoBase: the first letter decides about the text as a whole, which
// otherwise runs from left to right.
Directions DirectionsOf(std::u32string_view text, bool autoBase);

// Where lines may end by the line breaking rules of Unicode; never kInside. Lines do not end between a minus sign that
// follows a space and what comes after it, as in "-1" or "--option".
std::vector<LineBreak> UnicodeBreaks(std::u32string_view text);

}  // namespace qnv::tool
