// The delivered file: header, exports, imports, resources and size.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "windows/loaded_library.h"

namespace qnv::test {
namespace {

// A Windows executable file, read from its bytes: what the loader would see, without asking the loader.
class PeImage {
 public:
  using Ordinals = std::set<std::pair<uint32_t, std::string>>;

  // Aborts on a file that is not there or is no 32-bit image.
  explicit PeImage(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = static_cast<std::size_t>(Read<IMAGE_DOS_HEADER>(0).e_lfanew);
    headers_ = Read<IMAGE_NT_HEADERS32>(start);
    if (headers_.Signature != IMAGE_NT_SIGNATURE) std::abort();
    if (headers_.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR32_MAGIC) std::abort();
    std::size_t at = start + offsetof(IMAGE_NT_HEADERS32, OptionalHeader) + header().SizeOfOptionalHeader;
    for (; sections_.size() < header().NumberOfSections; at += sizeof(IMAGE_SECTION_HEADER)) {
      sections_.push_back(Read<IMAGE_SECTION_HEADER>(at));
    }
  }

  std::size_t fileSize() const { return bytes_.size(); }
  const IMAGE_FILE_HEADER& header() const { return headers_.FileHeader; }
  const IMAGE_OPTIONAL_HEADER32& optional() const { return headers_.OptionalHeader; }
  const std::vector<IMAGE_SECTION_HEADER>& sections() const { return sections_; }

  // Longer names lie in the string table.
  std::string NameOf(const IMAGE_SECTION_HEADER& section) const {
    const std::string name = ShortName(section.Name);
    return name.starts_with('/') ? Text(StringTable() + std::strtoul(name.c_str() + 1, nullptr, 10)) : name;
  }

  // Libraries, and names of functions ("#" where only a number is given).
  void Imports(std::set<std::string>* libraries, std::set<std::string>* functions) const {
    for (std::size_t at = Offset(Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);; at += 20) {
      const auto import = Read<IMAGE_IMPORT_DESCRIPTOR>(at);
      if (import.Name == 0) return;
      libraries->insert(Text(Offset(import.Name)));
      for (std::size_t entry = Offset(import.OriginalFirstThunk); Read<DWORD>(entry) != 0; entry += 4) {
        const DWORD value = Read<DWORD>(entry);
        functions->insert(IMAGE_SNAP_BY_ORDINAL32(value) ? "#" : Text(Offset(value) + 2));
      }
    }
  }

  // Numbers and names; the name is empty where only the number is given away, and what is forwarded has it as a prefix.
  Ordinals Exports() const {
    const IMAGE_DATA_DIRECTORY& directory = Directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    const auto exports = Read<IMAGE_EXPORT_DIRECTORY>(Offset(directory.VirtualAddress));
    Ordinals found;
    for (uint32_t i = 0; i < exports.NumberOfFunctions; ++i) {
      const DWORD address = Read<DWORD>(Offset(exports.AddressOfFunctions) + 4 * i);
      if (address == 0) continue;
      const bool forwarded = address - directory.VirtualAddress < directory.Size;
      std::string name = forwarded ? Text(Offset(address)) + " as " : "";
      for (uint32_t n = 0; n < exports.NumberOfNames; ++n) {
        if (Read<WORD>(Offset(exports.AddressOfNameOrdinals) + 2 * n) != i) continue;
        name += Text(Offset(Read<DWORD>(Offset(exports.AddressOfNames) + 4 * n)));
      }
      found.insert({exports.Base + i, name});
    }
    return found;
  }

