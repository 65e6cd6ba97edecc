// The contents of the planes of a device at one moment, in groups of rows that moments share where nothing was painted
// between them. Runs of equal bytes are packed: pages are mostly paper.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace qnv::inspector {

// Some rows of a plane, packed. Never changes.
class RowGroup {
 public:
  RowGroup(const uint8_t* bytes, std::size_t count);

  // Writes all bytes.
  void Unpack(uint8_t* out) const;
  std::size_t MemoryBytes() const { return packed_.size() + sizeof *this; }

 private:
  bool isPacked_ = true;
  std::vector<uint8_t> packed_;
};

// How a plane is cut into groups.
struct GroupLayout {
  std::size_t planeBytes = 0, stride = 0, groupBytes = 1;

  static GroupLayout Of(std::size_t planeBytes, std::size_t stride);
  std::size_t Count() const { return (planeBytes + groupBytes - 1) / groupBytes; }
  std::size_t First(std::size_t group) const { return group * groupBytes; }
  std::size_t Bytes(std::size_t group) const {
    const std::size_t left = planeBytes - First(group);
    return left < groupBytes ? left : groupBytes;
  }
};

using RowGroups = std::vector<std::shared_ptr<const RowGroup>>;

}  // namespace qnv::inspector
