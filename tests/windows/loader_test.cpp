// The built DLL as the platform's loader gives it out: by number, at several places, without memory.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/test_device.h"
#include "windows/dib_sample.h"
#include "windows/host_work.h"
#include "windows/loaded_library.h"

namespace qnv::test {
namespace {

TEST(Loader, NumbersAndNamesGiveTheSameFunctionsAndNothingElse) {
  std::map<uint32_t, FARPROC> published;
  for (const auto& [name, ordinal] : kPublishedExports) {
    published[ordinal] = GetProcAddress(LinkedLibrary(), name);
    EXPECT_NE(nullptr, published[ordinal]) << name;
    for (const std::string& decorated : {"_" + std::string(name), std::string(name) + "@16"}) {
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

}  // namespace
}  // namespace qnv::test
