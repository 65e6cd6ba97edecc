// The document, the list of differences and the tests name the same differences.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <string>

namespace qnv::test {
namespace {

const std::filesystem::path kTests = QNV_TEST_SOURCE_DIR;

std::string TextOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

// Natures by name. A row of the document's last table has a name, the library's result, GDI's, who promises what, and
// the reason; none may be empty.
std::map<std::string, std::string> NaturesInTheDocument() {
  const std::regex row(R"(\| ([^|]*[^| ]) \| [^|]*[^| ] \| [^|]*[^| ] \| ([^|]*[^| ]) \| [^|]*[^| ] \|)");
  std::map<std::string, std::string> natures;
  std::istringstream lines(TextOf(kTests.parent_path() / "docs" / "gdi-differences.md"));
  std::smatch match;
  for (std::string line; std::getline(lines, line);) {
    if (std::regex_match(line, match, row)) natures[match[1]] = match[2];
  }
  EXPECT_EQ(1u, natures.erase("Name")) << "the heading of the table";
  return natures;
}

TEST(DifferencesTable, TheDocumentTheListAndTheTestsAgree) {
  std::string tests;
  for (const auto& entry : std::filesystem::directory_iterator(kTests / "windows")) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("gdi_") && name.ends_with("_test.cpp")) tests += TextOf(entry.path());
  }
  const std::map<std::string, std::string> texts = {
      {"kPromised", "promised"}, {"kLeftOpen", "left open"}, {"kWine", "Wine"}};
  const std::regex declaration("inline constexpr Difference (k[A-Za-z]+)\\{\"([^\"]+)\", Nature::(k[A-Za-z]+)\\};");

  auto natures = NaturesInTheDocument();
  std::istringstream list(TextOf(kTests / "windows" / "differences.h"));
  std::smatch match;
  for (std::string line; std::getline(list, line);) {
    if (line.find("constexpr Difference") == std::string::npos) continue;
    ASSERT_TRUE(std::regex_match(line, match, declaration)) << line;
    EXPECT_NE(std::string::npos, tests.find(match[1].str())) << match[1] << " is the reason of no test";
    EXPECT_EQ(texts.at(match[3]), natures[match[2]]) << "nature of \"" << match[2] << "\" in the document";
    natures.erase(match[2]);
  }
  for (const auto& [name, nature] : natures) ADD_FAILURE() << "in the document alone: " << name;
}

}  // namespace
}  // namespace qnv::test
