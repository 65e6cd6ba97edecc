// Files that are complete or not there, and the names that they may have.
#include "qnvtool/base/output_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "qnvtool/output/documents.h"
#include "qnvtool/output/output_names.h"
#include "qnvtool/output/picture_writer.h"
#include "qnvtool/output/png_writer.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

namespace fs = std::filesystem;

// A folder of its own for each test, gone afterwards.
class OutputFile : public testing::Test {
 protected:
  OutputFile() {
    folder_ = testing::TempDir() + "/output_file_XXXXXX";
    EXPECT_NE(mkdtemp(folder_.data()), nullptr);
  }
  ~OutputFile() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  static void Put(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

  static std::string Get(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::size_t Files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  static void Write(const std::string& path, const char* text) {
    tool::OutputFile file(path);
    std::fputs(text, file.get());
    file.Close();
  }

  std::string folder_;
};

TEST_F(OutputFile, TakesItsNameWhenComplete) {
  const std::string path = Path("a");
  for (const bool replaces : {false, true}) {
    for (const bool completed : {false, true}) {
      fs::remove(path);
      if (replaces) Put(path, "old");
      {
        tool::OutputFile file(path);
        std::fputs("new", file.get());
        std::fflush(file.get());
        EXPECT_EQ(fs::exists(path), replaces);
        EXPECT_EQ(Get(path), replaces ? "old" : "");
        if (completed) file.Close();
      }
      EXPECT_EQ(Get(path), completed ? "new" : replaces ? "old" : "");
      EXPECT_EQ(Files(), completed || replaces ? 1u : 0u);
    }
  }
}

TEST_F(OutputFile, KeepsTheModeOfTheFileThatItReplaces) {
  const std::string path = Path("a");
  Put(path, "old");
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  Write(path, "new");
  struct stat file;
  ASSERT_EQ(stat(path.c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 07777, 0640u);
  EXPECT_EQ(Get(path), "new");
}

TEST_F(OutputFile, FollowsSymbolicLinks) {
  fs::create_directory(Path("d"));
  fs::create_symlink("d/target", Path("link"));
  Write(Path("link"), "one");  // the target does not exist yet
  EXPECT_EQ(Get(Path("d/target")), "one");
  Write(Path("link"), "two");
  EXPECT_TRUE(fs::is_symlink(Path("link")));
  EXPECT_EQ(Get(Path("d/target")), "two");
}

TEST_F(OutputFile, PictureFilesAppearWhenFinished) {
  const uint8_t rows[] = {10, 20, 30, 40};
  for (const auto format : {tool::PictureFormat::kPng, tool::PictureFormat::kPnm}) {
    const std::string path = Path("picture");
    Put(path, "old");
    const auto write = [&](bool finish) {
      const tool::PictureForm form{2, 2, 300, tool::PictureForm::Pixels::kGray};
      const auto writer =
          format == tool::PictureFormat::kPng ? tool::CreatePngFile(path, form) : tool::CreatePnmFile(path, form);
      writer->Write(tool::CreateEncoder(format, form)->Encode({rows, 2, 0, 2}));
      if (finish) writer->Finish();
    };
    write(false);
    EXPECT_EQ(Get(path), "old");
    write(true);
    EXPECT_NE(Get(path), "old");
    EXPECT_EQ(Files(), 1u);
  }
}

TEST_F(OutputFile, NamesOfPages) {
  EXPECT_EQ(tool::PathOfPage("out.png", 1, 1), "out.png");
  EXPECT_EQ(tool::PathOfPage("out.png", 1, 2), "out-01.png");
  EXPECT_EQ(tool::PathOfPage("out.png", 2, 99), "out-02.png");
  EXPECT_EQ(tool::PathOfPage("out.png", 7, 100), "out-007.png");
  EXPECT_EQ(tool::PathOfPage("a.b/out", 12, 12), "a.b/out-12");
  EXPECT_EQ(tool::PathOfPage("a/out.x.ppm", 3, 3), "a/out.x-03.ppm");
  EXPECT_EQ(tool::PathOfPage("-", 2, 3), "-");
  EXPECT_EQ(tool::PathOfPage("/dev/null", 2, 3), "/dev/null");
}

std::string RefusalOf(const tool::PageNames& wanted, int pages, const std::vector<std::string>& inputs) {
  return UsageErrorOf([&] { tool::NamePages(wanted, pages, inputs); });
}

TEST_F(OutputFile, NoNameOfAnInput) {
  const std::string input = Path("page-02.png");
  const std::string message = input + ": is an input file and would be overwritten";
  Put(input, "photo");
  EXPECT_EQ(RefusalOf({Path("page.png"), "", ""}, 2, {input}), message);
  Put(Path("page.png"), "an earlier page");
  EXPECT_EQ(RefusalOf({Path("page.png"), "", ""}, 1, {input}), "");
  EXPECT_EQ(RefusalOf({Path("other.png"), Path("page.png"), ""}, 3, {input}), message);
  EXPECT_EQ(RefusalOf({Path("other.png"), "", Path("page.png")}, 3, {input}), message);
  EXPECT_NE(RefusalOf({Path("none.png"), "", ""}, 1, {Path("none.png")}), "");  // need not exist
  EXPECT_EQ(RefusalOf({"-", "", ""}, 2, {"-"}), "");
  fs::create_hard_link(input, Path("hard.png"));
  fs::create_symlink(input, Path("soft.png"));
  for (const char* name : {"x/.././page-02.png", "hard.png", "soft.png"}) {
    EXPECT_NE(RefusalOf({Path(name), "", ""}, 1, {input}), "") << name;
  }
}

TEST_F(OutputFile, NoNameOfTwoPictures) {
  EXPECT_EQ(RefusalOf({Path("a.png"), Path("a.png"), ""}, 1, {}), Path("a.png") + ": named for two different pictures");
  // Page 2 of one has the name of the only file of the other.
  EXPECT_NE(RefusalOf({Path("a.png"), Path("b.png"), Path("b.png")}, 2, {}), "");
  EXPECT_NE(RefusalOf({Path("a.png"), Path("./a.png"), ""}, 3, {}), "");
  Put(Path("x.png"), "");
  fs::create_hard_link(Path("x.png"), Path("y.png"));
  EXPECT_NE(RefusalOf({Path("x.png"), Path("y.png"), ""}, 1, {}), "");
  EXPECT_EQ(RefusalOf({Path("a.png"), Path("b.png"), Path("c.png")}, 12, {}), "");
  EXPECT_EQ(RefusalOf({"/dev/null", "/dev/null", ""}, 2, {}), "");
}

TEST_F(OutputFile, AllNames) {
  const auto names = tool::NamePages({"a.png", "", "c.png"}, 2, {});
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(names[0].picture, "a-01.png");
  EXPECT_EQ(names[0].tags, "");
  EXPECT_EQ(names[1].overlay, "c-02.png");
  // A file that holds all pages keeps its name.
  const auto whole = tool::NamePages({"a.pdf", "b.png", ""}, 2, {}, {.picture = true});
  ASSERT_EQ(whole.size(), 2u);
  EXPECT_EQ(whole[1].picture, "a.pdf");
  EXPECT_EQ(whole[1].tags, "b-02.png");
  EXPECT_NE(UsageErrorOf([&] { tool::NamePages({"a.pdf", "a.pdf", ""}, 2, {}, {true, true, false}); }), "");
  EXPECT_NE(UsageErrorOf([&] { tool::NamePages({"a.pdf", "", ""}, 2, {"a.pdf"}, {.picture = true}); }), "");
}

}  // namespace
}  // namespace qnv::test
