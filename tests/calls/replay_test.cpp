// Recorded pages, made again.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <thread>

#include "calls/hash.h"
#include "calls/recording.h"

namespace qnv::test {
namespace {

using calls::CallFile;
using calls::FileError;
using calls::Player;
using calls::PlayReport;

CallFile FileOf(const calls::Bytes& bytes) {
  CallFile file;
  const CallFile::Status status = CallFile::Read(bytes.data(), bytes.size(), &file);
  EXPECT_EQ(status.error, FileError::kNone) << status.offset << ": " << status.message;
  return file;
}

TEST(Replay, PaintsWhatWasPainted) {
  for (const SampleDevice& device : kSampleDevices) {
    const CallFile file = FileOf(RecordSamplePage("replay", device.description, device.tagPlane, {true, false}));
    Player player(file, LinkedFunctions());
    // Twice, because a replay must leave nothing behind.
    for (int run = 0; run < 2; ++run) {
      const PlayReport report = player.Play({});
      EXPECT_EQ(report.error, "") << device.name;
      for (const calls::Difference& difference : report.differences) {
        ADD_FAILURE() << device.name << ", call " << difference.call << ": " << difference.what;
      }
      EXPECT_TRUE(report.completed) << device.name;
      EXPECT_EQ(report.made, file.CallCount()) << device.name;
      EXPECT_EQ(report.skipped, 0u);
      // 49 drawing calls and the three ends of bands, on the dual-plane device with the tags.
      EXPECT_EQ(report.compared, device.tagPlane ? 104u : 52u) << device.name;
    }
  }
}

// What a library with a defect does is found at the call that shows it.
uint32_t WrongPixel(DeviceHandle* handle, int32_t x, int32_t y, uint32_t color, const DRAWMODE* mode,
                    const BandRect* clip) {
  return QNVPixel(handle, x, y, color ^ 0x00010000, mode, clip);
}
uint32_t WrongColor(DeviceHandle* handle, uint32_t color, uint32_t* result) {
  const uint32_t physical = QNVColorInfo(handle, color, result);
  if (result != nullptr) ++*result;
  return physical;
}

TEST(Replay, FindsTheFirstDifference) {
  const CallFile file = FileOf(RecordSamplePage("differs", kSampleDevices[0].description, false, {true, false}));
  calls::Functions wrong = LinkedFunctions();
  wrong.colorInfo = WrongColor;
  {
    Player player(file, wrong);
    const PlayReport report = player.Play({});
    ASSERT_EQ(report.differences.size(), 1u);
    EXPECT_FALSE(report.completed);
    EXPECT_EQ(report.differences[0].call, 3u);
    EXPECT_EQ(report.differences[0].what, "QNVColorInfo: what it writes differs");
  }
  wrong = LinkedFunctions();
  wrong.pixel = WrongPixel;
  {
    // R2_NOT does not depend on the color, so nothing differs.
    Player player(file, wrong);
    EXPECT_TRUE(player.Play({}).differences.empty());
  }
}

TEST(Replay, TellsABandThatDiffers) {
  RecordedHost host("band");
  const DeviceDescription description{QNV_KIND_RASTER, 24, 300, 8, 4, 300};
  const BandRect rect{0, 0, 8, 4};
  uint8_t band[24 * 4] = {};
  DeviceHandle* const device = QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band, nullptr);
  QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  QNV_RECORDED_CALL(host, pixel, kPixel, device, 1, 1, 0x00112233, &mode, &rect);
  QNV_RECORDED_CALL(host, disable, kDisable, device);
  const CallFile file = FileOf(host.Finish());
  calls::Functions wrong = LinkedFunctions();
  wrong.pixel = WrongPixel;
  Player player(file, wrong);
  const PlayReport report = player.Play({});
  ASSERT_EQ(report.differences.size(), 1u);
  EXPECT_EQ(report.differences[0].call, 3u);
  EXPECT_EQ(report.differences[0].what.substr(0, 32), "QNVDisable: the band before the ");
}

// A library whose pixels also change a byte beside a plane of their device.
uint8_t* strayByte = nullptr;
uint32_t StrayPixel(DeviceHandle* handle, int32_t x, int32_t y, uint32_t color, const DRAWMODE* mode,
                    const BandRect* clip) {
  *strayByte ^= 0x10;
  return QNVPixel(handle, x, y, color, mode, clip);
}

TEST(Replay, TellsWhatIsWrittenBesideTheBands) {
  RecordedHost host("stray");
  const DeviceDescription description{QNV_KIND_RASTER, 24, 300, 8, 4, 300};
  const BandRect rect{0, 0, 8, 4};
  uint8_t band[24 * 4] = {}, tags[8 * 4] = {};
  DeviceHandle* const device = QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band, tags);
  QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  for (int x = 0; x < 2; ++x) QNV_RECORDED_CALL(host, pixel, kPixel, device, x, 1, 0x00112233, &mode, &rect);
  QNV_RECORDED_CALL(host, disable, kDisable, device);
  const CallFile file = FileOf(host.Finish());
  calls::Functions wrong = LinkedFunctions();
  wrong.pixel = StrayPixel;
  const struct {
    bool tags;
    std::ptrdiff_t at;  // of the byte, in the plane
    std::size_t call;   // at which it is told
    const char* what;
  } cases[] = {
      {false, -1, 2, "QNVPixel: byte 1 before the band was written"},
      {false, -64, 2, "QNVPixel: byte 64 before the band was written"},
      {false, 24 * 4, 2, "QNVPixel: byte 1 behind the band was written"},
      {true, -2, 2, "QNVPixel: byte 2 before the tag plane was written"},
      {true, 8 * 4 + 63, 2, "QNVPixel: byte 64 behind the tag plane was written"},
      // Too far away to be looked at after every call: found when the band ends.
      {false, -65, 4, "QNVDisable: byte 65 before the band was written"},
      {true, 8 * 4 + 4095, 4, "QNVDisable: byte 4096 behind the tag plane was written"},
  };
  for (const auto& c : cases) {
    Player player(file, wrong);
    bool once = false;
    Player::Watcher watcher;
    watcher.before = [&](std::size_t call, const calls::StoredCall&, const calls::Slots&) {
      static uint8_t harmless = 0;
      strayByte = &harmless;
      const calls::PlayedDevice* const played = player.Device(1);
      if (call == 2 && !once && played != nullptr) {
        once = true;
        strayByte = const_cast<uint8_t*>((c.tags ? played->tags : played->band).data()) + c.at;
      }
      return true;
    };
    if (calls::GuardedPlane::kIsInaccessible) {
      EXPECT_DEATH(player.Play({}, watcher), "use-after-poison") << c.what;
      continue;
    }
    const PlayReport report = player.Play({.stopAtFirst = false}, watcher);
    ASSERT_EQ(report.differences.size(), 1u) << c.what;
    EXPECT_EQ(report.differences[0].call, c.call) << c.what;
    EXPECT_EQ(report.differences[0].what, c.what);
    EXPECT_TRUE(once && report.completed) << c.what;
    // Who does not compare is not told.
    once = false;
    EXPECT_TRUE(player.Play({.compare = false}, watcher).differences.empty()) << c.what;
  }
}

