// Text in all its modes, on a color band and on a gray one.
#include "golden/scene.h"

namespace qnv::test {
namespace {

void PaintText(const TestDevice& device) {
  FillRectangle(device, {0, 0, 208, 40}, 0xF0E0C0);
  FillRectangle(device, {100, 0, 208, 168}, 0xD0F0D0);
  DrawLetters(device, 4, 4, "TRANSPARENT TEXT OVER COLOUR", 1,
              MakeDrawMode({.bkMode = TRANSPARENT, .background = 0, .text = 0x800000}));
  DrawLetters(device, 4, 16, "OPAQUE TEXT OVER COLOUR", 1, MakeDrawMode({.background = 0x80FFFF, .text = 0x0000A0}));
  // Large letters cut by a clip rectangle.
  const BandRect clip{30, 30, 168, 44};
  DrawLetters(device, 20, 28, "CLIPPED ALL ROUND", 2, MakeDrawMode({.background = 0x804000, .text = 0xFFFFFF}),
              {.clip = &clip});
  // An opaque rectangle with text larger than it, unclipped and clipped.
  DRAWMODE mode = MakeDrawMode({.bkMode = TRANSPARENT, .background = 0xC0C0FF});
  const BandRect left{8, 54, 84, 66};
  DrawLetters(device, 4, 52, "RECTANGLE", 2, mode, {.opaqueRect = &left, .options = ETO_OPAQUE});
  const BandRect right{112, 54, 196, 66};
  DrawLetters(device, 108, 52, "RECTANGLE", 2, mode, {.opaqueRect = &right, .options = ETO_OPAQUE | ETO_CLIPPED});
  // Justification: the same words over three widths, and extra after every character.
  for (int16_t line = 0; line < 3; ++line) {
    mode = MakeDrawMode({.background = 0xE0E0E0, .text = 0x004000});
    mode.TBreakExtra = static_cast<int16_t>(line * 17);
    mode.BreakCount = 3;
    mode.BreakErr = 1;
    DrawLetters(device, 4, 74 + 10 * line, "FOUR WORDS SPREAD OUT", 1, mode);
  }
  mode = MakeDrawMode({.background = 0xE0E0E0, .text = 0x404000});
  mode.CharacterExtra = 3;
  DrawLetters(device, 4, 106, "CHARACTER EXTRA", 1, mode);
  // Positions given one by one, and codes that the font does not hold.
  mode = MakeDrawMode({.bkMode = TRANSPARENT, .background = 0, .text = 0x0000FF});
  const int16_t widths[] = {6, 7, 8, 9, 10, 12, 14, 16, 0};
  DrawLetters(device, 4, 120, "POSITIONS", 1, mode, {.charWidths = widths});
  DrawLetters(device, 112, 120, "UNKNOWN \x01\xFE~", 1, mode);
  // A two-byte font of four boxes.
  FontShape shape{.height = 12, .twoByte = true};
  FontBuilder builder(shape);
  for (uint16_t i = 0; i < 4; ++i) {
    std::string picture;
    for (int y = 0; y < 12; ++y) {
      for (int x = 0; x < 13; ++x) {
        const bool border = x == 0 || y == 0 || x == 11 || y == 11;
        const bool inside = x > 1 && x < 10 && y > 1 && y < 10 && (x / 5 + y / 6 * 2) <= i;
        picture += x < 12 && (border || inside) ? '#' : '.';
      }
    }
    builder.Glyph(static_cast<uint16_t>(1000 + i), 13, picture);
  }
  const Font wide = builder.Build();
  mode = MakeDrawMode({.text = 0x600060});
  TwoByteText(device, 4, 136, {1000, 1001, 1002, 1003}, 4, wide, mode);
  const int16_t apart[] = {20, 20, 20, 20};
  TwoByteText(device, 72, 136, {1003, 1002, 1001, 1000}, 4, wide, mode, {.charWidths = apart});
  // Out of the band on both sides.
  mode = MakeDrawMode({.background = 0xA0FFA0});
  DrawLetters(device, -9, 152, "LEFT EDGE", 2, mode);
  DrawLetters(device, 120, 152, "RIGHT EDGE", 2, mode);
}

// The colors of text are taken as they are: a gray band keeps their high byte alone.
std::vector<PlaneImage> PaintTexts() {
  const Cleared<TestDevice> color({.width = 208, .height = 168});
  const Cleared<TestDevice> gray({.bitsPerPixel = 8, .width = 208, .height = 168});
  PaintText(color);
  PaintText(gray);
  return {BandPicture("text_modes", color), BandPicture("text_on_gray", gray)};
}

}  // namespace

std::vector<PaintedScene> TextScenes() { return {{"texts", PaintTexts}}; }

}  // namespace qnv::test