  // Whole addresses that the loader moves.
  uint32_t CountRelocations() const {
    const IMAGE_DATA_DIRECTORY& directory = Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC);
    uint32_t count = 0;
    std::size_t at = Offset(directory.VirtualAddress);
    for (const std::size_t end = at + directory.Size; at < end;) {
      const DWORD size = Read<IMAGE_BASE_RELOCATION>(at).SizeOfBlock;
      if (size < sizeof(IMAGE_BASE_RELOCATION)) break;
      for (std::size_t entry = at + sizeof(IMAGE_BASE_RELOCATION); entry < at + size; entry += 2) {
        if (Read<WORD>(entry) >> 12 == IMAGE_REL_BASED_HIGHLOW) ++count;
      }
      at += size;
    }
    return count;
  }

  std::set<std::string> SymbolNames() const {
    std::set<std::string> names;
    for (std::size_t i = 0; i < header().NumberOfSymbols; ++i) {
      const auto symbol = Read<IMAGE_SYMBOL>(header().PointerToSymbolTable + i * IMAGE_SIZEOF_SYMBOL);
      names.insert(symbol.N.Name.Short == 0 ? Text(StringTable() + symbol.N.Name.Long) : ShortName(symbol.N.ShortName));
      i += symbol.NumberOfAuxSymbols;
    }
    return names;
  }

 private:
  template <class Record>
  Record Read(std::size_t offset) const {
    Record record;
    if (offset > bytes_.size() || bytes_.size() - offset < sizeof record) std::abort();
    std::memcpy(&record, bytes_.data() + offset, sizeof record);
    return record;
  }

  std::string Text(std::size_t offset) const { return bytes_.c_str() + std::min(offset, bytes_.size()); }

  // At most eight bytes; a zero follows shorter ones.
  static std::string ShortName(const BYTE* name) { return {name, std::find(name, name + 8, 0)}; }

  std::size_t StringTable() const {
    return header().PointerToSymbolTable + std::size_t{header().NumberOfSymbols} * IMAGE_SIZEOF_SYMBOL;
  }

  const IMAGE_DATA_DIRECTORY& Directory(int index) const { return optional().DataDirectory[index]; }

  std::size_t Offset(DWORD address) const {
    for (const IMAGE_SECTION_HEADER& section : sections_) {
      const DWORD inside = address - section.VirtualAddress;
      if (address >= section.VirtualAddress && inside < section.SizeOfRawData) return section.PointerToRawData + inside;
    }
    std::abort();
  }

  std::string bytes_;
  IMAGE_NT_HEADERS32 headers_;
  std::vector<IMAGE_SECTION_HEADER> sections_;
};

class DllFile : public testing::Test {
 protected:
  // What is said of a text in the version resource.
  std::string VersionText(const std::string& name) const {
    void* value = nullptr;
    UINT size = 0;
    const std::string block = "\\StringFileInfo\\040904B0\\" + name;
    return VerQueryValueA(version_.data(), block.c_str(), &value, &size) ? static_cast<const char*>(value) : "(none)";
  }

  void LoadVersion() {
    DWORD unused = 0;
    version_.resize(GetFileVersionInfoSizeA(path_.c_str(), &unused));
    ASSERT_FALSE(version_.empty()) << "the file has no version resource";
    ASSERT_TRUE(GetFileVersionInfoA(path_.c_str(), 0, static_cast<DWORD>(version_.size()), version_.data()));
  }

