// The delivered file: header, exports, imports, resources and size.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "windows/loaded_library.h"
#include "windows/pe_image.h"

namespace qnv::test {
namespace {

const PeImage& Dll() {
  static const PeImage image(PathOf(LinkedLibrary()));
  return image;
}

std::string LowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

TEST(DllFile, IsA32BitLibrary) {
  EXPECT_EQ(IMAGE_FILE_MACHINE_I386, Dll().machine());
  EXPECT_NE(0, Dll().characteristics() & IMAGE_FILE_DLL);
  EXPECT_NE(0, Dll().characteristics() & IMAGE_FILE_32BIT_MACHINE);
}

TEST(DllFile, MayLieAnywhereAndRunsNoData) {
  EXPECT_EQ(0, Dll().characteristics() & IMAGE_FILE_RELOCS_STRIPPED);
  EXPECT_NE(0, Dll().dllCharacteristics() & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE);
  EXPECT_NE(0, Dll().dllCharacteristics() & IMAGE_DLLCHARACTERISTICS_NX_COMPAT);
  EXPECT_GT(Dll().CountRelocations(), 100u);
  for (const PeSection& section : Dll().sections()) {
    EXPECT_FALSE((section.flags & IMAGE_SCN_MEM_WRITE) != 0 && (section.flags & IMAGE_SCN_MEM_EXECUTE) != 0)
        << section.name;
  }
}

TEST(DllFile, ExportsThePublishedNamesAndNothingElse) {
  std::set<std::pair<uint32_t, std::string>> expected;
  for (const PublishedExport& published : kPublishedExports) expected.insert({published.ordinal, published.name});
  std::set<std::pair<uint32_t, std::string>> found;
  for (const PeExport& exported : Dll().Exports()) {
    EXPECT_FALSE(exported.forwarded) << exported.name;
    found.insert({exported.ordinal, exported.name});
  }
  EXPECT_EQ(expected, found);
}

TEST(DllFile, ImportsFromTheSystemAndItsRuntimeAlone) {
  std::set<std::string> libraries;
  for (const PeImport& import : Dll().Imports()) libraries.insert(LowerCase(import.library));
  EXPECT_EQ((std::set<std::string>{"kernel32.dll", "msvcrt.dll"}), libraries);
}

// No exception can leave what has no means to throw one: neither the system's way nor that of the compiler's runtime,
// which would be linked in and can be seen in the symbols that are kept beside the file.
TEST(DllFile, HasNoMeansToThrow) {
  const std::set<std::string> throwing = {"RaiseException", "RtlRaiseException", "_CxxThrowException",
                                          "__CxxFrameHandler", "longjmp"};
  for (const PeImport& import : Dll().Imports()) {
    for (const std::string& name : import.names) EXPECT_FALSE(throwing.contains(name)) << name;
  }
  const PeImage symbols(PathOf(LinkedLibrary()) + ".debug");
  const std::vector<std::string> names = symbols.SymbolNames();
  EXPECT_TRUE(std::ranges::find(names, "_QNVEnable") != names.end()) << "these are not the library's symbols";
  for (const char* name :
       {"___cxa_throw", "___cxa_rethrow", "__Unwind_RaiseException", "__Unwind_SjLj_RaiseException"}) {
    EXPECT_TRUE(std::ranges::find(names, name) == names.end()) << name;
  }
}

TEST(DllFile, IsSmallAndCarriesNoSymbols) {
  EXPECT_LT(Dll().fileSize(), 200u * 1024);
  EXPECT_EQ(0u, Dll().symbolCount());
  for (const PeSection& section : Dll().sections()) {
    EXPECT_FALSE(section.name.starts_with(".debug")) << section.name;
  }
  const PeImage symbols(PathOf(LinkedLibrary()) + ".debug");
  EXPECT_TRUE(std::ranges::any_of(symbols.sections(), [](const PeSection& s) { return s.name == ".debug_info"; }));
}

// What the project says of itself.
std::string ProjectVersion() {
  std::ifstream file(QNV_TEST_SOURCE_DIR "/../CMakeLists.txt");
  const std::string text(std::istreambuf_iterator<char>(file), {});
  std::smatch match;
  std::regex_search(text, match, std::regex("project\\(QNVDRV10 VERSION ([0-9]+\\.[0-9]+\\.[0-9]+)"));
  return match.size() == 2 ? match[1].str() : "";
}

class DllVersion : public testing::Test {
 protected:
  void SetUp() override {
    const std::string path = PathOf(LinkedLibrary());
    DWORD unused = 0;
    data_.resize(GetFileVersionInfoSizeA(path.c_str(), &unused));
    ASSERT_FALSE(data_.empty()) << "the file has no version resource";
    ASSERT_TRUE(GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(data_.size()), data_.data()));
  }

  std::string Text(const std::string& name) {
    void* value = nullptr;
    UINT size = 0;
    const std::string block = "\\StringFileInfo\\040904B0\\" + name;
    if (!VerQueryValueA(data_.data(), block.c_str(), &value, &size)) return "(none)";
    return static_cast<const char*>(value);
  }

  std::vector<uint8_t> data_;
};

TEST_F(DllVersion, NamesTheProduct) {
  EXPECT_EQ("QNVDRV10", Text("ProductName"));
  EXPECT_EQ("QNVDRV10.dll", Text("OriginalFilename"));
}

TEST_F(DllVersion, IsTheProjects) {
  const std::string version = ProjectVersion();
  ASSERT_FALSE(version.empty());
  EXPECT_EQ(version, Text("ProductVersion"));
  EXPECT_EQ(version, Text("FileVersion"));
  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueA(data_.data(), "\\", &value, &size));
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
