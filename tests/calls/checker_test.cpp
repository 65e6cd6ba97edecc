// Each mistake is made once and found once, at its call and argument; a correct page has none.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "calls/recording.h"

namespace qnv::test {
namespace {

using calls::Finding;
using calls::Mistake;

// A host that is checked while it is recorded.
class CheckedHost {
 public:
  explicit CheckedHost(const DeviceDescription& description, bool tagPlane = false)
      : host("checked", {.check = [this](const Finding& finding) { found.push_back(finding); }}),
        description_(description) {
    rect = {0, 0, static_cast<int32_t>(description.width), static_cast<int32_t>(description.height)};
    band_.resize(std::size_t{3} * description.width * description.height + 4096);
    device = QNV_RECORDED_CALL(host, enable, kEnable, &description_, &rect, band_.data(),
                               tagPlane ? band_.data() + band_.size() / 2 : nullptr);
    QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
    mode.Rop2 = R2_COPYPEN;
    mode.bkMode = TRANSPARENT;
  }
  ~CheckedHost() { QNV_RECORDED_CALL(host, disable, kDisable, device); }

  PhysicalBrush Solid(uint32_t color) {
    const LogicalBrush logical{BS_SOLID, color, 0, 0};
    PhysicalBrush brush{};
    QNV_RECORDED_CALL(host, realizeObject, kRealizeObject, device, OBJ_BRUSH, &logical, &brush, nullptr);
    return brush;
  }
  uint32_t Fill(const PhysicalBrush* brush, const DRAWMODE* drawMode) {
    return QNV_RECORDED_CALL(host, bitBlt, kDevBitBlt, device, 1, 1, nullptr, 0, 0, 4, 4, PATCOPY, brush, drawMode,
                             &rect);
  }
  uint32_t Output(uint32_t style, uint32_t count, const std::vector<int16_t>& points) {
    return QNV_RECORDED_CALL(host, output, kOutput, device, style, count, points.data(), nullptr, nullptr, &mode,
                             &rect);
  }
  uint32_t Stretch(int32_t dstY, int32_t dstHeight, int32_t rows, const void* info, const void* bits) {
    return QNV_RECORDED_CALL(host, stretchDIBits, kStretchDIBits, device, 0, 0, dstY, 8, dstHeight, 0, 0, 8, rows, bits,
                             info, nullptr, SRCCOPY, nullptr, nullptr, &rect);
  }

  std::vector<Finding> found;
  RecordedHost host;
  BandRect rect;
  DeviceHandle* device;
  DRAWMODE mode{};

