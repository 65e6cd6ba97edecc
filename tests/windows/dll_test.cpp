// The built DLL as the platform's loader gives it out: by number, at several places, without memory; and the delivered
// file: header, sections, symbols, resources and size. What it exports and imports is checked where it is built.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/test_device.h"
#include "windows/dib_sample.h"
#include "windows/host_work.h"

namespace qnv::test {
namespace {

TEST(Loader, NumbersAndNamesGiveTheSameFunctionsAndNothingElse) {
  std::map<uint32_t, FARPROC> published;
  for (const auto& [ordinal, name] : PublishedExports()) {
    published[ordinal] = GetProcAddress(LinkedLibrary(), name.c_str());
    EXPECT_NE(nullptr, published[ordinal]) << name;
    for (const std::string& decorated : {"_" + name, name + "@16"}) {
      EXPECT_EQ(nullptr, GetProcAddress(LinkedLibrary(), decorated.c_str())) << decorated;
    }
  }
  for (uint32_t ordinal = 1; ordinal <= 200; ++ordinal) {
    const auto name = reinterpret_cast<LPCSTR>(static_cast<uintptr_t>(ordinal));
    const auto found = published.find(ordinal);
    EXPECT_EQ(found == published.end() ? nullptr : found->second, GetProcAddress(LinkedLibrary(), name)) << ordinal;
  }
}

// A copy of the file under another name, loaded beside the linked one; the system has to find another place for it.
class LibraryCopy {
 public:
  LibraryCopy() {
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    GetTempFileNameA(folder, "qnv", 0, path_);
    CopyFileA(PathOf(LinkedLibrary()).c_str(), path_, FALSE);
    module_ = LoadLibraryA(path_);
  }
  ~LibraryCopy() {
    if (module_ != nullptr) FreeLibrary(module_);
    DeleteFileA(path_);
  }
  LibraryCopy(const LibraryCopy&) = delete;
  LibraryCopy& operator=(const LibraryCopy&) = delete;

  HMODULE module() const { return module_; }

 private:
  char path_[MAX_PATH] = {};
  HMODULE module_ = nullptr;
};

TEST(Loader, CopiesAtOtherAddressesDoTheSameWork) {
  const LibraryCopy first;
  const LibraryCopy second;
  // At most one of them can lie where the file wants to lie.
  EXPECT_EQ(3u, (std::set<HMODULE>{LinkedLibrary(), first.module(), second.module()}.size()));
  const WorkResult expected = DoHostWork(PlainCaller(LinkedLibrary()));
  for (HMODULE module : {first.module(), second.module()}) {
    ASSERT_NE(nullptr, module);
    const WorkResult got = DoHostWork(PlainCaller(module));
    EXPECT_TRUE(expected.results == got.results);
    EXPECT_TRUE(expected.pictures == got.pictures);
  }
}

TEST(Loader, CopiesCanBeLoadedAgainAndAgain) {
  for (int i = 0; i < 5; ++i) {
    const LibraryCopy copy;
    ASSERT_NE(nullptr, copy.module()) << i;
    DeviceSize size{};
    const DeviceDescription description{QNV_KIND_RASTER, 24, 360, 100, 50, 720};
    EXPECT_EQ(8u, PlainCaller(copy.module())("QNVGetDeviceInfo", {Slot(&description), Slot(&size)}));
    EXPECT_EQ(200u, size.width);
  }
}

// Takes whatever memory is left, first the address space and then the blocks of the heap, for as long as it lives.
class NoMemory {
 public:
  NoMemory() {
    constexpr std::size_t kSmallestReservation = std::size_t{64} << 10;
    Take(std::size_t{256} << 20, kSmallestReservation,
         [](std::size_t size) { return VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS); });
    reserved_ = count_;
    Take(kSmallestReservation, 4, [](std::size_t size) { return std::malloc(size); });
  }
  ~NoMemory() {
    while (count_ > reserved_) std::free(blocks_[--count_]);
    while (count_ > 0) VirtualFree(blocks_[--count_], 0, MEM_RELEASE);
  }
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;

 private:
  template <class Allocate>
  void Take(std::size_t largest, std::size_t smallest, Allocate allocate) {
    for (std::size_t size = largest; size >= smallest; size /= 2) {
      while (count_ < std::size(blocks_) && (blocks_[count_] = allocate(size)) != nullptr) ++count_;
    }
  }

