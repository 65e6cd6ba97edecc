// Any call of a file in any order, against a replay that looks after every call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "calls/call_reach.h"
#include "calls/exact_replay.h"
#include "calls/player.h"
#include "inspector/engine/inspector.h"
#include "inspector/random_host.h"

namespace qnv::test {
namespace {

using inspector::History;
using inspector::HistoryLimits;

// What every call left behind.
struct Planes {
  bool isKnown = false;
  calls::DeviceShape shape;
  std::vector<uint8_t> before, after, tagsBefore, tagsAfter;
};

std::vector<Planes> WatchEveryCall(const calls::Bytes& bytes) {
  calls::CallFile file;
  EXPECT_EQ(calls::CallFile::Read(bytes.data(), bytes.size(), &file).error, calls::FileError::kNone);
  calls::Player player(file, LinkedFunctions());
  std::vector<Planes> planes(file.CallCount());
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots&) {
    if (const calls::PlayedDevice* const device = player.Device(stored.Device())) {
      planes[call].before.assign(device->band.begin(), device->band.end());
      planes[call].tagsBefore.assign(device->tags.begin(), device->tags.end());
    }
    return true;
  };
  watcher.after = [&](const calls::Player::MadeCall& made) {
    const calls::PlayedDevice* const device = player.Device(made.stored.Device());
    if (device == nullptr || made.stored.function == calls::Function::kDisable) return true;
    Planes& state = planes[made.call];
    state.isKnown = true;
    state.shape = device->shape;
    state.after.assign(device->band.begin(), device->band.end());
    state.tagsAfter.assign(device->tags.begin(), device->tags.end());
    return true;
  };
  const calls::PlayReport report = player.Play({.compare = false}, watcher);
  EXPECT_EQ(report.error, "");
  return planes;
}

// The pixels that a plane shows; what lies behind them is not of interest.
bool ShowsTheSame(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, const calls::DeviceShape& shape,
                  bool tags) {
  const calls::Reach size = BandReach(shape);
  const std::size_t stride = tags ? shape.TagStride() : shape.Stride();
  const std::size_t bytes = static_cast<std::size_t>(size.right) * (tags ? 1 : shape.PixelBytes());
  for (int32_t y = 0; y < size.bottom; ++y) {
    if (a.empty() && b.empty()) return true;
    const std::size_t at = static_cast<std::size_t>(y) * stride;
    if (std::memcmp(&a[at], &b[at], bytes) != 0) return false;
  }
  return true;
}

// Every pixel that a call changes lies where it may paint.
void ExpectChangesInReach(const History& history, const std::vector<Planes>& planes, const std::string& what) {
  for (std::size_t call = 0; call < planes.size(); ++call) {
    const Planes& state = planes[call];
    if (!state.isKnown) continue;
    const calls::Reach size = BandReach(state.shape), &reach = history.Rows()[call].reach;
    for (const bool tags : {false, true}) {
      const auto &before = tags ? state.tagsBefore : state.before, &after = tags ? state.tagsAfter : state.after;
      if (before == after) continue;
      const std::size_t stride = tags ? state.shape.TagStride() : state.shape.Stride();
      const std::size_t bytes = tags ? 1 : state.shape.PixelBytes();
      for (int32_t y = 0; y < size.bottom; ++y) {
        for (int32_t x = 0; x < size.right; ++x) {
          const std::size_t at = static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x) * bytes;
          if (std::memcmp(&before[at], &after[at], bytes) == 0) continue;
          ASSERT_TRUE(reach.Holds(x, y)) << what << ", call " << call << ", pixel " << x << ", " << y << " reach "
                                         << reach.left << " " << reach.top << " " << reach.right << " " << reach.bottom;
        }
      }
    }
  }
}

