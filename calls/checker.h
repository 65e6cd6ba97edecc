// Checks what hosts do wrong and the library, by design, does not say. It only looks: no call is changed. The same code
// runs in the recorder and over call files. docs/host-mistakes.md lists the findings with an example each.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "calls/device_shape.h"
#include "calls/invoke.h"

namespace qnv::calls {

// The numbers are published: they never change.
enum class Mistake : uint8_t {
  kBadHandle = 1,
  kNullRecord = 2,
  kBandTooLarge = 3,
  kForeignBrush = 4,
  kNoPattern = 5,
  kTextWithoutClip = 6,
  kRunLengthsTooLong = 7,
  kShortColorTable = 8,
  kFontOffset = 9,
  kCountAndStyle = 10,
  kWideRows = 11,
  kDroppedRows = 12,
  kMovedWithoutClear = 13,
};
inline constexpr std::size_t kMistakeCount = 13;

struct MistakeText {
  Mistake mistake;
  const char* wrong;   // one sentence: what is wrong
  const char* advice;  // one sentence: what to do
};
const MistakeText& TextOf(Mistake mistake);

struct Finding {
  Mistake mistake;
  std::size_t call;
  Function function;
  std::size_t argument;  // index in the table
};

// "call 17, QNVPixel, clip: 2: a record that ..."
std::string Describe(const Finding& finding);

class CallChecker {
 public:
  using Report = std::function<void(const Finding&)>;
  explicit CallChecker(Report report) : report_(std::move(report)) {}

  // device: the number that After got for it, 0 for handles that are none. The memory that the call reads must be
  // there.
  void Before(std::size_t call, Function function, const Slots& slots, uint32_t device);
  // device: for QNVEnable the number of the new one, 0 when it was refused.
  void After(Function function, const Slots& slots, uint32_t device, uint32_t result);

 private:
  struct Device {
    DeviceShape shape;
    bool hasPattern = false;
    bool isStale = false;  // moved, and neither cleared nor reported since
    bool wasPainted = false;
  };
  // What must be equal for a realised record to mean the same on two devices.
  struct BrushKind {
    bool gray;
    uint8_t scale;
    auto operator<=>(const BrushKind&) const = default;
  };
  static BrushKind KindOf(const DeviceShape& shape);

  void Found(Mistake mistake, std::size_t argument);
  void CheckNulls(const Slots& slots);
  void CheckBand(const DeviceDescription& description, const BandRect& rect, std::size_t argument);
  void CheckBrush(const Slots& slots, const Device& device);
  void CheckPattern(const Slots& slots, Device& device);
  void CheckSpans(const Slots& slots);
  void CheckText(const Slots& slots, const Device& device);
  void CheckImage(const Slots& slots, const Device& device);
  bool DropsRows(const Slots& slots, const Device& device) const;

  Report report_;
  std::map<uint32_t, Device> devices_;
  std::map<uint64_t, std::set<BrushKind>> brushes_;  // by hash of the realised record
  std::size_t call_ = 0;
  Function function_ = Function::kEnable;
};

}  // namespace qnv::calls