  static inline void* blocks_[std::size_t{1} << 20];
  std::size_t count_ = 0;
  std::size_t reserved_ = 0;
};

// An exception that left the library would end the program here.
TEST(LoaderMemory, WithoutAnyCallsAreRefused) {
  TestDevice device({.width = 300});
  const std::vector<uint8_t> before = device.BandBytes();
  const DibSample runs(kRle8Form, {.width = 20000, .height = 16, .seed = 4, .runs = {0, 1}});
  const DibSample plain(kPlainForm, {.width = 300, .height = 16, .seed = 4});
  const DRAWMODE mode = MakeDrawMode();
  const auto stretch = [&](const DibSample& dib, uint32_t rop) {
    return QNVStretchDIBits(device.handle(), 0, 0, 0, 300, 16, 0, 0, dib.width(), 16, dib.bits(), dib.info(), nullptr,
                            rop, nullptr, &mode, &kEverywhere) &
           0xFFFF;
  };
  std::vector<int16_t> record(20004, 7);  // of empty spans
  record[0] = record.back() = 20000;
  record[1] = 0;
  record[2] = 9;

  const DeviceDescription descriptions[] = {{QNV_KIND_RASTER, 24, 360, 64, 32, 360},
                                            {QNV_KIND_RASTER, 8, 360, 64, 32, 360},
                                            {QNV_KIND_SCALED, 24, 300, 64, 32, 600}};
  const BandRect band{0, 0, 64, 32};
  uint8_t pixels[64 * 32 * 3];
  DeviceHandle* handles[4] = {};
  uint32_t results[3] = {};
  {
    const NoMemory noMemory;
    for (std::size_t i = 0; i < 3; ++i) handles[i] = QNVEnable(&descriptions[i], &band, pixels, nullptr);
    handles[3] = QNVEnable(&descriptions[0], &band, pixels, pixels);
    results[0] = stretch(runs, SRCCOPY);
    results[1] = stretch(plain, SRCINVERT);
    results[2] = QNVOutput(device.handle(), OS_BANDED_SPANS, 1, record.data(), nullptr, nullptr, &mode, &kEverywhere);
  }
  for (const DeviceHandle* handle : handles) EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(0u, results[0]) << "there was memory left to decode in";
  EXPECT_LE(results[1], 1u);
  EXPECT_EQ(1u, results[2] & 0xFFFF);
  EXPECT_TRUE(device.FencesIntact());
  EXPECT_TRUE(results[1] == 1 || before == device.BandBytes());

  EXPECT_EQ(1u, stretch(runs, SRCCOPY));
  EXPECT_NE(before, device.BandBytes());
}

// A Windows executable file, read from its bytes.
class PeImage {
 public:
  // Aborts on a file that is not there or is no 32-bit image.
  explicit PeImage(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = static_cast<std::size_t>(Read<IMAGE_DOS_HEADER>(0).e_lfanew);
    const auto headers = Read<IMAGE_NT_HEADERS32>(start);
    if (headers.Signature != IMAGE_NT_SIGNATURE) std::abort();
    if (headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR32_MAGIC) std::abort();
    header_ = headers.FileHeader;
    std::size_t at = start + offsetof(IMAGE_NT_HEADERS32, OptionalHeader) + header_.SizeOfOptionalHeader;
    for (; sections_.size() < header_.NumberOfSections; at += sizeof(IMAGE_SECTION_HEADER)) {
      sections_.push_back(Read<IMAGE_SECTION_HEADER>(at));
    }
  }

  std::size_t fileSize() const { return bytes_.size(); }
  const IMAGE_FILE_HEADER& header() const { return header_; }
  const std::vector<IMAGE_SECTION_HEADER>& sections() const { return sections_; }

  // Longer names lie in the string table.
  std::string NameOf(const IMAGE_SECTION_HEADER& section) const {
    const std::string name = ShortName(section.Name);
    return name.starts_with('/') ? LongName(std::strtoul(name.c_str() + 1, nullptr, 10)) : name;
  }

