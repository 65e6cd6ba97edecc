// Asks fontconfig for files.
#include "qnvtool/text/font_finder.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <string>

namespace qnv::tool {
namespace {

using PatternPtr = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;
using CharSetPtr = std::unique_ptr<FcCharSet, decltype(&FcCharSetDestroy)>;

const FcChar8* FcText(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

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

std::string TextOf(FcPattern* pattern, const char* object, int index) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(pattern, object, index, &value) != FcResultMatch) return {};
  return reinterpret_cast<const char*>(value);
}

FoundFont Match(FcPattern* pattern) {
  FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
  FcDefaultSubstitute(pattern);
  FcResult result = FcResultNoMatch;
  const PatternPtr match(FcFontMatch(nullptr, pattern, &result), FcPatternDestroy);
  FoundFont font;
  if (match == nullptr) return font;
  font.file.path = TextOf(match.get(), FC_FILE, 0);
  font.family = TextOf(match.get(), FC_FAMILY, 0);
  FcPatternGetInteger(match.get(), FC_INDEX, 0, &font.file.index);
  font.file.index &= 0xFFFF;  // the upper half names an instance of a variable font
  return font;
}

bool IsGeneric(const std::string& family) {
  for (const char* generic :
       {"serif", "sans", "sans-serif", "sans serif", "monospace", "mono", "cursive", "fantasy", "system-ui"}) {
    if (FcStrCmpIgnoreCase(FcText(family.c_str()), FcText(generic)) == 0) return true;
  }
  return false;
}

}  // namespace

FoundFont FindFontByName(const std::string& name) {
  StartFontconfig();
  const PatternPtr pattern(FcNameParse(FcText(name.c_str())), FcPatternDestroy);
  if (pattern == nullptr) return {};
  const std::string first = TextOf(pattern.get(), FC_FAMILY, 0);
  FoundFont font = Match(pattern.get());
  font.asked = first.empty() || IsGeneric(first);
  if (font.asked || font.file.path.empty()) return font;
  // The match may have several names, of which the first family is one.
  const PatternPtr same(FcPatternCreate(), FcPatternDestroy);
  FcPatternAddString(same.get(), FC_FAMILY, FcText(first.c_str()));
  const std::unique_ptr<FcObjectSet, decltype(&FcObjectSetDestroy)> objects(
      FcObjectSetBuild(FC_FILE, static_cast<char*>(nullptr)), FcObjectSetDestroy);
  const std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)> family(FcFontList(nullptr, same.get(), objects.get()),
                                                                       FcFontSetDestroy);
  font.asked = family != nullptr && family->nfont > 0;
  return font;
}

bool IsInInstalledFonts(char32_t code) {
  StartFontconfig();
  static const CharSetPtr all = [] {
    CharSetPtr characters(FcCharSetCreate(), FcCharSetDestroy);
    const PatternPtr scalable(FcPatternCreate(), FcPatternDestroy);
    FcPatternAddBool(scalable.get(), FC_SCALABLE, FcTrue);
    const std::unique_ptr<FcObjectSet, decltype(&FcObjectSetDestroy)> objects(
        FcObjectSetBuild(FC_CHARSET, static_cast<char*>(nullptr)), FcObjectSetDestroy);
    const std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)> fonts(
        FcFontList(nullptr, scalable.get(), objects.get()), FcFontSetDestroy);
    for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
      FcCharSet* set = nullptr;
      if (FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &set) == FcResultMatch) {
        FcCharSetMerge(characters.get(), set, nullptr);
      }
    }
    return characters;
  }();
  return FcCharSetHasChar(all.get(), code) == FcTrue;
}

FoundFont FindFontByCharacters(std::u32string_view characters, const std::string& name) {
  StartFontconfig();
  const PatternPtr pattern(FcNameParse(FcText(name.c_str())), FcPatternDestroy);
  const CharSetPtr set(FcCharSetCreate(), FcCharSetDestroy);
  if (pattern == nullptr) return {};
  for (const char32_t c : characters) FcCharSetAddChar(set.get(), c);
  FcPatternAddCharSet(pattern.get(), FC_CHARSET, set.get());
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  return Match(pattern.get());
}

}  // namespace qnv::tool
