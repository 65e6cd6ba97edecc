// Reads sections, exports, imports and headers of an executable file.
#include "windows/pe_image.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace qnv::test {
namespace {

constexpr uint32_t kExports = 0;
constexpr uint32_t kImports = 1;
constexpr uint32_t kRelocations = 5;
constexpr std::size_t kSymbolSize = 18;
constexpr std::size_t kSectionSize = 40;

}  // namespace

PeImage::PeImage(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  bytes_.assign(std::istreambuf_iterator<char>(file), {});
  header_ = Read32(0x3C);
  optional_ = header_ + 24;
  if (Read32(header_) != 0x00004550 || Read16(optional_) != 0x010B) std::abort();
  const std::size_t table = optional_ + Read16(header_ + 20);
  for (std::size_t i = 0; i < Read16(header_ + 6); ++i) {
    const std::size_t at = table + i * kSectionSize;
    char text[9] = {};
    std::memcpy(text, &bytes_.at(at), 8);
    std::string name = text;
    // Longer names lie in the string table.
    if (name.starts_with('/')) name = ReadText(StringTable() + std::strtoul(text + 1, nullptr, 10));
    sections_.push_back({name, Read32(at + 12), Read32(at + 8), Read32(at + 20), Read32(at + 16), Read32(at + 36)});
  }
}

uint16_t PeImage::Read16(std::size_t offset) const {
  return static_cast<uint16_t>(bytes_.at(offset) | bytes_.at(offset + 1) << 8);
}

uint32_t PeImage::Read32(std::size_t offset) const {
  return Read16(offset) | static_cast<uint32_t>(Read16(offset + 2)) << 16;
}

std::string PeImage::ReadText(std::size_t offset) const {
  std::string text;
  while (bytes_.at(offset) != 0) text.push_back(static_cast<char>(bytes_[offset++]));
  return text;
}

std::size_t PeImage::StringTable() const { return Read32(header_ + 12) + symbolCount() * kSymbolSize; }

std::size_t PeImage::FileOffset(uint32_t address) const {
  for (const PeSection& section : sections_) {
    if (address >= section.address && address - section.address < section.fileSize) {
      return section.fileOffset + (address - section.address);
    }
  }
  std::abort();
}

std::vector<PeImport> PeImage::Imports() const {
  std::vector<PeImport> imports;
  for (std::size_t at = FileOffset(DirectoryAddress(kImports)); Read32(at + 12) != 0; at += 20) {
    PeImport import{ReadText(FileOffset(Read32(at + 12))), {}};
    for (std::size_t entry = FileOffset(Read32(at)); Read32(entry) != 0; entry += 4) {
      const uint32_t value = Read32(entry);
      import.names.push_back((value & 0x80000000u) != 0 ? "#" + std::to_string(value & 0xFFFF)
                                                        : ReadText(FileOffset(value) + 2));
    }
    imports.push_back(import);
  }
  return imports;
}

std::vector<PeExport> PeImage::Exports() const {
  const uint32_t start = DirectoryAddress(kExports);
  const std::size_t directory = FileOffset(start);
  const uint32_t base = Read32(directory + 16);
  const std::size_t addresses = FileOffset(Read32(directory + 28));
  std::vector<PeExport> exports;
  for (uint32_t i = 0; i < Read32(directory + 20); ++i) {
    const uint32_t address = Read32(addresses + 4 * i);
    if (address == 0) continue;  // a number that is not given away
    PeExport found{base + i, "", address >= start && address - start < DirectorySize(kExports)};
    for (uint32_t n = 0; n < Read32(directory + 24); ++n) {
      if (Read16(FileOffset(Read32(directory + 36)) + 2 * n) != i) continue;
      found.name = ReadText(FileOffset(Read32(FileOffset(Read32(directory + 32)) + 4 * n)));
    }
    exports.push_back(found);
  }
  return exports;
}

uint32_t PeImage::CountRelocations() const {
  constexpr uint16_t kWholeAddress = 3;
  uint32_t count = 0;
  const std::size_t start = FileOffset(DirectoryAddress(kRelocations));
  for (std::size_t at = start; at < start + DirectorySize(kRelocations) && Read32(at + 4) >= 8; at += Read32(at + 4)) {
    for (std::size_t entry = at + 8; entry < at + Read32(at + 4); entry += 2) {
      if (Read16(entry) >> 12 == kWholeAddress) ++count;
    }
  }
  return count;
}

std::vector<std::string> PeImage::SymbolNames() const {
  std::vector<std::string> names;
  const std::size_t table = Read32(header_ + 12);
  for (std::size_t i = 0; i < symbolCount(); ++i) {
    const std::size_t at = table + i * kSymbolSize;
    if (Read32(at) == 0) {
      names.push_back(ReadText(StringTable() + Read32(at + 4)));
    } else {
      char text[9] = {};
      std::memcpy(text, &bytes_.at(at), 8);
      names.emplace_back(text);
    }
    i += bytes_.at(at + 17);  // auxiliary records
  }
  return names;
}

}  // namespace qnv::test