TEST(Replay, GivesPixelsToWatchers) {
  const CallFile file = FileOf(RecordSamplePage("watch", kSampleDevices[2].description, true, {}));
  Player player(file, LinkedFunctions());
  std::size_t made = 0, planes = 0;
  Player::Watcher watcher;
  watcher.after = [&](const Player::MadeCall& call) {
    EXPECT_EQ(call.call, made);
    ++made;
    const calls::PlayedDevice* const device = player.Device(1);
    if (device != nullptr && device->band.size() > 61 * 3 * 24 && device->tags.size() > 61 * 24) ++planes;
    return call.call != 30;
  };
  const PlayReport report = player.Play({}, watcher);
  EXPECT_TRUE(report.completed);
  EXPECT_EQ(made, 31u);
  EXPECT_EQ(planes, 29u);  // all but the two calls before the device
}

// The demo document on every device, in bands, as the tool printed it once: on every build the same results, and the
// same bands after every drawing call. The files are replaced only when a page is meant to change.
TEST(Replay, PaintsTheRecordedPages) {
  const struct {
    const char* name;
    std::size_t calls, checksums;
    uint64_t hash;  // of the file
  } pages[] = {
      {"color", 653, 286, 0x2AC3338D4B402EC2},        {"gray", 653, 286, 0x951816D04A88FA96},
      {"dual", 653, 572, 0xE7E704B587384365},         {"scaled-120-60", 955, 589, 0xDD15CE2F2B93D1B4},
      {"scaled-90-60", 958, 590, 0xC68A563DEFECF7D0}, {"scaled-gray-120-60", 955, 589, 0x028EB8FF1AF450CE},
  };
  for (const auto& page : pages) {
    const calls::Bytes bytes = ReadAll(std::string(QNV_TEST_SOURCE_DIR) + "/calls/pages/" + page.name + ".qnv");
    ASSERT_EQ(calls::Hash64(bytes.data(), bytes.size()), page.hash) << page.name;
    const PlayReport report = ReplayExactly(page.name, bytes);
    EXPECT_EQ(report.made, page.calls) << page.name;
    EXPECT_EQ(report.compared, page.checksums) << page.name;
  }
}

