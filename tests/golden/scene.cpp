// What the scenes share: letters, captions, rectangles, the generated photograph, planes as pictures.
#include "golden/scene.h"

#include <algorithm>

namespace qnv::test {
namespace {

// Letters of 5 x 7 pixels side by side, a column apart.
struct LetterSheet {
  std::string_view letters;
  const char* rows[7];
};

constexpr LetterSheet kSheets[] = {{"ABCDEFGHIJKLM",
                                    {".###. ####. .###. ####. ##### ##### .###. #...# ###.. ..### #...# #.... #...#",
                                     "#...# #...# #...# #...# #.... #.... #...# #...# .#... ...#. #..#. #.... ##.##",
                                     "#...# #...# #.... #...# #.... #.... #.... #...# .#... ...#. #.#.. #.... #.#.#",
                                     "##### ####. #.... #...# ####. ####. #.### ##### .#... ...#. ##... #.... #.#.#",
                                     "#...# #...# #.... #...# #.... #.... #...# #...# .#... ...#. #.#.. #.... #...#",
                                     "#...# #...# #...# #...# #.... #.... #...# #...# .#... #..#. #..#. #.... #...#",
                                     "#...# ####. .###. ####. ##### #.... .#### #...# ###.. .##.. #...# ##### #...#"}},
                                   {"NOPQRSTUVWXYZ",
                                    {"#...# .###. ####. .###. ####. .#### ##### #...# #...# #...# #...# #...# #####",
                                     "#...# #...# #...# #...# #...# #.... ..#.. #...# #...# #...# #...# #...# ....#",
                                     "##..# #...# #...# #...# #...# #.... ..#.. #...# #...# #...# .#.#. #...# ...#.",
                                     "#.#.# #...# ####. #...# ####. .###. ..#.. #...# #...# #.#.# ..#.. .#.#. ..#..",
                                     "#..## #...# #.... #.#.# #.#.. ....# ..#.. #...# #...# #.#.# .#.#. ..#.. .#...",
                                     "#...# #...# #.... #..#. #..#. ....# ..#.. #...# .#.#. #.#.# #...# ..#.. #....",
                                     "#...# .###. #.... .##.# #...# ####. ..#.. .###. ..#.. .#.#. #...# ..#.. #####"}},
                                   {"0123456789 ",
                                    {".###. .#... .###. ##### ...#. ##### ..##. ##### .###. .###. .....",
                                     "#...# ##... #...# ...#. ..##. #.... .#... ....# #...# #...# .....",
                                     "#..## .#... ....# ..#.. .#.#. ####. #.... ...#. #...# #...# .....",
                                     "#.#.# .#... ...#. ...#. #..#. ....# ####. ..#.. .###. .#### .....",
                                     "##..# .#... ..#.. ....# ##### ....# #...# .#... #...# ....# .....",
                                     "#...# .#... .#... #...# ...#. #...# #...# .#... #...# ...#. .....",
                                     ".###. ###.. ##### .###. ...#. .###. .###. .#... .###. .##.. ....."}}};

constexpr int kLetterRows = 9;  // an empty row above and below

// A pixel of a letter's cell. Codes without a letter of their own are boxes, as the default character is.
bool LetterPixel(char letter, int column, int cellRow) {
  const int row = cellRow - 1;
  if (row < 0 || row >= 7 || column >= 5) return false;
  for (const LetterSheet& sheet : kSheets) {
    const std::size_t at = sheet.letters.find(letter);
    if (at != std::string_view::npos) return sheet.rows[row][6 * at + static_cast<std::size_t>(column)] == '#';
  }
  return row == 0 || row == 6 || column == 0 || column == 4;
}

int LetterWidth(char letter) { return letter == 'I' || letter == '1' || letter == ' ' ? 4 : 6; }

Font MakeLetterFont(int scale) {
  FontShape shape;
  shape.height = static_cast<int16_t>(kLetterRows * scale);
  shape.firstChar = ' ';
  shape.lastChar = 'Z';
  shape.defaultChar = '?' - ' ';
  shape.table = scale == 1 ? TableForm::kShort : TableForm::kLong;
  FontBuilder builder(shape);
  for (char letter = ' '; letter <= 'Z'; ++letter) {
    const int width = LetterWidth(letter) * scale;
    std::string picture;
    for (int i = 0; i < width * kLetterRows * scale; ++i) {
      picture += LetterPixel(letter, i % width / scale, i / width / scale) ? '#' : '.';
    }
    builder.Glyph(static_cast<uint16_t>(letter), width, picture);
  }
  return builder.Build();
}

const Font& LetterFont(int scale) {
  static const Font small = MakeLetterFont(1), large = MakeLetterFont(2);
  return scale == 1 ? small : large;
}

struct Color {
  uint32_t red, green, blue;
};

Color PhotoColor(int32_t x, int32_t y) {
  const int32_t sunX = x - 34;
  const int32_t sunY = y - 12;
  if (sunX * sunX + sunY * sunY <= 60) return {255, 224, 32};
  const bool stem = x >= 5 && x < 9 && y >= 5 && y < 33;
  const bool bars = x >= 5 && x < 20 && ((y >= 5 && y < 9) || (y >= 17 && y < 21));
  if (stem || bars) return {255, 255, 255};
  const uint32_t column = static_cast<uint32_t>(x);
  const uint32_t row = static_cast<uint32_t>(y);
  if (y >= 30) return {column * 2, 160 - column, row * 2};
  return {column * 5, row * 5, 255 - row * 4};
}

constexpr uint32_t kSixteenColors[16] = {0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080,
                                         0x808000, 0xC0C0C0, 0x808080, 0x0000FF, 0x00FF00, 0x00FFFF,
                                         0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};

uint32_t Distance(const Color& a, uint32_t color) {
  const auto square = [](uint32_t p, uint32_t q) { return p > q ? (p - q) * (p - q) : (q - p) * (q - p); };
  return square(a.red, color & 0xFF) + square(a.green, (color >> 8) & 0xFF) + square(a.blue, (color >> 16) & 0xFF);
}

// The pixel value of a photograph's color: an index of the depth's own table, or the packed color.
uint32_t PhotoPixel(int32_t x, int32_t y, uint16_t bitCount) {
  const Color c = PhotoColor(x, y);
  switch (bitCount) {
    case 1: {
      const uint32_t level = (c.red * 30 + c.green * 59 + c.blue * 11) / 100;
      const uint32_t thresholds[4] = {32, 160, 224, 96};  // ordered dither of two by two pixels
      return level > thresholds[(y % 2) * 2 + x % 2] ? 1 : 0;
    }
    case 4: {
      uint32_t best = 0;
      for (uint32_t i = 1; i < 16; ++i) {
        if (Distance(c, kSixteenColors[i]) < Distance(c, kSixteenColors[best])) best = i;
      }
      return best;
    }
    case 8: return (c.red + 25) / 51 * 36 + (c.green + 25) / 51 * 6 + (c.blue + 25) / 51;
    case 16: return (c.red >> 3) << 10 | (c.green >> 3) << 5 | c.blue >> 3;
    default: return c.red << 16 | c.green << 8 | c.blue;
  }
}

std::vector<uint32_t> PhotoTable(uint16_t bitCount) {
  std::vector<uint32_t> table;
  if (bitCount == 1) table = {0x602000, 0xE0FFFF};
  if (bitCount == 4) table.assign(std::begin(kSixteenColors), std::end(kSixteenColors));
  if (bitCount == 8) {
    for (uint32_t i = 0; i < 216; ++i) table.push_back(i % 6 * 51 << 16 | i / 6 % 6 * 51 << 8 | i / 36 * 51);
  }
  return table;
}

// The first channel is the low byte of a pixel's color.
PlaneImage PictureOf(const char* name, const PlaneImage& plane, uint32_t channels, uint32_t factor) {
  std::vector<uint8_t> bytes;
  for (int32_t row = 0; row < plane.rows(); ++row) {
    for (int32_t column = 0; column < plane.columns(); ++column) {
      const uint32_t color = plane.Color(column, row);
      for (uint32_t i = 0; i < channels; ++i) bytes.push_back(static_cast<uint8_t>((color >> 8 * i & 0xFF) * factor));
    }
  }
  return MakePicture(name, static_cast<uint32_t>(plane.columns()), static_cast<uint32_t>(plane.rows()), channels,
                     bytes);
}

}  // namespace

std::vector<PaintedScene> AllScenes() {
  std::vector<PaintedScene> scenes;
  for (const auto& some : {FigureScenes(), TextScenes(), ImageScenes(), DeviceScenes()}) {
    scenes.insert(scenes.end(), some.begin(), some.end());
  }
  return scenes;
}

PlaneImage BandPicture(const char* name, const TestDevice& device) {
  const PlaneImage plane = BandImage(device);
  EXPECT_TRUE(device.FencesIntact());
  return PictureOf(name, plane, static_cast<uint32_t>(plane.bytesPerPixel()), 1);
}

PlaneImage TagPicture(const char* name, const TestDevice& device) { return PictureOf(name, TagImage(device), 1, 85); }

void DrawLetters(const TestDevice& device, int32_t x, int32_t y, std::string_view text, int scale, DRAWMODE mode,
                 const TextSetup& setup) {
  DrawTextAt(device, x, y, text, LetterFont(scale), mode, setup);
}

void Caption(const TestDevice& device, int32_t x, int32_t y, std::string_view text, uint32_t color) {
  DrawLetters(device, x, y, text, 1, MakeDrawMode({.bkMode = TRANSPARENT, .text = color}));
}

void FillRectangle(const TestDevice& device, const BandRect& rect, const PhysicalBrush& brush, const DRAWMODE& mode) {
  const auto word = [](int32_t v) { return static_cast<int16_t>(v); };
  const int16_t points[6] = {2, word(rect.top), word(rect.bottom), word(rect.left), word(rect.right), 2};
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_BANDED_SPANS, 1, points, nullptr, &brush, &mode, &kEverywhere) & 0xFFFF);
}

void FillRectangle(const TestDevice& device, const BandRect& rect, uint32_t color) {
  FillRectangle(device, rect, SolidBrush(device.handle(), color), MakeDrawMode());
}

Dib PhotoDib(uint16_t bitCount, bool topDown) {
  std::vector<uint8_t> bits;
  for (int32_t i = 0; i < kPhotoHeight; ++i) {
    const int32_t y = topDown ? i : kPhotoHeight - 1 - i;
    std::vector<uint32_t> values;
    for (int32_t x = 0; x < kPhotoWidth; ++x) values.push_back(PhotoPixel(x, y, bitCount));
    AppendDibRow(bits, values, bitCount, 0);
  }
  const DibShape shape{.bitCount = bitCount, .topDown = topDown, .colorsUsed = bitCount == 8 ? 216u : 0u};
  return Dib(DibInfo(kPhotoWidth, kPhotoHeight, shape, PhotoTable(bitCount)), bits);
}

}  // namespace qnv::test
