// Figures that the platform scan-converts itself, painted from every span encoding that can hold them.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "windows/paired_objects.h"
#include "windows/region_spans.h"

namespace qnv::test {
namespace {

struct Figure {
  const char* name;
  GdiObject<HRGN> region;
  bool oneSpanPerRow;
  bool gentle;  // edges move by at most -8..7
};

GdiObject<HRGN> PolygonRegion(const std::vector<POINT>& points, int fill) {
  return GdiObject<HRGN>(CreatePolygonRgn(points.data(), static_cast<int>(points.size()), fill));
}

std::vector<Figure> AllFigures() {
  std::vector<Figure> figures;
  figures.push_back({"ellipse", GdiObject<HRGN>(CreateEllipticRgn(60, 10, 150, 70)), true, false});
  figures.push_back({"circle beyond the band", GdiObject<HRGN>(CreateEllipticRgn(20, -30, 190, 130)), true, false});
  figures.push_back({"round rectangle", GdiObject<HRGN>(CreateRoundRectRgn(55, 5, 145, 75, 30, 24)), true, false});
  figures.push_back({"diamond", PolygonRegion({{100, 0}, {150, 40}, {100, 80}, {50, 40}}, ALTERNATE), true, true});
  figures.push_back({"leaning strip", PolygonRegion({{40, 2}, {60, 2}, {160, 77}, {140, 77}}, ALTERNATE), true, true});
  const std::vector<POINT> star = {{100, 3}, {130, 76}, {52, 28}, {148, 28}, {70, 76}};
  figures.push_back({"star with a hole", PolygonRegion(star, ALTERNATE), false, false});
  figures.push_back({"full star", PolygonRegion(star, WINDING), false, false});
  return figures;
}

// Spans are counted from a page that the host may have moved.
constexpr SpanOrigin kOrigins[] = {{0, 0}, {13, -7}};

class GdiFigures : public testing::TestWithParam<uint16_t> {};

TEST_P(GdiFigures, EveryEncodingAgreesWithTheRegion) {
  Witness witness({.depth = GetParam(), .width = 101, .height = 67, .left = 50, .top = 5});
  SetBrushOrgEx(witness.dc(), -50, -5, nullptr);
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = R2_XORPEN;
  witness.Apply(mode);
  const BrushPair brush = DeepPatternPair(witness, 3);
  const Selected selected(witness.dc(), brush.platform.get());
  for (const Figure& figure : AllFigures()) {
    for (const SpanOrigin& origin : kOrigins) {
      std::vector<std::pair<uint32_t, SpanList>> lists = {{OS_BANDED_SPANS, BandedSpans(figure.region.get(), origin)},
                                                          {OS_ROW_RECORDS, RowRecords(figure.region.get(), origin)}};
      if (figure.oneSpanPerRow) {
        lists.push_back({OS_ROW_SPANS, RowSpans(figure.region.get(), origin)});
        lists.push_back({OS_BYTE_DELTAS, ByteDeltas(figure.region.get(), origin)});
      }
      if (figure.gentle) lists.push_back({OS_NIBBLE_DELTAS, NibbleDeltas(figure.region.get(), origin)});
      const DrawingOrigin data{origin.x, origin.y};
      QNVControl(witness.handle(), QNV_SET_ORIGIN, &data, nullptr);
      for (const auto& [style, list] : lists) {
        witness.Reset(style);
        PaintRgn(witness.dc(), figure.region.get());
        EXPECT_EQ(1u, QNVOutput(witness.handle(), style, list.count, list.words.data(), nullptr, &brush.library, &mode,
                                &kEverywhere) &
                          0xFFFF);
        EXPECT_TRUE(witness.Same()) << figure.name << ", style " << style << ", origin " << origin.x;
        EXPECT_FALSE(witness.Untouched());
      }
    }
  }
}

TEST_P(GdiFigures, ClipsAgree) {
  Witness witness({.depth = GetParam(), .width = 101, .height = 67, .left = 50, .top = 5});
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = SolidPair(witness, ExactColor(witness, 0x00407090));
  const Selected selected(witness.dc(), brush.platform.get());
  const BandRect clips[] = {{70, 20, 120, 60}, {0, 0, 100, 40}, {99, 39, 300, 300}, {60, 30, 61, 31}, {0, 0, 20, 20}};
  for (const Figure& figure : AllFigures()) {
    const SpanList list = RowRecords(figure.region.get());
    for (const BandRect& clip : clips) {
      witness.Reset(5);
      const ClippedTo clipped(witness.dc(), clip);
      PaintRgn(witness.dc(), figure.region.get());
      QNVOutput(witness.handle(), OS_ROW_RECORDS, list.count, list.words.data(), nullptr, &brush.library, &mode, &clip);
      EXPECT_TRUE(witness.Same()) << figure.name << ", " << Describe(clip);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiFigures, testing::Values(uint16_t{24}, uint16_t{8}));

}  // namespace
}  // namespace qnv::test
