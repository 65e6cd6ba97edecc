// A host in the test's own process whose calls are captured, and files in memory.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "calls/call_capture.h"
#include "calls/call_file.h"
#include "calls/exact_replay.h"
#include "calls/invoke.h"
#include "calls/player.h"

namespace qnv::test {

using calls::LinkedFunctions;

// A path in the folder of test results; the process number keeps programs that run at the same time apart.
std::string ResultPath(const std::string& name);

class RecordedHost {
 public:
  explicit RecordedHost(const std::string& name, const calls::CaptureOptions& options = {})
      : path_(ResultPath(name)), capture_(std::fopen(path_.c_str(), "wb"), options) {}
  ~RecordedHost() { std::remove(path_.c_str()); }

  // Makes a call as the recorder would pass it on. The arguments must have the types of the declaration.
  template <class R, class... P>
  R Call(R (*calls::Functions::*)(P...), calls::Function function, std::type_identity_t<P>... arguments) {
    calls::Slots slots{};
    std::size_t i = 0;
    ((slots.at[i++] = calls::ToSlot(arguments)), ...);
    calls::PendingCall pending;
    capture_.Before(function, slots, 1, &pending);
    const uintptr_t result = calls::Invoke(LinkedFunctions(), function, slots);
    capture_.After(slots, result, 1, &pending);
    if constexpr (!std::is_void_v<R>) return calls::FromSlot<R>(result);
  }

  // Ends the file and returns its bytes.
  calls::Bytes Finish() {
    capture_.Close();
    return ReadAll(path_);
  }

 private:
  std::string path_;
  calls::CallCapture capture_;
};

// The functions by the names of the interface.
#define QNV_RECORDED_CALL(host, member, name, ...) \
  (host).Call(&qnv::calls::Functions::member, qnv::calls::Function::name, __VA_ARGS__)

// Records a page with every function, every kind of memory, and a move of the band.
calls::Bytes RecordSamplePage(const std::string& name, const DeviceDescription& description, bool tagPlane,
                              const calls::CaptureOptions& options);

struct SampleDevice {
  const char* name;
  DeviceDescription description;
  bool tagPlane;
};
inline constexpr SampleDevice kSampleDevices[] = {
    {"color", {QNV_KIND_RASTER, 24, 300, 61, 24, 300}, false},
    {"gray", {QNV_KIND_RASTER, 8, 300, 61, 24, 300}, false},
    {"dual", {QNV_KIND_RASTER, 24, 720, 61, 24, 720}, true},
    {"scaled", {QNV_KIND_SCALED, 24, 600, 61, 24, 400}, false},
    {"scaled gray", {QNV_KIND_SCALED, 0, 720, 61, 24, 360}, false},
};

}  // namespace qnv::test