// What qnvbench measures as a page: on a color, a gray and a dual-plane device 161 drawing calls each, with a checksum
// after every one of them and at the end of the band.
TEST(Replay, PaintsThePageOfTheBenchmark) {
  const PlayReport report =
      ReplayExactly("page", ReadAll(std::string(QNV_TEST_SOURCE_DIR) + "/../bench/pages/qnvbench_page.qnv"));
  EXPECT_EQ(report.made, 510u);
  EXPECT_EQ(report.compared, 4u * (161 + 1));
}

// The inputs of the fuzz target "sequences" are there as call files, too (scripts/fuzz.sh --record). random_tests
// replays them.
TEST(FuzzSeeds, AreCallFiles) {
  const std::string corpus = std::string(QNV_TEST_SOURCE_DIR) + "/../fuzz/corpus/";
  std::set<std::string> inputs, recorded;
  for (const auto& entry : std::filesystem::directory_iterator(corpus + "sequences")) {
    inputs.insert(entry.path().filename().string() + ".qnv");
  }
  for (const auto& entry : std::filesystem::directory_iterator(corpus + "sequence_calls")) {
    recorded.insert(entry.path().filename().string());
  }
  EXPECT_GT(inputs.size(), 300u);
  EXPECT_EQ(inputs, recorded);
}

// Four threads, each with devices of its own: the calls of each device are in order, and paint what they painted.
TEST(Replay, KeepsTheOrderOfEachDevice) {
  constexpr int kThreads = 4, kDevices = 3, kPixels = 400;
  calls::Bytes bytes;
  {
    RecordedHost host("threads", {.hashEveryCall = true});
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&host, t] {
        for (int d = 0; d < kDevices; ++d) {
          const DeviceDescription description{QNV_KIND_RASTER, 24, 300, 40, 10, 300};
          const BandRect rect{0, 0, 40, 10};
          std::vector<uint8_t> band(120 * 10);
          DeviceHandle* const device =
              QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band.data(), nullptr);
          DRAWMODE mode{};
          mode.Rop2 = R2_COPYPEN;
          // The color counts the calls.
          for (int i = 0; i < kPixels; ++i) {
            QNV_RECORDED_CALL(host, pixel, kPixel, device, i % 40, i / 40, static_cast<uint32_t>(i << 4 | t), &mode,
                              &rect);
          }
          QNV_RECORDED_CALL(host, disable, kDisable, device);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    bytes = host.Finish();
  }
  const CallFile file = FileOf(bytes);
  ASSERT_EQ(file.DeviceCount(), static_cast<uint32_t>(kThreads * kDevices));
  ASSERT_EQ(file.CallCount(), static_cast<std::size_t>(kThreads * kDevices * (kPixels + 2)));
  std::map<uint32_t, uint32_t> next, color;
  calls::StoredCall call;
  for (std::size_t i = 0; i < file.CallCount(); ++i) {
    file.DecodeCall(file.CallItem(i), &call);
    if (call.function != calls::Function::kPixel) continue;
    const uint32_t device = call.Device();
    EXPECT_EQ(call.arguments[3].number >> 4, next[device]++) << "device " << device;
    const auto [first, isNew] = color.try_emplace(device, call.arguments[3].number & 15);
    EXPECT_EQ(first->second, call.arguments[3].number & 15) << "device " << device;
  }
  Player player(file, LinkedFunctions());
  const PlayReport report = player.Play({});
  EXPECT_TRUE(report.completed) << (report.differences.empty() ? report.error : report.differences[0].what);
  EXPECT_EQ(report.compared, static_cast<std::size_t>(kThreads * kDevices * (kPixels + 1)));
}

