// Small scenes that a person can look at, each a call file that is replayed and compared with pictures. A new scene is
// a program recorded by `qnvtool record --hash`; `qnvtool dump` shows its calls. Options besides those of GoogleTest:
//   --accept          writes the pictures anew; look at each of them before keeping it
//   --pictures DIR    where the accepted pictures lie
//   --output DIR      where got, expected and difference go when a scene differs
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>

#include "calls/exact_replay.h"
#include "golden/picture_file.h"

#if !defined(QNV_GOLDEN_DIR)
#define QNV_GOLDEN_DIR QNV_TEST_SOURCE_DIR "/golden"
#endif

namespace qnv::test {
namespace {

struct Options {
  std::string pictures = QNV_GOLDEN_DIR "/pictures";
  std::string output = QNV_TEST_OUTPUT_DIR "/golden";
  bool accept = false;
};

Options& TheOptions() {
  static Options options;
  return options;
}

enum class Plane : uint8_t { kBand, kTags };

// What a device of a scene shows at its end.
struct Shown {
  const char* picture;  // without suffix
  uint32_t device = 1;
  Plane plane = Plane::kBand;
};

struct Scene {
  const char* name;  // of the call file, without suffix
  std::size_t calls;
  std::vector<Shown> shown;
};

void PrintTo(const Scene& scene, std::ostream* out) { *out << scene.name; }

const std::vector<Scene>& AllScenes() {
  static const std::vector<Scene> scenes = {
      {"hatches_and_patterns", 49, {{"hatches_and_patterns"}}},
      {"rop2_bars", 86, {{"rop2_bars"}}},
      {"span_encodings", 39, {{"span_encodings"}}},
      {"transfers", 203, {{"transfers"}}},
      {"texts", 44, {{"text_modes"}, {"text_on_gray", 2}}},
      {"image_depths", 15, {{"image_depths"}}},
      {"image_scales", 18, {{"image_scales"}}},
      {"images_on_gray", 17, {{"images_on_gray"}}},
      {"run_length_images", 9, {{"run_length_images"}}},
      {"mapped_pages",
       72,
       {{"mapped_600_400", 1}, {"mapped_720_360", 2}, {"mapped_300_450", 3}, {"mapped_gray_600_400", 4}}},
      {"dual_plane_page", 20, {{"dual_plane_colors"}, {"dual_plane_tags", 1, Plane::kTags}}},
  };
  return scenes;
}

// A plane without its padding, red first. Tags 0, 1 and 3 are the gray levels 0, 85 and 255.
PlaneImage PictureOf(const Shown& shown, const calls::PlayedDevice& device) {
  const calls::DeviceShape& shape = device.shape;
  const bool isBand = shown.plane == Plane::kBand;
  const calls::GuardedPlane& plane = isBand ? device.band : device.tags;
  const uint32_t channels = isBand ? shape.PixelBytes() : 1, stride = isBand ? shape.Stride() : shape.TagStride();
  std::vector<uint8_t> bytes;
  for (uint32_t row = 0; row < shape.description.height; ++row) {
    for (uint32_t at = row * stride; at < row * stride + shape.description.width * channels; at += channels) {
      for (uint32_t i = channels; i-- > 0;) {
        bytes.push_back(static_cast<uint8_t>(plane[at + i] * (isBand ? 1 : 85)));
      }
    }
  }
  return MakePicture(shown.picture, shape.description.width, shape.description.height, channels, std::move(bytes));
}

std::vector<PlaneImage> Replay(const Scene& scene) {
  std::vector<PlaneImage> pictures;
  const calls::Bytes bytes = ReadAll(std::string(QNV_GOLDEN_DIR "/scenes/") + scene.name + ".qnv");
  const calls::PlayReport report =
      ReplayExactly(scene.name, bytes, [&](uint32_t number, const calls::PlayedDevice& device) {
        for (const Shown& shown : scene.shown) {
          if (shown.device == number) pictures.push_back(PictureOf(shown, device));
        }
      });
  EXPECT_EQ(report.made, scene.calls) << scene.name;
  EXPECT_EQ(pictures.size(), scene.shown.size()) << scene.name;
  return pictures;
}

class GoldenScene : public testing::TestWithParam<Scene> {};

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
  for (const PlaneImage& picture : Replay(GetParam())) Compare(picture);
}

INSTANTIATE_TEST_SUITE_P(All, GoldenScene, testing::ValuesIn(AllScenes()),
                         [](const auto& scene) { return std::string(scene.param.name); });

// No picture and no call file lies about that no scene names.
TEST(GoldenFiles, BelongToAScene) {
  if (TheOptions().accept) GTEST_SKIP() << "the pictures are being written";
  std::set<std::string> known, found;
  for (const Scene& scene : AllScenes()) {
    known.insert(std::string(scene.name) + ".qnv");
    for (const Shown& shown : scene.shown) known.insert(shown.picture);
  }
  for (const auto& entry : std::filesystem::directory_iterator(TheOptions().pictures)) {
    found.insert(entry.path().stem().string());
  }
  for (const auto& entry : std::filesystem::directory_iterator(QNV_GOLDEN_DIR "/scenes")) {
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
