// Replays a call file on the library and on the model.
#include "random/call_file_case.h"

#include <algorithm>
#include <map>
#include <set>

#include "calls/hash.h"
#include "calls/player.h"
#include "calls/text.h"
#include "random/model_library.h"

namespace qnv::test {
namespace {

// Plays the file and returns the first difference.
std::string Play(const calls::CallFile& file, const calls::Functions& functions, const calls::PlayOptions& options,
                 const char* who, calls::PlayReport* report) {
  calls::Player player(file, functions);
  *report = player.Play(options);
  if (!report->differences.empty()) {
    const calls::Difference& first = report->differences.front();
    return calls::Text(who, ", call ", first.call, ": ", first.what);
  }
  if (!report->completed) return calls::Text(who, ": ", report->error);
  return {};
}

// The devices of which the model knows nothing but whether they can be made.
std::set<uint32_t> DevicesBeyondModel(const calls::CallFile& file) {
  std::set<uint32_t> devices;
  calls::StoredCall call;
  for (std::size_t i = 0; i < file.CallCount(); ++i) {
    if (calls::CallFile::FunctionOf(file.CallItem(i)) != calls::Function::kEnable) continue;
    file.DecodeCall(file.CallItem(i), &call);
    const calls::BlobView& blob = file.Blob(call.arguments[0].pointer.number);
    if (call.result == 0 || blob.bytes != sizeof(DeviceDescription)) continue;
    DeviceDescription description;
    std::memcpy(&description, blob.data, sizeof description);
    if (IsBeyondModel(description, call.arguments[3].pointer.tag != calls::PointerTag::kNull)) {
      devices.insert(call.result);
    }
  }
  return devices;
}

// Calls after which a plane has another checksum than before. What the file does not say is no change.
std::size_t PaintingCalls(const calls::CallFile& file) {
  struct Sums {
    uint64_t plane[2] = {};
    bool isKnown[2] = {};
  };
  std::map<uint32_t, Sums> devices;
  std::size_t painting = 0;
  for (const calls::FileItem& item : file.Items()) {
    if (item.kind == calls::ItemKind::kBand) {
      calls::StoredBand band;
      file.DecodeBand(item, &band);
      const calls::BlobView& blob = file.Blob(band.blob);
      Sums& sums = devices[band.device];
      sums.plane[band.plane] = calls::Hash64(blob.data, blob.bytes);
      sums.isKnown[band.plane] = true;
      continue;
    }
    calls::StoredCall call;
    file.DecodeCall(item, &call);
    Sums& sums = devices[call.Device()];
    bool paints = false;
    const auto follow = [&](uint32_t flag, int plane, uint64_t sum) {
      if ((call.flags & flag) == 0) return;
      paints |= sums.isKnown[plane] && sums.plane[plane] != sum;
      sums.plane[plane] = sum;
      sums.isKnown[plane] = true;
    };
    follow(calls::kHasBandAfter, 0, call.bandAfter);
    follow(calls::kHasTagsAfter, 1, call.tagsAfter);
    if (paints) ++painting;
  }
  return painting;
}

}  // namespace

bool IsCallFile(const calls::Bytes& bytes) {
  return bytes.size() >= sizeof calls::kFileMagic &&
         std::equal(std::begin(calls::kFileMagic), std::end(calls::kFileMagic), bytes.begin());
}

std::string RunCallFile(const calls::Bytes& bytes, CaseTotals& totals) {
  calls::CallFile file;
  const calls::CallFile::Status status = calls::CallFile::Read(bytes.data(), bytes.size(), &file);
  if (status.error != calls::FileError::kNone) return calls::Text("at byte ", status.offset, ": ", status.message);
  calls::PlayReport report;
  std::string failure = Play(file, calls::LinkedFunctions(), {}, "library", &report);
  if (!failure.empty()) return failure;
  if (report.made != file.CallCount()) return "library: calls are left out";
  calls::PlayOptions options;
  const std::set<uint32_t> beyond = DevicesBeyondModel(file);
  calls::StoredCall call;
  options.keep = [&](std::size_t i) {
    file.DecodeCall(file.CallItem(i), &call);
    return beyond.count(call.Device()) == 0;
  };
  failure = Play(file, ModelFunctions(), options, "model", &report);
  totals.calls += report.made;
  totals.paintingCalls += PaintingCalls(file);
  return failure;
}

}  // namespace qnv::test