// Files whose numbers do not fit are refused before the library sees them.
class BadFile : public ::testing::Test {
 protected:
  // Records one call on a device of 8 x 4 gray pixels and returns the file with the blob number `blob` cut to `bytes`.
  template <class Calls>
  static std::string ErrorOf(const Calls& makeCalls, std::size_t cutTo, std::size_t blobBytes) {
    RecordedHost host("bad");
    const DeviceDescription description{QNV_KIND_RASTER, 8, 300, 8, 4, 300};
    const BandRect rect{0, 0, 8, 4};
    uint8_t band[8 * 4] = {};
    DeviceHandle* const device = QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band, nullptr);
    makeCalls(host, device, rect);
    QNV_RECORDED_CALL(host, disable, kDisable, device);
    CallFile file = FileOf(host.Finish());
    bool found = false;
    for (uint32_t i = 1; i <= file.BlobCount(); ++i) {
      if (file.Blob(i).bytes != blobBytes) continue;
      const_cast<calls::BlobView&>(file.Blob(i)).bytes = cutTo;
      found = true;
    }
    EXPECT_TRUE(found);
    Player player(file, LinkedFunctions());
    const PlayReport report = player.Play({});
    EXPECT_FALSE(report.completed);
    return report.error.substr(report.error.find(": ") + 2);
  }
};

TEST_F(BadFile, WithAShortRecord) {
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  EXPECT_EQ(
      ErrorOf([&](RecordedHost& host, DeviceHandle* device,
                  const BandRect& rect) { QNV_RECORDED_CALL(host, pixel, kPixel, device, 1, 1, 0, &mode, &rect); },
              41, 42),
      "QNVPixel reads memory that the file does not hold");
}

TEST_F(BadFile, WithAShortSpanList) {
  DRAWMODE mode{};
  const int16_t points[] = {0, 1, 2, 1, 2, 1, 2};
  EXPECT_EQ(ErrorOf(
                [&](RecordedHost& host, DeviceHandle* device, const BandRect& rect) {
                  QNV_RECORDED_CALL(host, output, kOutput, device, OS_ROW_SPANS, 3, points, nullptr, nullptr, &mode,
                                    &rect);
                },
                13, 14),
            "QNVOutput reads memory that the file does not hold");
}

TEST_F(BadFile, WithShortRows) {
  DRAWMODE mode{};
  const uint8_t pixels[7 * 3] = {};
  const SourceBitmap source{0, 7, 3, 7, 1, 8, pixels};
  EXPECT_EQ(ErrorOf(
                [&](RecordedHost& host, DeviceHandle* device, const BandRect& rect) {
                  QNV_RECORDED_CALL(host, bitBlt, kDevBitBlt, device, 0, 0, &source, 0, 0, 7, 3, SRCCOPY, nullptr,
                                    &mode, &rect);
                },
                20, 21),
            "QNVDevBitBlt reads memory that the file does not hold");
}

TEST_F(BadFile, WithAShortColorTable) {
  const struct {
    BITMAPINFOHEADER header;
    uint8_t colors[2][4];
  } picture{{40, 8, 2, 1, 1, 0, 0, 0, 0, 2, 0}, {}};
  const uint8_t bits[8] = {};
  EXPECT_EQ(ErrorOf(
                [&](RecordedHost& host, DeviceHandle* device, const BandRect& rect) {
                  QNV_RECORDED_CALL(host, stretchDIBits, kStretchDIBits, device, 0, 0, 0, 8, 2, 0, 0, 8, 2, bits,
                                    static_cast<const void*>(&picture), nullptr, SRCCOPY, nullptr, nullptr, &rect);
                },
                47, 48),
            "QNVStretchDIBits reads memory that the file does not hold");
}

}  // namespace
}  // namespace qnv::test
