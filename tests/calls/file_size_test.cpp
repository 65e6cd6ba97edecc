// The size of call files: every distinct byte once, compressed, and little else.
#include <gtest/gtest.h>

#include "calls/block_codec.h"
#include "calls/recording.h"

namespace qnv::test {
namespace {

using calls::Bytes;
using calls::CallFile;

CallFile Read(const Bytes& bytes) {
  CallFile file;
  EXPECT_EQ(CallFile::Read(bytes.data(), bytes.size(), &file).error, calls::FileError::kNone);
  return file;
}

// Replays a page under a capture: the file that a recorder would write of it.
Bytes RecordAgain(const Bytes& page, const calls::CaptureOptions& options) {
  const CallFile file = Read(page);
  const std::string path = ResultPath("size");
  {
    calls::CallCapture capture(std::fopen(path.c_str(), "wb"), options);
    calls::PendingCall pending;
    calls::Player player(file, LinkedFunctions());
    calls::Player::Watcher watcher;
    watcher.before = [&](std::size_t, const calls::StoredCall& stored, const calls::Slots& slots) {
      capture.Before(stored.function, slots, stored.thread, &pending);
      return true;
    };
    watcher.after = [&](const calls::Player::MadeCall& made) {
      capture.After(made.slots, made.result, made.stored.nanoseconds, &pending);
      return true;
    };
    EXPECT_TRUE(player.Play({}, watcher).completed);
    capture.Close();
  }
  Bytes bytes = ReadAll(path);
  std::remove(path.c_str());
  return bytes;
}

struct Parts {
  std::size_t blobs;      // every distinct blob once, compressed in one piece
  std::size_t all;        // the same with the calls behind them
  std::size_t checksums;  // of bands and tag planes
};

Parts PartsOf(const CallFile& file) {
  Bytes whole, compressed;
  const auto append = [&](const uint8_t* bytes, std::size_t count) { whole.insert(whole.end(), bytes, bytes + count); };
  for (uint32_t i = 1; i <= file.BlobCount(); ++i) append(file.Blob(i).data, file.Blob(i).bytes);
  Parts parts{};
  EXPECT_EQ(calls::CompressBlock(whole, &compressed), calls::Codec::kZstd);
  parts.blobs = compressed.size();
  calls::StoredCall call;
  for (const calls::FileItem& item : file.Items()) {
    append(item.payload, item.bytes);
    if (item.kind != calls::ItemKind::kCall) continue;
    file.DecodeCall(item, &call);
    for (const uint32_t flag :
         {calls::kHasBandBefore, calls::kHasTagsBefore, calls::kHasBandAfter, calls::kHasTagsAfter}) {
      parts.checksums += (call.flags & flag) != 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(calls::CompressBlock(whole, &compressed), calls::Codec::kZstd);
  parts.all = compressed.size();
  return parts;
}

// docs/call-format.md, "Size", gives these numbers.
void ExpectSmall(const std::string& name, const Bytes& bytes) {
  const CallFile file = Read(bytes);
  const Parts parts = PartsOf(file);
  EXPECT_LE(bytes.size(), parts.blobs + 16 * file.CallCount() + 8 * parts.checksums + 256) << name;
  EXPECT_LE(bytes.size(), parts.all + parts.all / 10 + 256) << name;
}

TEST(FileSize, IsThatOfTheDistinctBytesAndOfTheCallsThemselves) {
  if (!calls::HasZstd()) GTEST_SKIP() << "this build does not compress";
  for (const char* name :
       {"calls/pages/color", "calls/pages/gray", "calls/pages/dual", "calls/pages/scaled-120-60",
        "calls/pages/scaled-90-60", "calls/pages/scaled-gray-120-60", "../bench/pages/qnvbench_page"}) {
    const Bytes page = ReadAll(std::string(QNV_TEST_SOURCE_DIR "/") + name + ".qnv");
    ExpectSmall(name, RecordAgain(page, {}));
    // With a checksum after every drawing call; of the largest bands that would take seconds.
    if (page.size() < 100000) ExpectSmall(name, RecordAgain(page, {.hashEveryCall = true}));
  }
}

// No two calls are alike, so that nothing but what they name can be found again.
TEST(FileSize, HoldsForManyDifferentCalls) {
  if (!calls::HasZstd()) GTEST_SKIP() << "this build does not compress";
  RecordedHost host("many");
  const DeviceDescription description{QNV_KIND_RASTER, 24, 300, 64, 32, 300};
  const BandRect rect{0, 0, 64, 32};
  std::vector<uint8_t> band(std::size_t{3} * 64 * 32);
  DeviceHandle* const device = QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band.data(), nullptr);
  QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  PhysicalBrush brush{};
  brush.style = BS_SOLID;
  uint32_t state = 1;
  const auto random = [&](uint32_t bound) { return (state = state * 1664525 + 1013904223) % 65521 % bound; };
  for (int i = 0; i < 20000; ++i) {
    const auto y = static_cast<int16_t>(random(32));
    const int16_t points[] = {y, static_cast<int16_t>(random(64)), static_cast<int16_t>(random(64)),
                              static_cast<int16_t>(random(64)), static_cast<int16_t>(random(64))};
    const auto x = static_cast<int32_t>(random(5000)), height = static_cast<int32_t>(random(30));
    if (i % 2 == 0) {
      QNV_RECORDED_CALL(host, output, kOutput, device, OS_ROW_SPANS, 2, points, nullptr, &brush, &mode, &rect);
    } else {
      QNV_RECORDED_CALL(host, bitBlt, kDevBitBlt, device, x, y, nullptr, 0, 0, 20 + x % 17, height, PATCOPY, &brush,
                        &mode, &rect);
    }
  }
  QNV_RECORDED_CALL(host, disable, kDisable, device);
  ExpectSmall("many", host.Finish());
}

}  // namespace
}  // namespace qnv::test
