// The integers of a call: what they are called, how wide they are, what they usually are, and the extremes that each of
// them is given.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "qnvdrv10.h"

namespace qnv::test {

struct Field {
  const char* name;
  int bits;      // 8, 16 or 32
  int64_t base;  // of a call that paints
};

// The values of one call, in the order of its fields.
class Values {
 public:
  explicit Values(const std::vector<Field>& fields) {
    for (const Field& field : fields) values_.push_back(field.base);
  }
  void Set(std::size_t field, int64_t value) { values_[field] = value; }
  int64_t At(std::size_t field) const { return values_[field]; }

  uint32_t U32(std::size_t field) const { return static_cast<uint32_t>(values_[field]); }
  uint16_t U16(std::size_t field) const { return static_cast<uint16_t>(values_[field]); }
  uint8_t U8(std::size_t field) const { return static_cast<uint8_t>(values_[field]); }
  int32_t I32(std::size_t field) const { return static_cast<int32_t>(U32(field)); }
  int16_t I16(std::size_t field) const { return static_cast<int16_t>(U16(field)); }
  // Four fields from this one on.
  BandRect Rect(std::size_t field) const { return {I32(field), I32(field + 1), I32(field + 2), I32(field + 3)}; }

 private:
  std::vector<int64_t> values_;
};

// As unsigned numbers of the field's width, each once.
inline std::vector<int64_t> ExtremesOf(const Field& field, const BandRect& band) {
  const uint64_t mask = (uint64_t{1} << field.bits) - 1;
  const int64_t smallest = -(int64_t{1} << (field.bits - 1));
  std::vector<int64_t> wanted = {0, 1, -1, smallest, -smallest - 1, 32767, -32767, 32768, 65535, 65536};
  for (int64_t edge : {band.left, band.top, band.right, band.bottom}) {
    for (int64_t by : {-1, 0, 1}) wanted.push_back(edge + by);
  }
  std::vector<int64_t> values;
  for (int64_t value : wanted) {
    const int64_t cut = static_cast<int64_t>(static_cast<uint64_t>(value) & mask);
    if (std::find(values.begin(), values.end(), cut) == values.end()) values.push_back(cut);
  }
  return values;
}

}  // namespace qnv::test
