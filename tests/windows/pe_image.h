// A Windows executable file, read byte by byte: what the loader would see, without asking the loader.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qnv::test {

struct PeSection {
  std::string name;
  uint32_t address;  // relative to the image's base
  uint32_t size;     // in memory
  uint32_t fileOffset;
  uint32_t fileSize;
  uint32_t flags;
};

struct PeImport {
  std::string library;
  std::vector<std::string> names;  // "#n" where only the ordinal n is given
};

struct PeExport {
  uint32_t ordinal;
  std::string name;  // empty: by number only
  bool forwarded;
};

class PeImage {
 public:
  // Aborts on a file that is not there or is no 32-bit image.
  explicit PeImage(const std::string& path);

  std::size_t fileSize() const { return bytes_.size(); }
  uint16_t machine() const { return Read16(header_ + 4); }
  uint16_t characteristics() const { return Read16(header_ + 22); }
  uint32_t symbolCount() const { return Read32(header_ + 16); }
  uint32_t imageBase() const { return Read32(optional_ + 28); }
  uint16_t dllCharacteristics() const { return Read16(optional_ + 70); }
  uint32_t DirectorySize(uint32_t index) const { return Read32(optional_ + 100 + 8 * index); }

  const std::vector<PeSection>& sections() const { return sections_; }
  std::vector<PeImport> Imports() const;
  std::vector<PeExport> Exports() const;
  uint32_t CountRelocations() const;  // whole addresses that the loader moves
  std::vector<std::string> SymbolNames() const;

 private:
  uint16_t Read16(std::size_t offset) const;
  uint32_t Read32(std::size_t offset) const;
  std::string ReadText(std::size_t offset) const;
  std::size_t StringTable() const;
  uint32_t DirectoryAddress(uint32_t index) const { return Read32(optional_ + 96 + 8 * index); }
  std::size_t FileOffset(uint32_t address) const;

  std::vector<uint8_t> bytes_;
  std::size_t header_ = 0;
  std::size_t optional_ = 0;
  std::vector<PeSection> sections_;
};

}  // namespace qnv::test
