// Fuzz target: call files. The input is the contents of a block, or, where it begins as a file does, a whole file. One
// with wrong checksums is read as it is, and again with right ones, so that changes of a file get further than to its
// checksums. What can be read is replayed and checked; calls that need more than the file holds must be refused before
// they are made. The engine of the inspector opens it, too, and is asked for calls, their pictures, and places of a
// page.
#include <cstring>
#include <vector>

#include "calls/call_file.h"
#include "calls/checked_replay.h"
#include "calls/hash.h"
#include "calls/text.h"
#include "inspector/engine/inspector.h"

namespace {

constexpr uint64_t kMaxBytes = uint64_t{1} << 24;
constexpr std::size_t kMaxCalls = 200;

// A file of one block that is not compressed.
qnv::calls::Bytes FileOf(const uint8_t* items, std::size_t size) {
  using qnv::calls::AppendLittle;
  qnv::calls::Bytes bytes(qnv::calls::kFileMagic, qnv::calls::kFileMagic + 8);
  AppendLittle(bytes, qnv::calls::kFileVersion);
  AppendLittle(bytes, uint32_t{0x0108});
  AppendLittle(bytes, qnv::calls::Hash64(bytes.data(), bytes.size()));
  const std::size_t block = bytes.size();
  bytes.insert(bytes.end(), {'Q', 'B', 'L', 'K', 1, 0, 0, 0});
  AppendLittle(bytes, static_cast<uint32_t>(size));
  AppendLittle(bytes, static_cast<uint32_t>(size));
  AppendLittle(bytes, qnv::calls::Hash64(items, size, qnv::calls::Hash64(bytes.data() + block, 16)));
  bytes.insert(bytes.end(), items, items + size);
  return bytes;
}

// The header and every block get the checksum that they should have.
void CorrectSums(qnv::calls::Bytes& bytes) {
  using namespace qnv::calls;
  if (bytes.size() < kFileHeaderBytes) return;
  PutLittle(bytes.data() + 16, Hash64(bytes.data(), 16));
  std::size_t at = kFileHeaderBytes;
  while (bytes.size() - at >= kBlockHeaderBytes) {
    const std::size_t stored = GetLittle<uint32_t>(bytes.data() + at + 8), data = at + kBlockHeaderBytes;
    if (stored > bytes.size() - data) return;
    PutLittle(bytes.data() + at + 16, Hash64(bytes.data() + data, stored, Hash64(bytes.data() + at, 16)));
    at = data + stored;
  }
}

// Asks what depends on most of the file.
void Inspect(const qnv::calls::Bytes& bytes, std::size_t calls) {
  qnv::inspector::HistoryLimits limits;
  limits.maxFileBytes = kMaxBytes;
  limits.maxPlaneBytes = uint64_t{1} << 20;
  limits.maxLiveBytes = uint64_t{1} << 22;
  limits.maxKeptBytes = uint64_t{1} << 20;
  limits.costBetweenMoments = 20000;
  qnv::inspector::Inspector inspector(qnv::calls::LinkedFunctions(), limits);
  if (inspector.Open(bytes.data(), bytes.size()) < 0) return;
  inspector.Ask(0, R"({"q":"summary"})");
  inspector.Ask(0, R"({"q":"rows"})");
  for (std::size_t call = 0; call < calls; call += calls / 8 + 1) {
    inspector.Ask(0, qnv::calls::Text("{\"q\":\"call\",\"call\":", call, "}"));
    inspector.Draw(0, qnv::calls::Text("{\"d\":\"picture\",\"call\":", call, ",\"id\":0}"));
    inspector.Draw(0, qnv::calls::Text("{\"d\":\"page\",\"page\":0,\"call\":", call,
                                       ",\"left\":0,\"top\":0,\"width\":300,\"height\":200,\"columns\":30}"));
    inspector.Ask(0, qnv::calls::Text("{\"q\":\"painters\",\"page\":0,\"x\":", call, ",\"y\":", call / 2, "}"));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace qnv::calls;
  const bool isFile = size >= 4 && std::memcmp(data, kFileMagic, 4) == 0;
  Bytes bytes = isFile ? Bytes(data, data + size) : FileOf(data, size);
  CallFile file;
  CallFile::Status status = CallFile::Read(bytes.data(), bytes.size(), &file, kMaxBytes);
  if (isFile && status.error == FileError::kDamaged) {
    CorrectSums(bytes);
    status = CallFile::Read(bytes.data(), bytes.size(), &file, kMaxBytes);
  }
  // A file that can be read whole can be read in part, with the same calls.
  if (isFile) {
    FileBytes memory(bytes.data(), bytes.size());
    CallFile part;
    const CallFile::Status partly = CallFile::ReadPart(memory, data[size - 1] % 4, data[size / 2], &part);
    if (status.error == FileError::kNone && partly.error == FileError::kNone) {
      for (std::size_t i = part.FirstCall(); i < part.EndCall(); ++i) {
        const FileItem &one = part.CallItem(i), &other = file.CallItem(i);
        if (one.bytes != other.bytes || std::memcmp(one.payload, other.payload, one.bytes) != 0) __builtin_trap();
      }
    }
  }
  if (status.error != FileError::kNone && status.error != FileError::kTruncated) return 0;
  Player player(file, LinkedFunctions());
  PlayOptions options;
  options.stopAtFirst = false;
  options.maxPlaneBytes = kMaxBytes;
  options.end = kMaxCalls;
  PlayChecked(player, options, [](const Finding&) {});
  if (file.CallCount() <= kMaxCalls) Inspect(bytes, file.CallCount());
  return 0;
}
