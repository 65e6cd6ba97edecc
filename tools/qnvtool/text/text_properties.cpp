// Asks HarfBuzz for scripts, FriBidi for directions and libunibreak for line breaks.
#include "qnvtool/text/text_properties.h"

#include <fribidi.h>
#include <hb.h>
#include <linebreak.h>

#include <algorithm>
#include <map>

namespace qnv::tool {
namespace {

// Letters of scripts that run from right to left, and characters that set the direction.
bool MayRunLeft(char32_t c) {
  if (c < 0x0590) return false;
  return c <= 0x08FF || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
         (c >= 0xFB1D && c <= 0xFDFF) || (c >= 0xFE70 && c <= 0xFEFC) || (c >= 0x10800 && c <= 0x10FFF) ||
         (c >= 0x1E800 && c <= 0x1EFFF);
}

}  // namespace

const ScriptTag kCommonScript = HB_SCRIPT_COMMON;

ScriptTag ScriptOf(char32_t c) {
  const ScriptTag script = hb_unicode_script(hb_unicode_funcs_get_default(), c);
  return script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN ? kCommonScript : script;
}

std::vector<ScriptTag> ScriptsOf(std::u32string_view text) {
  std::vector<ScriptTag> scripts(text.size(), kCommonScript);
  ScriptTag last = kCommonScript;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const ScriptTag own = ScriptOf(text[i]);
    if (own != kCommonScript) {
      if (last == kCommonScript) std::fill_n(scripts.begin(), i, own);
      last = own;
    }
    scripts[i] = last;
  }
  return scripts;
}

std::string ScriptName(ScriptTag script) {
  static const std::map<ScriptTag, const char*> kNames{
      {HB_SCRIPT_ARABIC, "Arabic"},
      {HB_SCRIPT_ARMENIAN, "Armenian"},
      {HB_SCRIPT_BENGALI, "Bengali"},
      {HB_SCRIPT_BOPOMOFO, "Bopomofo"},
      {HB_SCRIPT_BRAILLE, "Braille"},
      {HB_SCRIPT_CANADIAN_SYLLABICS, "Canadian syllabics"},
      {HB_SCRIPT_CHEROKEE, "Cherokee"},
      {HB_SCRIPT_COPTIC, "Coptic"},
      {HB_SCRIPT_CUNEIFORM, "Cuneiform"},
      {HB_SCRIPT_CYRILLIC, "Cyrillic"},
      {HB_SCRIPT_DEVANAGARI, "Devanagari"},
      {HB_SCRIPT_EGYPTIAN_HIEROGLYPHS, "Egyptian hieroglyphs"},
      {HB_SCRIPT_ETHIOPIC, "Ethiopic"},
      {HB_SCRIPT_GEORGIAN, "Georgian"},
      {HB_SCRIPT_GOTHIC, "Gothic"},
      {HB_SCRIPT_GREEK, "Greek"},
      {HB_SCRIPT_GUJARATI, "Gujarati"},
      {HB_SCRIPT_GURMUKHI, "Gurmukhi"},
      {HB_SCRIPT_HAN, "Han"},
      {HB_SCRIPT_HANGUL, "Hangul"},
      {HB_SCRIPT_HEBREW, "Hebrew"},
      {HB_SCRIPT_HIRAGANA, "Hiragana"},
      {HB_SCRIPT_KANNADA, "Kannada"},
      {HB_SCRIPT_KATAKANA, "Katakana"},
      {HB_SCRIPT_KHMER, "Khmer"},
      {HB_SCRIPT_LAO, "Lao"},
      {HB_SCRIPT_LATIN, "Latin"},
      {HB_SCRIPT_MALAYALAM, "Malayalam"},
      {HB_SCRIPT_MONGOLIAN, "Mongolian"},
      {HB_SCRIPT_MYANMAR, "Myanmar"},
      {HB_SCRIPT_NKO, "N'Ko"},
      {HB_SCRIPT_OGHAM, "Ogham"},
      {HB_SCRIPT_ORIYA, "Oriya"},
      {HB_SCRIPT_RUNIC, "Runic"},
      {HB_SCRIPT_SINHALA, "Sinhala"},
      {HB_SCRIPT_SYRIAC, "Syriac"},
      {HB_SCRIPT_TAMIL, "Tamil"},
      {HB_SCRIPT_TELUGU, "Telugu"},
      {HB_SCRIPT_THAANA, "Thaana"},
      {HB_SCRIPT_THAI, "Thai"},
      {HB_SCRIPT_TIBETAN, "Tibetan"},
      {HB_SCRIPT_TIFINAGH, "Tifinagh"},
      {HB_SCRIPT_YI, "Yi"},
  };
  const auto known = kNames.find(script);
  if (known != kNames.end()) return known->second;
  char tag[4];
  hb_tag_to_string(script, tag);
  return "the script " + std::string(tag, sizeof tag);
}

