// The document and the tests name the same differences.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "windows/differences.h"

namespace qnv::test {
namespace {

const std::filesystem::path kTests = QNV_TEST_SOURCE_DIR;

std::string TextOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" `*");
  const std::size_t last = text.find_last_not_of(" `*");
  return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

// Rows of the tables that have a name, the library's result, GDI's, who promises what, and the reason.
constexpr std::size_t kColumns = 5;

std::map<std::string, std::vector<std::string>> RowsOfTheDocument() {
  std::map<std::string, std::vector<std::string>> rows;
  std::istringstream lines(TextOf(kTests.parent_path() / "docs" / "gdi-differences.md"));
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("| ") || line.starts_with("| Name") || line.starts_with("| ---")) continue;
    std::vector<std::string> cells;
    std::istringstream parts(line.substr(1));
    for (std::string cell; std::getline(parts, cell, '|');) cells.push_back(Trimmed(cell));
    if (cells.size() == kColumns) rows[cells[0]] = cells;
  }
  return rows;
}

const char* NatureText(Nature nature) {
  switch (nature) {
    case Nature::kPromised: return "promised";
    case Nature::kLeftOpen: return "left open";
    case Nature::kWine: return "Wine";
  }
  return "";
}

TEST(DifferencesTable, ListsWhatTheTestsLeaveOut) {
  auto rows = RowsOfTheDocument();
  for (const Difference& difference : kDifferences) {
    const auto found = rows.find(difference.name);
    if (found == rows.end()) {
      ADD_FAILURE() << "not in the document: " << difference.name;
      continue;
    }
    EXPECT_EQ(NatureText(difference.nature), found->second[3]) << difference.name;
    for (const std::string& cell : found->second) EXPECT_FALSE(cell.empty()) << difference.name;
    rows.erase(found);
  }
  for (const auto& [name, cells] : rows) ADD_FAILURE() << "in the document alone: " << name;
}

TEST(DifferencesTable, EveryNameIsTheReasonOfSomeTest) {
  std::string tests;
  for (const auto& entry : std::filesystem::directory_iterator(kTests / "windows")) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("gdi_") && name.ends_with("_test.cpp")) tests += TextOf(entry.path());
  }
  const std::string header = TextOf(kTests / "windows" / "differences.h");
  const std::regex declaration("inline constexpr Difference (k[A-Za-z]+)\\{\"");
  std::size_t declared = 0;
  for (std::sregex_iterator match(header.begin(), header.end(), declaration), end; match != end; ++match) {
    EXPECT_NE(std::string::npos, tests.find((*match)[1].str())) << (*match)[1];
    ++declared;
  }
  EXPECT_EQ(std::size(kDifferences), declared);
}

}  // namespace
}  // namespace qnv::test
