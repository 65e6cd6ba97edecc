// The lines that a run of many jobs reports.
#include "qnvtool/job/job_report.h"

#include <gtest/gtest.h>

#include <string>

namespace qnv::test {
namespace {

using tool::ReportLine;

TEST(JobReport, LinesComeBack) {
  ReportLine line;
  line.key = "0123456789abcdef";
  line.line = 12;
  line.inputs = {"a b.txt", "\"quoted\"\n.bmp"};
  line.read = {{"a b.txt", 3000000000U, -4642359571946590221}, {"font.ttf", 1, 2}};
  line.outputs = {{"out-01.png", 17, 0}, {"out-02.png", 0, 0}};
  line.pages = 2;
  line.seconds = 0.125;
  EXPECT_EQ(tool::FormatReportLine(line),
            R"({"job":"0123456789abcdef","line":12,"result":"done","input":["a b.txt","\"quoted\"\u000a.bmp"],)"
            R"("output":[["out-01.png",17],["out-02.png",0]],"pages":2,"seconds":0.125,)"
            R"("read":[["a b.txt",3000000000,-4642359571946590221],["font.ttf",1,2]]})");
  ReportLine read;
  ASSERT_TRUE(tool::ParseReportLine(tool::FormatReportLine(line), read));
  EXPECT_EQ(read.key, line.key);
  EXPECT_EQ(read.line, 12);
  EXPECT_EQ(read.inputs, line.inputs);
  EXPECT_EQ(read.read, line.read);
  EXPECT_EQ(read.outputs, line.outputs);
  EXPECT_EQ(read.pages, 2);
  EXPECT_EQ(read.seconds, 0.125);
  EXPECT_EQ(read.code, 0);

  line.code = 3;
  line.error = "out: cannot be \"written\"";
  ReportLine failed;
  ASSERT_TRUE(tool::ParseReportLine(tool::FormatReportLine(line), failed));
  EXPECT_EQ(failed.code, 3);
  EXPECT_EQ(failed.error, line.error);
}

// A line is whole or none: whatever its end lacks.
TEST(JobReport, PiecesOfLinesAreNone) {
  ReportLine line;
  line.key = "0123456789abcdef";
  line.inputs = {"a.txt"};
  line.read = {{"a.txt", 3, 4}};
  line.outputs = {{"a.png", 17, 0}};
  const std::string text = tool::FormatReportLine(line);
  for (std::size_t size = 0; size < text.size(); ++size) {
    ReportLine read;
    EXPECT_FALSE(tool::ParseReportLine(text.substr(0, size), read)) << size;
  }
  for (const char* other : {"{}", "[]", "null", R"({"job":"x"})", R"({"job":"x","line":1,"result":"done"})"}) {
    ReportLine read;
    EXPECT_FALSE(tool::ParseReportLine(other, read)) << other;
  }
}

}  // namespace
}  // namespace qnv::test