void ExpectEveryCall(const calls::Bytes& bytes, const HistoryLimits& limits, uint32_t seed, const std::string& what) {
  History history(LinkedFunctions());
  std::string error;
  ASSERT_TRUE(history.Open(bytes.data(), bytes.size(), limits, &error)) << what << ": " << error;
  EXPECT_EQ(history.Shortcoming(), "") << what;
  const std::vector<Planes> planes = WatchEveryCall(bytes);
  ExpectChangesInReach(history, planes, what);
  std::vector<std::size_t> order(planes.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  // Forwards, and then in any order.
  for (int round = 0; round < 2; ++round) {
    for (const std::size_t call : order) {
      const Planes& state = planes[call];
      if (!state.isKnown) continue;
      const uint32_t device = history.Rows()[call].device;
      const inspector::LiveDevice* const live = history.At(device, history.Rows()[call].position + 1, &error);
      ASSERT_NE(live, nullptr) << what << ", call " << call << ": " << error;
      ASSERT_TRUE(ShowsTheSame(live->band, state.after, state.shape, false)) << what << ", call " << call;
      ASSERT_TRUE(ShowsTheSame(live->tags, state.tagsAfter, state.shape, true)) << what << ", call " << call;
    }
    std::shuffle(order.begin(), order.end(), std::mt19937(seed));
  }
}

HistoryLimits OftenKept() {
  HistoryLimits limits;
  limits.costBetweenMoments = 20000;
  return limits;
}

TEST(History, GoesToAnyCallOfRandomHosts) {
  for (const SampleDevice& device : kSampleDevices) {
    for (uint32_t seed = 1; seed <= 6; ++seed) {
      const std::string what = std::string(device.name) + ", seed " + std::to_string(seed);
      ExpectEveryCall(RecordRandomCalls("random", device, seed, 400), OftenKept(), seed, what);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(History, GoesToAnyCallOfRecordedPages) {
  for (const char* const name : {"color", "dual", "gray", "scaled-120-60", "scaled-90-60"}) {
    const calls::Bytes bytes = ReadAll(std::string(QNV_TEST_SOURCE_DIR) + "/calls/pages/" + name + ".qnv");
    History history(LinkedFunctions());
    HistoryLimits limits;
    limits.costBetweenMoments = 300000;
    std::string error;
    ASSERT_TRUE(history.Open(bytes.data(), bytes.size(), limits, &error)) << error;
    EXPECT_EQ(history.Pages().size(), 3u) << name;
    EXPECT_EQ(history.Bands().size(), 21u) << name;  // empty ones, too
    const std::vector<Planes> planes = WatchEveryCall(bytes);
    ExpectChangesInReach(history, planes, name);
    for (std::size_t i = 0; i < planes.size(); ++i) {
      const std::size_t call = i * 389 % planes.size();
      if (!planes[call].isKnown) continue;
      const inspector::LiveDevice* const live = history.At(1, history.Rows()[call].position + 1, &error);
      ASSERT_NE(live, nullptr) << error;
      ASSERT_TRUE(ShowsTheSame(live->band, planes[call].after, planes[call].shape, false)) << name << " " << call;
      ASSERT_TRUE(ShowsTheSame(live->tags, planes[call].tagsAfter, planes[call].shape, true)) << name << " " << call;
    }
  }
}

// Contents are given up when they take too much memory; every call can still be had.
TEST(History, StaysWithinItsMemory) {
  HistoryLimits limits = OftenKept();
  const calls::Bytes bytes = RecordRandomCalls("memory", kSampleDevices[2], 7, 600);
  History all(LinkedFunctions());
  std::string error;
  ASSERT_TRUE(all.Open(bytes.data(), bytes.size(), limits, &error));
  limits.maxKeptBytes = all.KeptBytes() / 4;
  History few(LinkedFunctions());
  ASSERT_TRUE(few.Open(bytes.data(), bytes.size(), limits, &error));
  EXPECT_LE(few.KeptBytes(), limits.maxKeptBytes);
  EXPECT_LT(few.KeptMoments(), all.KeptMoments() / 2);
  ExpectEveryCall(bytes, limits, 3, "few moments");
}

TEST(History, TellsWhatCannotBeReplayed) {
  const calls::Bytes bytes = RecordSamplePage("limits", kSampleDevices[0].description, false, {false, false});
  History history(LinkedFunctions());
  HistoryLimits limits;
  limits.maxPlaneBytes = 1000;
  std::string error;
  ASSERT_TRUE(history.Open(bytes.data(), bytes.size(), limits, &error));
  EXPECT_NE(history.Shortcoming().find("a band of 4416 bytes is too large"), std::string::npos)
      << history.Shortcoming();
  EXPECT_TRUE(history.Pages().empty());
  EXPECT_FALSE(history.Rows()[5].isMade);
  EXPECT_EQ(history.At(1, 1, &error), nullptr);
}

// Files that are cut off anywhere, and files with a changed byte, are read, or refused with a sentence.
TEST(History, ReadsDamagedFilesOrSaysWhyNot) {
  const calls::Bytes bytes = RecordSamplePage("damaged", kSampleDevices[2].description, true, {false, false});
  std::mt19937 random(5);
  for (std::size_t i = 0; i < bytes.size(); i += 97) {
    const calls::Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(i));
    History history(LinkedFunctions());
    std::string error;
    ASSERT_TRUE(history.Open(cut.data(), cut.size(), {}, &error)) << i << ": " << error;
    EXPECT_EQ(history.Shortcoming().rfind("at byte " + std::to_string(i) + ": the file ends", 0), 0u)
        << history.Shortcoming();
    calls::Bytes changed = bytes;
    changed[i] = static_cast<uint8_t>(changed[i] ^ (1 + random() % 255));
    History other(LinkedFunctions());
    if (!other.Open(changed.data(), changed.size(), {}, &error)) {
      EXPECT_EQ(error.rfind("at byte ", 0), 0u) << error;
    }
  }
}

}  // namespace
}  // namespace qnv::test
