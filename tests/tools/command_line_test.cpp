// Values of options, and what is made from the descriptions of options.
#include "qnvtool/cli/command_line.h"

#include <gtest/gtest.h>

#include "qnvtool/cli/help_text.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

TEST(CommandLine, NumbersInTheirRange) {
  EXPECT_EQ(tool::ParseWholeNumber("--n", "20", 20, 4800), 20);
  EXPECT_EQ(tool::ParseWholeNumber("--n", "4800", 20, 4800), 4800);
  EXPECT_EQ(tool::ParseDecimal("--x", "2.5", 2, 200), 2.5);
  EXPECT_EQ(tool::ParseDecimal("--x", "200", 2, 200), 200);
}

TEST(CommandLine, MessagesNameTheRange) {
  for (const char* text : {"", "nan", "x", "19", "4801", "300.5", "300dpi", "99999999999999999999", "-300"}) {
    EXPECT_EQ(UsageErrorOf([&] { tool::ParseWholeNumber("--dpi", text, 20, 4800); }),
              std::string("--dpi ") + text + ": use a whole number from 20 to 4800");
  }
  for (const char* text : {"", "nan", "-nan", "inf", "1.9", "200.1", "11pt", "1e999"}) {
    EXPECT_EQ(UsageErrorOf([&] { tool::ParseDecimal("--size", text, 2, 200); }),
              std::string("--size ") + text + ": use a number from 2 to 200");
  }
  EXPECT_EQ(UsageErrorOf([] {
              tool::ParseChoice("--type", "jpg", {"bmp", "text"});
            }),
            "--type jpg: use one of bmp, text");
}

TEST(CommandLine, WrappedWords) {
  EXPECT_EQ(tool::WrapWords("one two  three", 7), "one two\nthree");
  EXPECT_EQ(tool::WrapWords("one two", 6), "one\ntwo");
  EXPECT_EQ(tool::WrapWords("incomprehensible is", 4), "incomprehensible\nis");
  EXPECT_EQ(tool::WrapWords("", 4), "");
}

TEST(CommandLine, ManPageAndCompletionComeFromTheDescription) {
  std::string out;
  std::string kind;
  bool quiet = false;
  const tool::Command command{.name = "make",
                              .summary = "Makes",
                              .options = {{.names = "kind",
                                           .placeholder = "KIND",
                                           .help = "What",
                                           .value = tool::OneOf{&kind, {"one", "two"}},
                                           .required = true},
                                          {.names = "-o,--out",
                                           .placeholder = "A-B",
                                           .help = "Back\\slash",
                                           .value = tool::Text{&out},
                                           .required = true,
                                           .fileTypes = "png"},
                                          {.names = "-q,--quiet",
                                           .placeholder = "",
                                           .help = "Less",
                                           .value = tool::Flag{&quiet},
                                           .group = "Noise",
                                           .excludes = "--out"}},
                              .run = [] {}};
  const tool::Program program{.name = "p", .summary = "", .version = "1", .commands = {command}};

  const std::string options =
      ".TP\n\\fB\\-o\\fR, \\fB\\-\\-out\\fR \\fIA\\-B\\fR\nBack\\eslash.\nRequired.\n"
      ".SS Noise\n.TP\n\\fB\\-q\\fR, \\fB\\-\\-quiet\\fR\nLess.\nExcludes \\fB\\-\\-out\\fR.\n";
  EXPECT_EQ(tool::ManOptions(command), options);
  EXPECT_EQ(tool::FillManPage(program, "before\n@OPTIONS make@\nafter\n"), "before\n" + options + "after\n");

  const std::string script = tool::BashCompletion(program);
  for (const char* line : {"        make) words='one two' ;;\n", "        -o | --out) kinds='png' ;;\n",
                           "        *) words='-h --help -o --out -q --quiet' ;;\n",
                           "    *) words='make -h --help --version' ;;\n", "\ncomplete -F _p p\n"}) {
    EXPECT_NE(script.find(line), std::string::npos) << line << script;
  }
}

TEST(CommandLine, RunsTheCommandWithItsValues) {
  std::string kind;
  std::vector<std::string> files;
  int number = 7;
  double decimal = 0;
  bool flag = false;
  bool ran = false;
  const tool::Program program{
      .name = "p",
      .summary = "",
      .version = "",
      .commands =
          {{.name = "go",
            .summary = "",
            .options =
                {{.names = "files", .placeholder = "FILE", .help = "", .value = tool::Words{&files}, .required = true},
                 {.names = "--kind", .placeholder = "K", .help = "", .value = tool::OneOf{&kind, {"a", "b"}}},
                 {.names = "-n,--number", .placeholder = "N", .help = "", .value = tool::WholeNumber{&number, 1, 9}},
                 {.names = "--decimal", .placeholder = "X", .help = "", .value = tool::Decimal{&decimal, 0, 1}},
                 {.names = "--flag", .placeholder = "", .help = "", .value = tool::Flag{&flag}}},
            .run = [&] { ran = true; }}}};
  const auto run = [&](std::vector<std::string> words) {
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    return tool::RunProgram(program, static_cast<int>(argv.size()), argv.data());
  };
  EXPECT_EQ(run({"p", "go", "x", "--decimal=0.5", "y", "--kind", "b", "--flag"}), 0);
  EXPECT_TRUE(ran);
  EXPECT_EQ(files, (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(kind, "b");
  EXPECT_EQ(number, 7);
  EXPECT_EQ(decimal, 0.5);
  EXPECT_TRUE(flag);
  testing::internal::CaptureStderr();
  EXPECT_EQ(run({"p", "go", "x", "-n", "10"}), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "p: --number 10: use a whole number from 1 to 9\n");
}

}  // namespace
}  // namespace qnv::test
