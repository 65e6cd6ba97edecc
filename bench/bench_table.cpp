// The list of all rows, the shapes, and the names of rows.
#include "bench_table.h"

#include <algorithm>

#include "device_fixture.h"

namespace qnv::bench {
namespace {

constexpr const char* kBandNames[kBandCount] = {"bgr24", "gray8", "scaled", "scaledgray", "dual", "dualmarked"};

// Name, size, size of the band, place in the band. "call" and "page" have no rectangle.
constexpr ShapeInfo kShapes[kShapeCount] = {
    {"tile", 64, 64, 1200, 128, 3, 5},        {"band1200", 1200, 128, 1200, 128, 0, 0},
    {"band4960", 4960, 128, 4960, 128, 0, 0}, {"call", 0, 0, 1200, 128, 0, 0},
    {"page", 1200, 1600, 1200, 1600, 0, 0},
};

// Words of a row name that belong to the source.
constexpr const char* kSourceNames[] = {"solid", "hatch", "hatchopaque", "p8",     "p16",
                                        "rgb24", "gray8", "mono",        "pattern"};

bool IsSourceName(std::string_view word) {
  return std::find(std::begin(kSourceNames), std::end(kSourceNames), word) != std::end(kSourceNames);
}

bool FindBand(std::string_view word, Band& band) {
  for (int i = 0; i < kBandCount; ++i) {
    if (word != kBandNames[i]) continue;
    band = static_cast<Band>(i);
    return true;
  }
  return false;
}

// Removes the last word of `text` and stores it in `word`; false when it is the only one.
bool TakeLastWord(std::string_view& text, std::string_view& word) {
  const std::size_t separator = text.rfind('_');
  if (separator == std::string_view::npos || separator == 0 || separator + 1 == text.size()) return false;
  word = text.substr(separator + 1);
  text = text.substr(0, separator);
  return true;
}

}  // namespace

const char* BandName(Band band) { return kBandNames[static_cast<int>(band)]; }

int BytesPerPixel(Band band) { return band == Band::kGray8 ? 1 : 3; }

bool IsGray(Band band) { return band == Band::kGray8 || band == Band::kScaledGray; }

bool IsScaled(Band band) { return band == Band::kScaled || band == Band::kScaledGray; }

bool IsDual(Band band) { return band == Band::kDual || band == Band::kDualMarked; }

const ShapeInfo& Info(Shape shape) { return kShapes[static_cast<int>(shape)]; }

const std::vector<Shape>& RectangleShapes() {
  static const std::vector<Shape> shapes = {Shape::kTile, Shape::kBand1200, Shape::kBand4960};
  return shapes;
}

const std::vector<Row>& AllRows() {
  static const std::vector<Row> rows = [] {
    std::vector<Row> all;
    AddFillRows(all);
    AddRop2Rows(all);
    AddCopyRows(all);
    AddRop3Rows(all);
    AddTextRows(all);
    AddImageRows(all);
    AddCallRows(all);
    AddPageRows(all);
    return all;
  }();
  return rows;
}

RowJob MakeJob(const Library& library, Memory& memory, const Row& row, Shape shape) {
  switch (row.spec.operation) {
    case Operation::kOutput: return MakeOutputJob(library, memory, row.spec, shape);
    case Operation::kBlt:
    case Operation::kBltAllCodes: return MakeBltJob(library, memory, row.spec, shape);
    case Operation::kText: return MakeTextJob(library, memory, row.spec, shape);
    case Operation::kImage: return MakeImageJob(library, memory, row.spec, shape);
    case Operation::kPage: return MakePageJob(library, memory, row.spec, shape);
    default: return MakeCallJob(library, memory, row.spec, shape);
  }
}

LimitSurface SurfaceOf(Memory& memory, const Row& row, Shape shape) {
  const ShapeInfo& info = Info(shape);
  const std::size_t bytes = static_cast<std::size_t>(BytesPerPixel(row.spec.band));
  const std::size_t stride = (static_cast<std::size_t>(info.bandWidth) * bytes + 3) & ~std::size_t{3};
  uint8_t* const first =
      memory.band() + static_cast<std::size_t>(info.y) * stride + static_cast<std::size_t>(info.x) * bytes;
  return {first, memory.source(), static_cast<std::size_t>(info.width) * bytes, stride, info.height};
}

bool ParseRowName(std::string_view name, RowName& parts) {
  std::string_view word;
  if (name.empty() || name.front() == '_' || name.find("__") != std::string_view::npos) return false;
  if (!TakeLastWord(name, word) || !FindBand(word, parts.band)) return false;
  parts.source.clear();
  // Words that name sources belong to the source, but at least one word must remain for the operation.
  for (std::string_view rest = name; TakeLastWord(rest, word) && IsSourceName(word); name = rest) {
    parts.source = std::string(word) + (parts.source.empty() ? "" : "_") + parts.source;
  }
  parts.operation = name;
  return true;
}

std::string ComposeRowName(const RowName& parts) {
  return parts.operation + (parts.source.empty() ? "" : "_" + parts.source) + "_" + BandName(parts.band);
}

}  // namespace qnv::bench