  const std::string path_ = PathOf(LinkedLibrary());
  const PeImage dll_{path_};
  const PeImage symbols_{path_ + ".debug"};  // kept beside the file
  std::vector<uint8_t> version_;
};

TEST_F(DllFile, IsA32BitLibraryThatMayLieAnywhereAndRunsNoData) {
  EXPECT_EQ(IMAGE_FILE_MACHINE_I386, dll_.header().Machine);
  constexpr int kRead = IMAGE_FILE_DLL | IMAGE_FILE_32BIT_MACHINE | IMAGE_FILE_RELOCS_STRIPPED;
  EXPECT_EQ(IMAGE_FILE_DLL | IMAGE_FILE_32BIT_MACHINE, dll_.header().Characteristics & kRead);
  constexpr int kAsked = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  EXPECT_EQ(kAsked, dll_.optional().DllCharacteristics & kAsked);
  EXPECT_GT(dll_.CountRelocations(), 100u);
  constexpr DWORD kWritableCode = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
  for (const IMAGE_SECTION_HEADER& section : dll_.sections()) {
    EXPECT_NE(kWritableCode, section.Characteristics & kWritableCode) << dll_.NameOf(section);
  }
}

TEST_F(DllFile, ExportsThePublishedNamesAndNothingElse) {
  PeImage::Ordinals expected;
  for (const PublishedExport& published : kPublishedExports) expected.insert({published.ordinal, published.name});
  EXPECT_EQ(expected, dll_.Exports());
}

// No exception can leave what has no means to throw one: neither the system's way nor that of the compiler's runtime,
// which would be linked in and can be seen among the symbols.
TEST_F(DllFile, ImportsFromTheSystemAloneAndHasNoMeansToThrow) {
  std::set<std::string> libraries;
  std::set<std::string> functions;
  dll_.Imports(&libraries, &functions);
  std::set<std::string> lowerCase;
  for (std::string name : libraries) {
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    lowerCase.insert(name);
  }
  EXPECT_EQ((std::set<std::string>{"kernel32.dll", "msvcrt.dll"}), lowerCase);
  for (const char* name :
       {"RaiseException", "RtlRaiseException", "_CxxThrowException", "__CxxFrameHandler", "longjmp"}) {
    EXPECT_FALSE(functions.contains(name)) << name;
  }
  const std::set<std::string> symbols = symbols_.SymbolNames();
  EXPECT_TRUE(symbols.contains("_QNVEnable")) << "these are not the library's symbols";
  for (const char* name :
       {"___cxa_throw", "___cxa_rethrow", "__Unwind_RaiseException", "__Unwind_SjLj_RaiseException"}) {
    EXPECT_FALSE(symbols.contains(name)) << name;
  }
}

TEST_F(DllFile, IsSmallAndCarriesNoSymbols) {
  EXPECT_LT(dll_.fileSize(), 200u * 1024);
  EXPECT_EQ(0u, dll_.header().NumberOfSymbols);
  for (const IMAGE_SECTION_HEADER& section : dll_.sections()) {
    EXPECT_FALSE(dll_.NameOf(section).starts_with(".debug")) << dll_.NameOf(section);
  }
  EXPECT_TRUE(std::ranges::any_of(symbols_.sections(),
                                  [this](const auto& section) { return symbols_.NameOf(section) == ".debug_info"; }));
}

TEST_F(DllFile, NamesTheProductAndTheProjectsVersion) {
  ASSERT_NO_FATAL_FAILURE(LoadVersion());
  std::ifstream file(QNV_TEST_SOURCE_DIR "/../CMakeLists.txt");
  const std::string text(std::istreambuf_iterator<char>(file), {});
  std::smatch match;
  ASSERT_TRUE(std::regex_search(text, match, std::regex("project\\(QNVDRV10 VERSION ([0-9]+\\.[0-9]+\\.[0-9]+)")));
  const std::string version = match[1];
  EXPECT_EQ("QNVDRV10", VersionText("ProductName"));
  EXPECT_EQ("QNVDRV10.dll", VersionText("OriginalFilename"));
  EXPECT_EQ(version, VersionText("ProductVersion"));
  EXPECT_EQ(version, VersionText("FileVersion"));

  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueA(version_.data(), "\\", &value, &size));
  ASSERT_GE(size, sizeof(VS_FIXEDFILEINFO));
  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
  const std::string number = std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
                             std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
                             std::to_string(HIWORD(fixed->dwFileVersionLS));
  EXPECT_EQ(version, number);
  EXPECT_EQ(fixed->dwFileVersionMS, fixed->dwProductVersionMS);
  EXPECT_EQ(fixed->dwFileVersionLS, fixed->dwProductVersionLS);
}

}  // namespace
}  // namespace qnv::test
