// Text in fonts made up for one call.
#include <algorithm>
#include <cstring>

#include "random/calls.h"

namespace qnv::test {
namespace {

// A font made up for one call: record, character table and glyph bits in one block.
struct RandomFont {
  std::vector<uint8_t> bytes;
  uint32_t offset = 0;  // of the record
  FONTINFO info{};
  int characters = 0;

  bool twoByte() const { return (info.dfType & 0x20) != 0; }
};

void Put16(std::vector<uint8_t>& bytes, std::size_t at, uint32_t value) {
  bytes[at] = static_cast<uint8_t>(value);
  bytes[at + 1] = static_cast<uint8_t>(value >> 8);
}

RandomFont MakeFont(Numbers& random, bool tame) {
  RandomFont font;
  FONTINFO& info = font.info;
  random.Fill(reinterpret_cast<uint8_t*>(&info), sizeof info);
  constexpr uint16_t kOneByteTypes[] = {0x200, 0x200, 0x200, 0x0, 0x300, 0x201, 0x80};
  constexpr uint16_t kTwoByteTypes[] = {0x20, 0x220, 0x321};
  info.dfType = random.Percent(70) ? random.Pick(kOneByteTypes) : random.Pick(kTwoByteTypes);
  info.dfPixWidth = static_cast<int16_t>(random.Range(0, 18));
  if (tame) info.dfPixWidth = static_cast<int16_t>(random.Range(4, 18));
  info.dfPixHeight = static_cast<int16_t>(tame                 ? random.Range(4, 16)
                                          : random.Percent(90) ? random.Range(1, 16)
                                                               : random.Range(0, 40));
  info.dfPitchAndFamily = static_cast<uint8_t>(random.Range(0, 255));
  font.characters = random.Range(1, 8);
  info.dfFirstChar = static_cast<uint8_t>(random.Range(0, 250 - font.characters));
  info.dfLastChar = static_cast<uint8_t>(info.dfFirstChar + font.characters - 1);
  info.dfDefaultChar = static_cast<uint8_t>(random.Range(0, font.characters - 1));
  info.dfBreakChar = static_cast<uint8_t>(random.Range(0, font.characters - 1));
  font.offset = static_cast<uint32_t>(random.Percent(50) ? 0 : random.Range(0, 21));

  const bool shortTable = info.dfType == 0x200;
  const bool fixed = !font.twoByte() && (info.dfPitchAndFamily & 1) == 0;
  const std::size_t table = font.offset + (shortTable ? 49 : 82);
  const std::size_t entry = shortTable ? 4 : 6;
  const std::size_t count = static_cast<std::size_t>(font.characters);
  std::size_t end = table + entry * count;
  font.bytes.resize(end);
  random.Fill(font.bytes.data(), font.bytes.size());
  std::memcpy(font.bytes.data() + font.offset, &info, sizeof info);
  for (std::size_t i = 0; i < count; ++i) {
    const int width = fixed ? info.dfPixWidth : random.Percent(90) ? random.Range(0, 20) : random.Range(20, 70);
    const std::size_t size = static_cast<std::size_t>((width + 7) / 8 * info.dfPixHeight);
    // Glyphs may share bits: a later one may start inside an earlier one.
    const std::size_t at = random.Percent(80) ? end : end - static_cast<std::size_t>(random.Range(0, 3));
    Put16(font.bytes, table + entry * i, static_cast<uint32_t>(width));
    Put16(font.bytes, table + entry * i + 2, static_cast<uint32_t>(at));
    if (!shortTable) Put16(font.bytes, table + entry * i + 4, static_cast<uint32_t>(at >> 16));
    if (at + size > end) {
      font.bytes.resize(at + size);
      random.Fill(font.bytes.data() + end, at + size - end);
      end = at + size;
    }
  }
  return font;
}

std::vector<uint8_t> MakeString(Numbers& random, const RandomFont& font, int characters) {
  std::vector<uint8_t> string;
  for (int i = 0; i < characters; ++i) {
    const int index = random.Range(0, font.characters - 1);
    if (font.twoByte()) {
      string.push_back(static_cast<uint8_t>(index));
      string.push_back(0);
    } else {
      string.push_back(random.Percent(85) ? static_cast<uint8_t>(font.info.dfFirstChar + index) : random.Byte());
    }
  }
  return string;
}

void DrawText(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVDevExtTextOut");
  const BandRect band = run.CallerBand();
  const RandomFont font = MakeFont(random, run.tame());
  const int characters = random.Percent(run.tame() ? 96 : 85) ? random.Range(1, 9) : 0;
  reference::TextArgs args{};
  args.x = random.Range(band.left - 40, band.right + 5);
  args.y = random.Range(band.top - 18, band.bottom + 2);
  if (run.tame()) {
    args.x = random.Range(band.left - 15, band.left + 10);
    args.y = random.Range(band.top - 5, band.top + 4);
  }
  args.count = random.Percent(88) ? characters : -characters;
  if (random.Percent(5)) args.count = static_cast<int32_t>(static_cast<uint16_t>(args.count) | (random.Word() << 16));
  args.fontOffset = font.offset;
  if (random.Percent(5)) args.fontOffset |= random.Word() & 0xFFFF0000;
  constexpr uint32_t kOptions[] = {0, 0, ETO_OPAQUE, ETO_CLIPPED, ETO_OPAQUE | ETO_CLIPPED, 0xFF};
  args.options = random.Pick(kOptions);
  run.Say("  at %d, %d, count %d, options %u, font offset 0x%X\n", args.x, args.y, args.count, args.options,
          args.fontOffset);
  run.Say("  font type 0x%X, %d x %d, pitch 0x%X, first %u, last %u, default %u, break %u\n", font.info.dfType,
          font.info.dfPixWidth, font.info.dfPixHeight, font.info.dfPitchAndFamily, font.info.dfFirstChar,
          font.info.dfLastChar, font.info.dfDefaultChar, font.info.dfBreakChar);
  args.fontBase = run.GiveMostly(97, "font", font.bytes);
  const std::vector<uint8_t> string = MakeString(random, font, characters);
  args.string = run.GiveMostly(96, "string", string);
  if (random.Percent(35)) {
    std::vector<uint8_t> widths(static_cast<std::size_t>(2 * std::max(characters, 1)));
    for (std::size_t i = 0; i < widths.size(); i += 2) {
      const int width = random.Percent(90) ? random.Range(0, 22) : random.Range(-12, 0);
      Put16(widths, i, static_cast<uint16_t>(width));
    }
    args.charWidths = reinterpret_cast<const int16_t*>(run.GiveBytes(widths));
    run.SayBytes("charWidths", widths);
  }
  if (random.Percent(50)) {
    const BandRect opaque = RectNearBand(run);
    run.SayRect("  opaque rectangle", &opaque);
    args.opaqueRect = run.Give(opaque);
  }
  if (random.Percent(70)) args.clip = GiveClip(run);
  DRAWMODE* mode = run.tame() || random.Percent(96) ? GiveDrawMode(run, false) : nullptr;
  if (mode == nullptr) run.Say("  draw mode null\n");
  // The model gets a draw mode of its own: measuring writes into it.
  DRAWMODE after = mode != nullptr ? *mode : DRAWMODE{};
  args.drawMode = mode != nullptr ? &after : nullptr;
  const uint32_t expected =
      run.OnModel([&](reference::Model& model) { return static_cast<uint32_t>(model.ExtTextOut(args)); });
  const int32_t got = QNVDevExtTextOut(run.handle(), args.x, args.y, args.clip, args.string, args.count, args.fontBase,
                                       args.fontOffset, mode, nullptr, args.charWidths, args.opaqueRect, args.options);
  if (mode != nullptr) run.Expect(mode, run.model() != nullptr ? after : *mode);
  run.Check(expected, static_cast<uint32_t>(got));
}

}  // namespace

void TextCall(RandomCase& run) {
  if (run.deviceClass() == DeviceClass::kScaled || !run.random().Percent(3)) {
    DrawText(run);
    return;
  }
  // Glyphs end at 32767 at the latest: text on a band that reaches over it.
  const BandRect saved = run.bandRect();
  const int x = run.random().Percent(50) ? saved.left : 32740 - run.random().Range(0, 60);
  const int y = run.random().Percent(50) ? saved.top : 32760 - run.random().Range(0, 16);
  const BandRect far{x, y, saved.right + x - saved.left, saved.bottom + y - saved.top};
  run.Control(QNV_SET_BAND_RECT, nullptr, &far);
  DrawText(run);
  run.Control(QNV_SET_BAND_RECT, nullptr, &saved);
}

}  // namespace qnv::test
