// Text: the string and the font come from a document, but the font's block holds what its table points at.
#include <cstring>

#include "extremes/stage.h"

namespace qnv::test {
namespace {

enum TextField : std::size_t {
  kX = kOwnFields,
  kY,
  kCount,
  kFontOffset,
  kOptions,
  kOpaque,
  kCharWidth = kOpaque + 4,  // of the second character
  kCode,                     // of the second character
  kType,
  kPixWidth,
  kPixHeight,
  kPitchAndFamily,
  kFirstChar,
  kLastChar,
  kDefaultChar,
  kBreakChar,
  kTableWidth,
  kTextMode
};

enum Variant : int { kPlain = 0, kWithWidths = 1, kWithoutClip = 2 };

void Put16(uint8_t* at, uint64_t value) {
  at[0] = static_cast<uint8_t>(value);
  at[1] = static_cast<uint8_t>(value >> 8);
}

void Text(Stage& stage, const Values& v, int variant) {
  stage.Place(v);
  const uint16_t type = v.U16(kType);
  const bool twoByte = (type & 0x20) != 0, shortTable = type == 0x200;
  const int32_t count = v.I16(kCount);
  const uint32_t characters = static_cast<uint32_t>(count < 0 ? -count : count);
  const uint32_t code = twoByte ? v.U16(kCode) : v.U8(kCode);
  constexpr uint32_t kOtherCode = 'a';

  const uint64_t stringBytes = uint64_t{characters} * (twoByte ? 2 : 1);
  uint8_t* string = stage.host().text.Last(stringBytes);
  uint8_t* widths = stage.host().widths.Last(uint64_t{2} * characters);
  if (string == nullptr || widths == nullptr) return stage.Skip();
  for (uint32_t i = 0; i < characters; ++i) {
    const uint32_t letter = i == 1 ? code : kOtherCode;
    if (twoByte) {
      Put16(string + 2 * i, letter);
    } else {
      string[i] = static_cast<uint8_t>(letter);
    }
    Put16(widths + 2 * i, i == 1 ? v.U16(kCharWidth) : 4);
  }

  // A table as long as the codes need it, then the one glyph of all of them.
  const uint8_t first = v.U8(kFirstChar), last = v.U8(kLastChar), standard = v.U8(kDefaultChar);
  const auto indexOf = [&](uint32_t letter) -> uint32_t {
    if (twoByte) return letter;
    return letter < first || letter > last ? standard : letter - first;
  };
  const uint64_t entries = uint64_t{std::max(indexOf(code), indexOf(kOtherCode))} + 1;
  const uint32_t entryBytes = shortTable ? 4 : 6;
  const uint64_t table = v.U16(kFontOffset) + (shortTable ? 49u : 82u);
  const uint64_t glyph = table + entries * entryBytes;
  if (shortTable && glyph > UINT16_MAX) return stage.Skip();
  const bool fromTable = twoByte || (v.U8(kPitchAndFamily) & 1) != 0;
  const int64_t width = fromTable ? v.U16(kTableWidth) : v.I16(kPixWidth);
  const int64_t height = v.I16(kPixHeight);
  const uint64_t glyphBytes = width > 0 && height > 0 ? static_cast<uint64_t>((width + 7) / 8 * height) : 0;
  uint8_t* base = stage.host().font.Last(glyph + glyphBytes);
  if (base == nullptr) return stage.Skip();
  FONTINFO info;
  std::memset(&info, 0, sizeof info);
  info.dfType = type;
  info.dfPixWidth = v.I16(kPixWidth);
  info.dfPixHeight = v.I16(kPixHeight);
  info.dfPitchAndFamily = v.U8(kPitchAndFamily);
  info.dfFirstChar = first;
  info.dfLastChar = last;
  info.dfDefaultChar = standard;
  info.dfBreakChar = v.U8(kBreakChar);
  std::memcpy(base + v.U16(kFontOffset), &info, sizeof info);
  for (uint32_t letter : {code, kOtherCode}) {
    uint8_t* entry = base + table + uint64_t{indexOf(letter)} * entryBytes;
    Put16(entry, v.U16(kTableWidth));
    Put16(entry + 2, glyph);
    if (!shortTable) Put16(entry + 4, glyph >> 16);
  }
  // Some ink in the first rows.
  std::memset(base + glyph, 0xA7, static_cast<std::size_t>(std::min<uint64_t>(glyphBytes, 64)));

  const BandRect clip = v.Rect(kClip), opaque = v.Rect(kOpaque);
  DRAWMODE mode = DrawModeOf(v, kTextMode);
  // The opaque rectangle is cut by the clip before the origin is added, glyphs by what that makes of the clip.
  const int32_t x = v.I32(kOriginX), y = v.I32(kOriginY);
  const bool wraps = int64_t{clip.left} + x != Sum(clip.left, x) || int64_t{clip.top} + y != Sum(clip.top, y) ||
                     int64_t{clip.right} + x != Sum(clip.right, x) || int64_t{clip.bottom} + y != Sum(clip.bottom, y);
  const Limits limits{.none = variant == kWithoutClip || wraps, .clip = clip};
  // A character can show the whole band, for which all rows of its glyph may have to be looked at.
  const uint64_t work =
      characters * (uint64_t{kBandColumns} * kBandRows + static_cast<uint64_t>(std::max<int64_t>(height, 0)) / 16) +
      200;
  stage.Run(work, limits, [&] {
    QNVDevExtTextOut(stage.handle(), v.I32(kX), v.I32(kY), variant == kWithoutClip ? nullptr : &clip, string,
                     v.I32(kCount), base, v.U32(kFontOffset), &mode, nullptr,
                     variant == kWithWidths ? static_cast<const int16_t*>(static_cast<const void*>(widths)) : nullptr,
                     &opaque, v.U32(kOptions));
  });
}

}  // namespace

void AddTextScenes(std::vector<Scene>& scenes, const DeviceClass& device) {
  struct Kind {
    const char* name;
    uint32_t type;
    int variant;
    uint32_t options;
  };
  constexpr Kind kKinds[] = {
      {"ExtTextOut", 0x80, kPlain, ETO_OPAQUE},      {"ExtTextOut, widths", 0x80, kWithWidths, ETO_CLIPPED},
      {"ExtTextOut, two bytes", 0xA0, kPlain, 0},    {"ExtTextOut, two bytes and widths", 0xA0, kWithWidths, 0},
      {"ExtTextOut, short table", 0x200, kPlain, 0}, {"ExtTextOut, no clip", 0x80, kWithoutClip, 0},
  };
  for (const Kind& kind : kKinds) {
    scenes.push_back({kind.name,
                      FieldsWith(device, {{"x", 32, InWord(CallerX(device, 1))},
                                          {"y", 32, InWord(CallerY(device, 1))},
                                          {"count", 32, 3},
                                          {"font offset", 32, 3},
                                          {"options", 32, kind.options},
                                          {"opaque left", 32, CallerX(device, 2)},
                                          {"opaque top", 32, CallerY(device, 2)},
                                          {"opaque right", 32, CallerX(device, 10)},
                                          {"opaque bottom", 32, CallerY(device, 7)},
                                          {"width of a character", 16, 5},
                                          {"code", 16, 'b'},
                                          {"dfType", 16, kind.type},
                                          {"dfPixWidth", 16, 4},
                                          {"dfPixHeight", 16, 5},
                                          {"dfPitchAndFamily", 8, 1},
                                          {"dfFirstChar", 8, 'a'},
                                          {"dfLastChar", 8, 'c'},
                                          {"dfDefaultChar", 8, 0},
                                          {"dfBreakChar", 8, 1},
                                          {"table width", 16, 9}}) +
                          DrawModeFields(),
                      Text, kind.variant});
  }
}

}  // namespace qnv::test
