// The rows of the benchmark as data. A row is one measurement: what is painted into which band. The files rows_*.cpp
// list the rows and make jobs of them, which call a library.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "memory_limits.h"
#include "timer.h"

namespace qnv::bench {

class Library;

// The kinds of bands.
enum class Band {
  kBgr24,
  kGray8,
  kScaled,      // 720 on the page, 360 in the band
  kScaledGray,  // the same in gray mode
  kDual,        // tag plane known to be uniform
  kDualMarked,  // tag plane with image areas, so that every call writes it
};
inline constexpr int kBandCount = 6;

const char* BandName(Band band);
int BytesPerPixel(Band band);
bool IsGray(Band band);
bool IsScaled(Band band);
bool IsDual(Band band);

// The sizes in which rows are measured.
enum class Shape {
  kTile,      // 64 x 64 within a band
  kBand1200,  // 1200 x 128, in the second-level cache
  kBand4960,  // 4960 x 128, beyond it
  kCall,      // small calls; nanoseconds count
  kPage,      // a page of mixed calls
};

// Where a shape's rectangle lies in its band; pixels of the band.
struct ShapeInfo {
  const char* name;
  int width, height;
  int bandWidth, bandHeight;
  int x, y;
};

const ShapeInfo& Info(Shape shape);
inline constexpr int kShapeCount = 5;

enum class Operation { kOutput, kBlt, kBltAllCodes, kText, kImage, kPixel, kSpan, kSmallBlt, kGlyph, kPage, kSkip };

// kHatch leaves its gaps alone, kHatchOpaque paints them. The number of a pattern is its period in pixels.
enum class Brush { kNone, kSolid, kHatch, kHatchOpaque, kPattern8, kPattern16 };

enum class Source { kNone, kRgb24, kGray8, kMono };

// The bitmap of an image row.
struct ImageSource {
  uint16_t bits = 0;
  bool rle = false;
  bool mirrored = false;
  int sourceParts = 1;  // the source is sourceParts / targetParts as large as what is painted
  int targetParts = 1;
};

// Everything that describes a row. Each operation uses some of the fields.
struct RowSpec {
  Operation operation = Operation::kBlt;
  Band band = Band::kBgr24;
  LimitKind limit = LimitKind::kNone;
  uint32_t code = 0;  // raster code of three operands, or R2_... for kOutput; else free for the operation
  Brush brush = Brush::kNone;
  Source source = Source::kNone;
  ImageSource image = {};
  int cellWidth = 0;  // of text; of kSpan and kSmallBlt the size painted
  int cellHeight = 0;
  bool opaqueText = false;
  bool detail = false;  // listed and measured only on request
};

struct Row {
  std::string name;
  RowSpec spec;
  std::vector<Shape> shapes;
};

// How much one run of a job does.
struct Amounts {
  double bytes = 0;        // written to the color plane
  double sourceBytes = 0;  // of the source rows that reach the band
  double calls = 1;
  double items = 0;  // glyphs
};

struct RowJob {
  std::unique_ptr<Job> job;
  Amounts amounts;
};

// The buffers that all jobs and limits share.
class Memory;

const std::vector<Row>& AllRows();
// The job that paints a row by a library.
RowJob MakeJob(const Library& library, Memory& memory, const Row& row, Shape shape);
// The bytes that a row paints, for the loops that measure its limit.
LimitSurface SurfaceOf(Memory& memory, const Row& row, Shape shape);

// The same work done by another library of this platform, in its own memory; null where it has no such operation.
struct Rival {
  std::string name;
  std::unique_ptr<Job> job;
};
Rival MakeRival(Memory& memory, const Row& row, Shape shape);

// The parts of a row name operation_source_band. Operations and sources may contain underscores, bands do not.
struct RowName {
  std::string operation;
  std::string source;  // empty when the operation names none
  Band band = Band::kBgr24;
};
bool ParseRowName(std::string_view name, RowName& parts);
std::string ComposeRowName(const RowName& parts);

// Each of the files rows_*.cpp adds its rows and makes their jobs.
void AddFillRows(std::vector<Row>& rows);
void AddRop2Rows(std::vector<Row>& rows);
void AddCopyRows(std::vector<Row>& rows);
void AddRop3Rows(std::vector<Row>& rows);
void AddTextRows(std::vector<Row>& rows);
void AddImageRows(std::vector<Row>& rows);
void AddCallRows(std::vector<Row>& rows);
void AddPageRows(std::vector<Row>& rows);
RowJob MakeOutputJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape);
RowJob MakeBltJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape);
RowJob MakeTextJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape);
RowJob MakeImageJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape);
RowJob MakeCallJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape);
RowJob MakePageJob(const Library& library, Memory& memory, const RowSpec& spec, Shape shape);

// The three shapes in which a row is measured that paints a rectangle.
const std::vector<Shape>& RectangleShapes();

}  // namespace qnv::bench
