// Compares every scene with its picture. Options besides those of GoogleTest:
//   --accept          writes the pictures anew; look at each of them before keeping it
//   --pictures DIR    where the accepted pictures lie
//   --output DIR      where got, expected and difference go when a scene differs
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>

#include "golden/scene.h"

#if !defined(QNV_GOLDEN_DIR)
#define QNV_GOLDEN_DIR QNV_TEST_SOURCE_DIR "/golden/pictures"
#endif

namespace qnv::test {
namespace {

struct Options {
  std::string pictures = QNV_GOLDEN_DIR;
  std::string output = QNV_TEST_OUTPUT_DIR "/golden";
  bool accept = false;
};

Options& TheOptions() {
  static Options options;
  return options;
}

class GoldenScene : public testing::TestWithParam<PaintedScene> {};

std::string SizeOf(const PlaneImage& picture) {
  return std::to_string(picture.columns()) + " x " + std::to_string(picture.rows()) + " x " +
         std::to_string(picture.bytesPerPixel());
}

// White where both agree, red where they do not. Both must have the same size.
PlaneImage DifferencePicture(const PlaneImage& expected, const PlaneImage& got) {
  std::vector<uint8_t> bytes;
  const std::size_t channels = static_cast<std::size_t>(got.bytesPerPixel());
  for (std::size_t at = 0; at < got.bytes().size(); at += channels) {
    const uint8_t* const pixel = got.bytes().data() + at;
    const uint8_t rest = std::equal(pixel, pixel + channels, expected.bytes().data() + at) ? 255 : 0;
    bytes.insert(bytes.end(), {255, rest, rest});
  }
  return MakePicture("difference", static_cast<uint32_t>(got.columns()), static_cast<uint32_t>(got.rows()), 3,
                     std::move(bytes));
}

void Compare(const PlaneImage& scene) {
  const Options& options = TheOptions();
  const std::string suffix = PictureSuffix(scene);
  const std::string path = options.pictures + "/" + scene.name() + suffix;
  if (options.accept) {
    ASSERT_TRUE(WritePicture(path, scene)) << "cannot write " << path;
    std::printf("wrote %s\n", path.c_str());
    return;
  }
  const std::optional<PlaneImage> expected = ReadPicture(path);
  const bool sameSize = expected && SizeOf(*expected) == SizeOf(scene);
  if (sameSize && expected->bytes() == scene.bytes()) return;
  std::error_code ignored;
  std::filesystem::create_directories(options.output, ignored);
  const std::string base = options.output + "/" + scene.name();
  WritePicture(base + ".got" + suffix, scene);
  if (!expected) {
    ADD_FAILURE() << "no picture at " << path << "; the one painted now is " << base << ".got" << suffix;
    return;
  }
  WritePicture(base + ".expected" + suffix, *expected);
  EXPECT_EQ(SizeOf(*expected), SizeOf(scene)) << scene.name() << "; see " << base << ".{got,expected}";
  if (!sameSize) return;
  WritePicture(base + ".difference.ppm", DifferencePicture(*expected, scene));
  EXPECT_TRUE(SameImage(*expected, scene)) << "; see " << base << ".{got,expected,difference}";
}

TEST_P(GoldenScene, LooksAsAccepted) {
  for (const PlaneImage& picture : GetParam().paint()) Compare(picture);
}

INSTANTIATE_TEST_SUITE_P(All, GoldenScene, testing::ValuesIn(AllScenes()),
                         [](const auto& scene) { return std::string(scene.param.name); });

// No picture lies about that nothing paints.
TEST(GoldenPictures, BelongToAScene) {
  if (TheOptions().accept) GTEST_SKIP() << "the pictures are being written";
  std::set<std::string> known;
  for (const PaintedScene& scene : AllScenes()) {
    for (const PlaneImage& picture : scene.paint()) known.insert(picture.name() + PictureSuffix(picture));
  }
  std::set<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(TheOptions().pictures)) {
    found.insert(entry.path().filename().string());
  }
  EXPECT_EQ(known, found);
}

}  // namespace
}  // namespace qnv::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qnv::test::Options& options = qnv::test::TheOptions();
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--accept") == 0) {
      options.accept = true;
    } else if (std::strcmp(argv[i], "--pictures") == 0 && i + 1 < argc) {
      options.pictures = argv[++i];
    } else if (std::strcmp(argv[i], "--output") == 0 && i + 1 < argc) {
      options.output = argv[++i];
    } else {
      std::fprintf(stderr, "golden_tests [--accept] [--pictures DIR] [--output DIR] [--gtest_...]\n");
      return 2;
    }
  }
  return RUN_ALL_TESTS();
}
