// What the progress bar shows on terminals of all widths.
#include "qnvtool/base/progress.h"

#include <gtest/gtest.h>

namespace qnv::test {
namespace {

TEST(Progress, FitsTheTerminal) {
  struct Case {
    double done;
    const char* label;
    int columns;
    const char* line;
  };
  const Case cases[] = {
      {0.5, "page 3 of 3", 80, "[###############...............]  50%  page 3 of 3"},
      {0.5, "page 3 of 3", 51, "[###############...............]  50%  page 3 of 3"},
      {0.5, "page 3 of 3", 50, "[##############...............]  50%  page 3 of 3"},
      {0.5, "page 3 of 3", 49, "[##############..............]  50%  page 3 of 3"},
      {1, "page 3 of 3", 31, "[##########] 100%  page 3 of 3"},
      {1, "page 3 of 3", 30, "100%  page 3 of 3"},
      {0, "page 3 of 3", 20, "  0%  page 3 of 3"},
      {0, "page 10 of 1234", 20, "  0%  page 10 of 12"},
      {0.25, "M\xC3\xBCnchen", 8, " 25%  M"},
      {0.25, "M\xC3\xBCnchen", 9, " 25%  M\xC3\xBC"},
      {2, "", 4, "100"},
      {0, "x", 1, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(tool::ProgressLine(c.done, c.label, c.columns), c.line) << c.columns << " columns";
  }
}

}  // namespace
}  // namespace qnv::test