 private:
  DeviceDescription description_;
  std::vector<uint8_t> band_;
};

constexpr DeviceDescription kColor{QNV_KIND_RASTER, 24, 300, 40, 30, 300};

struct Picture {
  BITMAPINFOHEADER header;
  uint8_t colors[16][4];
};

std::vector<uint8_t> FontWithGlyphAt(uint32_t offset) {
  std::vector<uint8_t> font(400);
  FONTINFO info{};
  info.dfPixHeight = 8;
  info.dfPitchAndFamily = 1;
  info.dfFirstChar = info.dfLastChar = 'A';
  std::memcpy(font.data(), &info, sizeof info);
  font[82] = 8;
  std::memcpy(font.data() + 84, &offset, 4);
  return font;
}

uint32_t Text(CheckedHost& h, const std::vector<uint8_t>& font, const BandRect* clip, uint32_t offset) {
  return static_cast<uint32_t>(QNV_RECORDED_CALL(h.host, extTextOut, kDevExtTextOut, h.device, 1, 1, clip, "A", 1,
                                                 font.data(), offset, &h.mode, nullptr, nullptr, nullptr, 0));
}

const DeviceDescription kHalf{QNV_KIND_SCALED, 24, 720, 40, 30, 360};
const DeviceDescription kThird{QNV_KIND_SCALED, 24, 720, 40, 30, 240};
const DeviceDescription kWide{QNV_KIND_RASTER, 24, 300, 22000, 2, 300};

struct MistakeCase {
  const char* name;
  const DeviceDescription& description;
  void (*make)(CheckedHost&);
  Mistake mistake;  // with argument
  const char* argument;
};

const MistakeCase kMistakes[] = {
    {"a null handle", kColor,
     [](CheckedHost& h) { QNV_RECORDED_CALL(h.host, colorInfo, kColorInfo, nullptr, 1, nullptr); }, Mistake::kBadHandle,
     "handle"},
    {"a handle that is none", kColor,
     [](CheckedHost& h) {
       uint16_t none = 7;
       QNV_RECORDED_CALL(h.host, control, kControl, reinterpret_cast<DeviceHandle*>(&none), QNV_CLEAR_BAND, nullptr,
                         nullptr);
     },
     Mistake::kBadHandle, "handle"},
    {"a transfer without clip", kColor,
     [](CheckedHost& h) {
       const PhysicalBrush brush = h.Solid(0);
       QNV_RECORDED_CALL(h.host, bitBlt, kDevBitBlt, h.device, 1, 1, nullptr, 0, 0, 4, 4, PATCOPY, &brush, &h.mode,
                         nullptr);
     },
     Mistake::kNullRecord, "clip"},
    {"a transfer without its source", kColor,
     [](CheckedHost& h) {
       QNV_RECORDED_CALL(h.host, bitBlt, kDevBitBlt, h.device, 1, 1, nullptr, 0, 0, 4, 4, SRCCOPY, nullptr, &h.mode,
                         &h.rect);
     },
     Mistake::kNullRecord, "source"},
    {"an escape without data", kColor,
     [](CheckedHost& h) { QNV_RECORDED_CALL(h.host, control, kControl, h.device, QNV_SET_ORIGIN, nullptr, nullptr); },
     Mistake::kNullRecord, "data"},
    {"a text without draw mode", kColor,
     [](CheckedHost& h) {
       QNV_RECORDED_CALL(h.host, extTextOut, kDevExtTextOut, h.device, 1, 1, &h.rect, "A", 1,
                         FontWithGlyphAt(100).data(), 0, nullptr, nullptr, nullptr, nullptr, 0);
     },
     Mistake::kNullRecord, "drawMode"},
    {"a band that is too high", kColor,
     [](CheckedHost& h) {
       const BandRect high{0, 60, 40, 91};
       QNV_RECORDED_CALL(h.host, control, kControl, h.device, QNV_SET_BAND_RECT, &high, nullptr);
     },
     Mistake::kBandTooLarge, "data"},
    {"a pattern without draw mode", kColor,
     [](CheckedHost& h) {
       const PhysicalBrush brush = h.Solid(0);
       h.Fill(&brush, nullptr);
     },
     Mistake::kNoPattern, "drawMode"},
    {"a pattern without brush", kColor, [](CheckedHost& h) { h.Fill(nullptr, &h.mode); }, Mistake::kNoPattern, "brush"},
    {"a text without clip", kColor, [](CheckedHost& h) { Text(h, FontWithGlyphAt(100), nullptr, 0); },
     Mistake::kTextWithoutClip, "clip"},
    {"run lengths that go on", kColor,
     [](CheckedHost& h) {
       const Picture picture{{40, 8, 2, 1, 4, BI_RLE4, 5, 0, 0, 16, 0}, {}};
       const uint8_t bits[600] = {8, 0x12, 0, 0, 8, 0x34, 0, 1};
       h.Stretch(0, 2, 2, &picture, bits);
     },
     Mistake::kRunLengthsTooLong, "bits"},
    {"a short color table", kColor,
     [](CheckedHost& h) {
       const Picture picture{{40, 8, 2, 1, 4, BI_RGB, 0, 0, 0, 3, 0}, {}};
       const uint8_t bits[8] = {0x01, 0x20, 0x01, 0x20, 0x00, 0x03, 0x00, 0x00};
       h.Stretch(0, 2, 2, &picture, bits);
     },
     Mistake::kShortColorTable, "bitmapInfo"},
    {"a short color table of run lengths", kColor,
     [](CheckedHost& h) {
       const Picture picture{{40, 8, 1, 1, 4, BI_RLE4, 0, 0, 0, 3, 0}, {}};
       const uint8_t bits[600] = {8, 0x13, 0, 1};
       h.Stretch(0, 1, 1, &picture, bits);
     },
     Mistake::kShortColorTable, "bitmapInfo"},
    {"a font offset of more than 16 bits", kColor,
     [](CheckedHost& h) { Text(h, FontWithGlyphAt(100), &h.rect, 0x10000); }, Mistake::kFontOffset, "fontOffset"},
    {"a glyph inside the font record", kColor, [](CheckedHost& h) { Text(h, FontWithGlyphAt(20), &h.rect, 0); },
     Mistake::kFontOffset, "fontOffset"},
    {"an odd count", kColor,
     [](CheckedHost& h) {
       h.Output(OS_BANDED_SPANS, 1, {1, 2, 3, 4, 1});
     },
     Mistake::kCountAndStyle, "count"},
    {"a negative count", kColor,
     [](CheckedHost& h) {
       h.Output(OS_ROW_RECORDS, 1, {3, -2, 1, 1});
     },
     Mistake::kCountAndStyle, "count"},
    {"deltas without rows", kColor,
     [](CheckedHost& h) {
       h.Output(OS_BYTE_DELTAS, 0, {1, 2, 3});
     },
     Mistake::kCountAndStyle, "count"},
    {"an unknown style", kColor,
     [](CheckedHost& h) {
       h.Output(6, 1, {1, 2, 3});
     },
     Mistake::kCountAndStyle, "style"},
    {"rows that are too wide for images", kWide,
     [](CheckedHost& h) {
       const Picture picture{{40, 8, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
       const uint8_t bits[24] = {};
       h.Stretch(0, 1, 1, &picture, bits);
     },
     Mistake::kWideRows, "handle"},
    {"an enlarged image that begins on a dropped row", kThird,
     [](CheckedHost& h) {
       const Picture picture{{40, 8, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
       const uint8_t bits[24] = {};
       h.Stretch(1, 8, 1, &picture, bits);
     },
     Mistake::kDroppedRows, "bits"},
    {"a band that is moved and not cleared", kColor,
     [](CheckedHost& h) {
       const PhysicalBrush brush = h.Solid(0);
       h.Fill(&brush, &h.mode);
       h.rect = {0, 30, 40, 60};
       QNV_RECORDED_CALL(h.host, control, kControl, h.device, QNV_SET_BAND_RECT, &h.rect, nullptr);
       h.Fill(&brush, &h.mode);
       h.Fill(&brush, &h.mode);
     },
     Mistake::kMovedWithoutClear, "handle"},
};

TEST(Checker, FindsEachMistakeOnce) {
  for (const MistakeCase& c : kMistakes) {
    CheckedHost host(c.description);
    c.make(host);
    ASSERT_EQ(host.found.size(), 1u) << c.name;
    const Finding& finding = host.found[0];
    EXPECT_EQ(finding.mistake, c.mistake) << c.name;
    EXPECT_STREQ(calls::EntryPointOf(finding.function).arguments[finding.argument].name, c.argument) << c.name;
  }
}

TEST(Checker, FindsABrushOfAnotherDevice) {
  CheckedHost gray({QNV_KIND_RASTER, 8, 300, 40, 30, 300});
  // The same recorder, so that it knows both devices.
  const DeviceDescription description = kColor;
  std::vector<uint8_t> band(std::size_t{3} * 40 * 30);
  DeviceHandle* const color =
      QNV_RECORDED_CALL(gray.host, enable, kEnable, &description, &gray.rect, band.data(), nullptr);
  const PhysicalBrush brush = gray.Solid(0x000000FF);
  gray.Fill(&brush, &gray.mode);
  EXPECT_TRUE(gray.found.empty());
  QNV_RECORDED_CALL(gray.host, bitBlt, kDevBitBlt, color, 1, 1, nullptr, 0, 0, 4, 4, PATCOPY, &brush, &gray.mode,
                    &gray.rect);
  ASSERT_EQ(gray.found.size(), 1u);
  EXPECT_EQ(gray.found[0].mistake, Mistake::kForeignBrush);
  EXPECT_EQ(calls::Describe(gray.found[0]),
            "call 5, QNVDevBitBlt, brush: mistake 4: the brush was realised by a device of another kind, and has other "
            "colors or cells here. Realise the brush with the device that paints with it.");
  QNV_RECORDED_CALL(gray.host, disable, kDisable, color);
}

TEST(Checker, FindsAHandleThatWasEnded) {
  std::vector<Finding> found;
  const BandRect rect{0, 0, 40, 30};
  std::vector<uint8_t> band(std::size_t{3} * 40 * 30);
  // A handle that was ended must not be passed to the library, which is left out here.
  calls::CallChecker checker([&](const Finding& finding) { found.push_back(finding); });
  calls::Slots enable{{calls::ToSlot(&kColor), calls::ToSlot(&rect), calls::ToSlot(band.data()), 0}};
  checker.Before(0, calls::Function::kEnable, enable, 0);
  checker.After(calls::Function::kEnable, enable, 1, 0);
  const calls::Slots handle{{calls::ToSlot(band.data())}};
  checker.Before(1, calls::Function::kDisable, handle, 1);
  checker.After(calls::Function::kDisable, handle, 1, 0);
  EXPECT_TRUE(found.empty());
  checker.Before(2, calls::Function::kDisable, handle, 1);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].mistake, Mistake::kBadHandle);
}

TEST(Checker, FindsNothingInCorrectCalls) {
  const struct {
    const char* name;
    const DeviceDescription& description;
    void (*make)(CheckedHost&);
  } cases[] = {
      {"a fill", kColor,
       [](CheckedHost& h) {
         const PhysicalBrush brush = h.Solid(0);
         h.Fill(&brush, &h.mode);
         h.Fill(&brush, nullptr);  // the pattern of the call before
       }},
      {"black without brush", kColor,
       [](CheckedHost& h) {
         const uint8_t bits[8] = {};
         const SourceBitmap source{0, 8, 4, 2, 1, 1, bits};
         QNV_RECORDED_CALL(h.host, bitBlt, kDevBitBlt, h.device, 1, 1, &source, 0, 0, 8, 4, MERGECOPY, nullptr, &h.mode,
                           &h.rect);
       }},
      {"bands that are cleared", kColor,
       [](CheckedHost& h) {
         for (int band = 0; band < 3; ++band) {
           h.rect = {0, 30 * band, 40, 30 * band + 30};
           QNV_RECORDED_CALL(h.host, control, kControl, h.device, QNV_SET_BAND_RECT, &h.rect, nullptr);
           QNV_RECORDED_CALL(h.host, control, kControl, h.device, QNV_CLEAR_BAND, nullptr, nullptr);
           const PhysicalBrush brush = h.Solid(0);
           h.Fill(&brush, &h.mode);
         }
       }},
      {"spans", kColor,
       [](CheckedHost& h) {
         h.Output(OS_BANDED_SPANS, 1, {2, 2, 3, 4, 9, 2});
         h.Output(OS_ROW_RECORDS, 2, {3, 0, 2, 1, 4});
         h.Output(OS_BEGINNSCAN, 1, {0});
       }},
      {"text", kColor, [](CheckedHost& h) { Text(h, FontWithGlyphAt(100), &h.rect, 0); }},
      {"run lengths with an end", kColor,
       [](CheckedHost& h) {
         const Picture picture{{40, 8, 2, 1, 4, BI_RLE4, 8, 0, 0, 5, 0}, {}};
         const uint8_t bits[600] = {8, 0x12, 0, 0, 8, 0x34, 0, 1};
         h.Stretch(0, 2, 2, &picture, bits);
       }},
      {"an enlarged image that begins on a kept row", kHalf,
       [](CheckedHost& h) {
         const Picture picture{{40, 8, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
         const uint8_t bits[24] = {};
         h.Stretch(2, 8, 1, &picture, bits);
       }},
  };
  for (const auto& c : cases) {
    CheckedHost host(c.description);
    c.make(host);
    for (const Finding& finding : host.found) ADD_FAILURE() << c.name << ": " << calls::Describe(finding);
  }
}

TEST(Checker, PutsFindingsIntoTheFile) {
  std::vector<Finding> found;
  RecordedHost host("findings", {.check = [&](const Finding& finding) { found.push_back(finding); }});
  QNV_RECORDED_CALL(host, colorInfo, kColorInfo, nullptr, 1, nullptr);
  QNV_RECORDED_CALL(host, colorInfo, kColorInfo, nullptr, 1, nullptr);
  const calls::Bytes bytes = host.Finish();
  calls::CallFile file;
  ASSERT_EQ(calls::CallFile::Read(bytes.data(), bytes.size(), &file).error, calls::FileError::kNone);
  ASSERT_EQ(file.Findings().size(), 2u);
  EXPECT_EQ(file.Findings()[1].mistake, 1u);
  EXPECT_EQ(file.Findings()[1].call, 1u);
  EXPECT_EQ(file.Findings()[1].function, static_cast<uint32_t>(calls::Function::kColorInfo));
}

// The page of the mistakes has a section for each, with its texts.
TEST(Checker, IsDescribed) {
  std::ifstream page(std::string(QNV_TEST_SOURCE_DIR) + "/../docs/host-mistakes.md");
  const std::string text((std::istreambuf_iterator<char>(page)), std::istreambuf_iterator<char>());
  std::string flat;
  for (const char c : text) flat += c == '\n' ? ' ' : c;
  for (std::size_t i = 1; i <= calls::kMistakeCount; ++i) {
    const calls::MistakeText& mistake = calls::TextOf(static_cast<Mistake>(i));
    EXPECT_EQ(static_cast<std::size_t>(mistake.mistake), i);
    EXPECT_NE(text.find("\n## " + std::to_string(i) + ". "), std::string::npos) << i;
    EXPECT_NE(flat.find(mistake.wrong + 1), std::string::npos) << i;
    EXPECT_NE(flat.find(mistake.advice), std::string::npos) << i;
  }
}

}  // namespace
}  // namespace qnv::test
