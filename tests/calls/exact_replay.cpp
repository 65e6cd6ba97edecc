// Replays a call file with all its checks, and reads the bytes of a file.
#include "calls/exact_replay.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "calls/checked_replay.h"

namespace qnv::test {

calls::Bytes ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return calls::Bytes(std::istreambuf_iterator<char>(file), {});
}

calls::PlayReport ReplayExactly(const std::string& name, const calls::Bytes& bytes,
                                const std::function<void(uint32_t number, const calls::PlayedDevice&)>& atEnd) {
  calls::CallFile file;
  const calls::CallFile::Status status = calls::CallFile::Read(bytes.data(), bytes.size(), &file);
  EXPECT_EQ(status.error, calls::FileError::kNone) << name << ", byte " << status.offset << ": " << status.message;
  calls::Player player(file, calls::LinkedFunctions());
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t, const calls::StoredCall& stored, const calls::Slots&) {
    if (atEnd && stored.function == calls::Function::kDisable && player.Device(stored.Device()) != nullptr) {
      atEnd(stored.Device(), *player.Device(stored.Device()));
    }
    return true;
  };
  const auto found = [&](const calls::Finding& finding) { ADD_FAILURE() << name << ": " << Describe(finding); };
  const calls::PlayReport report = PlayChecked(player, {}, found, watcher);
  EXPECT_TRUE(report.completed) << name << ": " << report.error;
  EXPECT_EQ(report.skipped, 0u) << name;
  for (const calls::Difference& difference : report.differences) {
    ADD_FAILURE() << name << ", call " << difference.call << ": " << difference.what;
  }
  return report;
}

}  // namespace qnv::test