  std::set<std::string> SymbolNames() const {
    std::set<std::string> names;
    for (std::size_t i = 0; i < header_.NumberOfSymbols; ++i) {
      const auto symbol = Read<IMAGE_SYMBOL>(header_.PointerToSymbolTable + i * IMAGE_SIZEOF_SYMBOL);
      names.insert(symbol.N.Name.Short == 0 ? LongName(symbol.N.Name.Long) : ShortName(symbol.N.ShortName));
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

  // At most eight bytes; a zero follows shorter ones.
  static std::string ShortName(const BYTE* name) { return {name, std::find(name, name + 8, 0)}; }

  // The string table follows the symbols.
  std::string LongName(std::size_t offset) const {
    offset += header_.PointerToSymbolTable + std::size_t{header_.NumberOfSymbols} * IMAGE_SIZEOF_SYMBOL;
    return bytes_.c_str() + std::min(offset, bytes_.size());
  }

  std::string bytes_;
  IMAGE_FILE_HEADER header_;
  std::vector<IMAGE_SECTION_HEADER> sections_;
};

class DllFile : public testing::Test {
 protected:
  const std::string path_ = PathOf(LinkedLibrary());
  const PeImage dll_{path_};
  const PeImage symbols_{path_ + ".debug"};  // kept beside the file
};

TEST_F(DllFile, IsA32BitLibraryThatRunsNoData) {
  EXPECT_EQ(IMAGE_FILE_MACHINE_I386, dll_.header().Machine);
  constexpr int kRead = IMAGE_FILE_DLL | IMAGE_FILE_32BIT_MACHINE | IMAGE_FILE_RELOCS_STRIPPED;
  EXPECT_EQ(IMAGE_FILE_DLL | IMAGE_FILE_32BIT_MACHINE, dll_.header().Characteristics & kRead);
  constexpr DWORD kWritableCode = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
  for (const IMAGE_SECTION_HEADER& section : dll_.sections()) {
    EXPECT_NE(kWritableCode, section.Characteristics & kWritableCode) << dll_.NameOf(section);
  }
}

// No exception can leave what has no means to throw one: neither the system's way nor that of the compiler's runtime.
// Imported functions are symbols, too.
TEST_F(DllFile, HasNoMeansToThrow) {
  const std::set<std::string> names = symbols_.SymbolNames();
  for (const char* known : {"_QNVEnable", "__imp__malloc"}) {
    EXPECT_TRUE(names.contains(known)) << known << ": these are not the library's symbols";
  }
  for (const std::string& name : names) {
    for (const char* part : {"RaiseException", "CxxThrowException", "CxxFrameHandler", "longjmp", "__cxa_throw",
                             "__cxa_rethrow", "Unwind_SjLj"}) {
      EXPECT_EQ(std::string::npos, name.find(part)) << name;
    }
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
  DWORD unused = 0;
  std::vector<uint8_t> resource(GetFileVersionInfoSizeA(path_.c_str(), &unused));
  ASSERT_FALSE(resource.empty()) << "the file has no version resource";
  ASSERT_TRUE(GetFileVersionInfoA(path_.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()));
  constexpr uint32_t kMajor = QNVDRV10_VERSION_MAJOR, kMinor = QNVDRV10_VERSION_MINOR, kPatch = QNVDRV10_VERSION_PATCH;
  const std::string version = std::to_string(kMajor) + "." + std::to_string(kMinor) + "." + std::to_string(kPatch);

  void* value = nullptr;
  UINT size = 0;
  const std::pair<std::string, std::string> texts[] = {{"ProductName", "QNVDRV10"},
                                                       {"OriginalFilename", "QNVDRV10.dll"},
                                                       {"ProductVersion", version},
                                                       {"FileVersion", version}};
  for (const auto& [name, expected] : texts) {
    ASSERT_TRUE(VerQueryValueA(resource.data(), ("\\StringFileInfo\\040904B0\\" + name).c_str(), &value, &size))
        << name;
    EXPECT_EQ(expected, static_cast<const char*>(value)) << name;
  }
  ASSERT_TRUE(VerQueryValueA(resource.data(), "\\", &value, &size));
  ASSERT_GE(size, sizeof(VS_FIXEDFILEINFO));
  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
  EXPECT_EQ(kMajor << 16 | kMinor, fixed->dwFileVersionMS);
  EXPECT_EQ(kPatch, HIWORD(fixed->dwFileVersionLS));
  EXPECT_EQ(fixed->dwFileVersionMS, fixed->dwProductVersionMS);
  EXPECT_EQ(fixed->dwFileVersionLS, fixed->dwProductVersionLS);
}

}  // namespace
}  // namespace qnv::test
