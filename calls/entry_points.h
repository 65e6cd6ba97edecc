// The thirteen entry points of the library, described once: for each argument its name, its type, its direction, and
// which memory of the host is read or written through it. Everything that writes, reads, replays, prints or checks
// calls on file works from this table.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qnvdrv10.h"

namespace qnv::calls {

// The numbers are stored in call files: they never change, and new functions are added behind the last one.
enum class Function : uint8_t {
  kEnable,
  kDisable,
  kGetDeviceInfo,
  kControl,
  kColorInfo,
  kRealizeObject,
  kPixel,
  kPolyPixel,
  kDevBitBlt,
  kOutput,
  kDevExtTextOut,
  kStretchDIBits,
  kDevSetDIBitsToDevice,
};
inline constexpr std::size_t kFunctionCount = 13;
inline constexpr std::size_t kMaxArguments = 17;

// The type of an argument in the header. The test of the table compares it with the declaration.
enum class Type : uint8_t {
  kHandle,         // DeviceHandle *
  kInt32,          // int32_t
  kUint32,         // uint32_t
  kVoid,           // void *
  kConstVoid,      // const void *
  kDescription,    // const DeviceDescription *
  kRect,           // const BandRect *
  kDeviceSize,     // DeviceSize *
  kUint32Pointer,  // uint32_t *
  kWords,          // const int16_t *
  kPen,            // const PhysicalPen *
  kBrush,          // const PhysicalBrush *
  kDrawMode,       // DRAWMODE *
  kConstDrawMode,  // const DRAWMODE *
  kSource,         // const SourceBitmap *
};

// What lies behind an argument, as a formula of the other arguments. memory_reads.h computes the formulas.
enum class Memory : uint8_t {
  kNone,            // the argument is a number
  kHandle,          // a device, or the first two bytes of a bad handle
  kUnread,          // a pointer that is not followed
  kDescription,     // 16 bytes
  kRect,            // 16 bytes
  kBand,            // the band: rows of the described width times height; the library keeps the address
  kTagPlane,        // the tag plane: the same with a byte a pixel
  kDeviceSize,      // 8 bytes are written
  kEscapeData,      // 8 bytes for the origin, 16 for the rectangle, none for other codes
  kColor,           // 4 bytes are written
  kLogicalObject,   // a pen: 10 bytes. A brush: 12 or 16 bytes and, for a pattern, its bitmap with 8 x 8 pixels
  kRealisedObject,  // a pen: 10 bytes are written. A brush: 12 or 268 bytes
  kDrawMode,        // 42 bytes
  kTextDrawMode,    // the same; a measuring call writes BreakErr
  kSource,          // 10 bytes and a pointer, and the pixels of the source rectangle if the operation reads the source
  kBrush,           // 12 bytes of a solid or hollow brush, 268 of the others
  kPen,             // 10 bytes
  kSpanList,        // as style, count and the counts inside the list say
  kString,          // |count| characters of one or two bytes
  kFont,            // 33 bytes at fontOffset; for each character its table entry and, when drawing, its glyph
  kCharWidths,      // a word for each character but the last
  kDibBits,         // the rows of the source rectangle, or run-length data up to what is consumed
  kDibHeader,       // 40 bytes; up to the end of the color table or the masks where there are any
};

enum class Direction : uint8_t { kIn, kOut, kInOut };

struct Argument {
  const char* name;
  Type type;
  Memory memory;
  Direction direction;
};

enum class Result : uint8_t {
  kHandle,   // a handle
  kNothing,  // void
  kWhole,    // 32 bits
  kSigned,   // 32 bits, int32_t in the header
  kLow16,    // only the low 16 bits carry the result
};

struct EntryPoint {
  Function function;
  const char* name;
  uint16_t ordinal;  // in the export table
  Result result;
  bool draws;  // may change the band
  uint8_t argumentCount;
  Argument arguments[kMaxArguments];
};

extern const EntryPoint kEntryPoints[kFunctionCount];

inline const EntryPoint& EntryPointOf(Function function) { return kEntryPoints[static_cast<std::size_t>(function)]; }

}  // namespace qnv::calls