bool HasSingleSigns(ScriptTag script) {
  constexpr ScriptTag kScripts[] = {HB_SCRIPT_COMMON,   HB_SCRIPT_LATIN,    HB_SCRIPT_GREEK,  HB_SCRIPT_CYRILLIC,
                                    HB_SCRIPT_HAN,      HB_SCRIPT_HIRAGANA, HB_SCRIPT_HANGUL, HB_SCRIPT_KATAKANA,
                                    HB_SCRIPT_BOPOMOFO, HB_SCRIPT_ARMENIAN, HB_SCRIPT_HEBREW, HB_SCRIPT_GEORGIAN};
  return std::find(std::begin(kScripts), std::end(kScripts), script) != std::end(kScripts);
}

bool IsExtender(char32_t c) {
  if (c < 0x0300) return false;
  if (c == 0x200C || c == 0x200D) return true;
  switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), c)) {
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK: return true;
    default: return false;
  }
}

bool IsInvisible(char32_t c) {
  if (c < 0xAD) return c < 0x20;
  return c == 0xAD || c == 0x034F || c == 0x061C || (c >= 0x180B && c <= 0x180F) || (c >= 0x200B && c <= 0x200F) ||
         (c >= 0x202A && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) || (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF ||
         (c >= 0xE0000 && c <= 0xE0FFF);
}

Directions DirectionsOf(std::u32string_view text, bool autoBase) {
  Directions result;
  result.levels.assign(text.size(), 0);
  if (std::none_of(text.begin(), text.end(), MayRunLeft)) return result;
  const auto length = static_cast<FriBidiStrIndex>(text.size());
  const auto* const characters = reinterpret_cast<const FriBidiChar*>(text.data());
  std::vector<FriBidiCharType> types(text.size());
  std::vector<FriBidiBracketType> brackets(text.size());
  std::vector<FriBidiLevel> levels(text.size());
  fribidi_get_bidi_types(characters, length, types.data());
  fribidi_get_bracket_types(characters, length, types.data(), brackets.data());
  FriBidiParType base = autoBase ? FRIBIDI_PAR_ON : FRIBIDI_PAR_LTR;
  if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), length, &base, levels.data()) == 0) {
    return result;  // no memory: as it stands
  }
  result.rightToLeft = FRIBIDI_IS_RTL(base);
  std::transform(levels.begin(), levels.end(), result.levels.begin(),
                 [](FriBidiLevel level) { return static_cast<uint8_t>(level); });
  return result;
}

std::vector<LineBreak> UnicodeBreaks(std::u32string_view text) {
  static const bool started = [] {
    init_linebreak();
    return true;
  }();
  std::vector<LineBreak> breaks(text.size(), LineBreak::kForbidden);
  if (!started || text.empty()) return breaks;
  std::vector<char> after(text.size());
  set_linebreaks_utf32(reinterpret_cast<const utf32_t*>(text.data()), text.size(), nullptr, after.data());
  const auto isHyphen = [](char32_t c) { return c == '-' || c == 0x2010; };
  bool minus = true;  // only hyphens since the last space
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == ' ') minus = true;
    if (text[i] != ' ' && !isHyphen(text[i])) minus = false;
    if (after[i] <= LINEBREAK_ALLOWBREAK && !(minus && isHyphen(text[i]))) breaks[i + 1] = LineBreak::kAllowed;
  }
  return breaks;
}

}  // namespace qnv::tool
