// Turns calls into items of a call file. Before a call it keeps what the call will read, afterwards its result. Calls
// may come from several threads; those of one device stay in order, because a device is used by one thread at a time.
#pragma once

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "calls/call_writer.h"
#include "calls/checker.h"
#include "calls/device_shape.h"
#include "calls/font_memory.h"

namespace qnv::calls {

struct CaptureOptions {
  bool hashEveryCall = false;   // a checksum of the band after every drawing call, not only at the end of a band
  bool flushEveryCall = false;  // every call is its own block: nothing is lost when the host ends suddenly
  bool compress = true;         // blocks that every build can read are not compressed
  // Checks every call: the findings go into the file and to this function, which must make no calls itself.
  std::function<void(const Finding&)> check = {};
};

// A call between Before and After.
struct PendingCall {
  static constexpr std::size_t kMaxBytes = 1024;
  Function function;
  uint32_t device;  // 0: none, or a bad handle
  uint32_t flags;
  uint64_t bandBefore, tagsBefore;
  std::size_t bytes;  // of the payload so far
  uint8_t payload[kMaxBytes];
};

class CallCapture {
 public:
  // Takes the file.
  CallCapture(std::FILE* file, const CaptureOptions& options);

  void Note(const std::string& key, const std::string& text);
  // thread: any number that tells threads apart.
  void Before(Function function, const Slots& slots, uint64_t thread, PendingCall* call);
  // result: the slot that Invoke returns.
  void After(const Slots& slots, uintptr_t result, uint64_t nanoseconds, PendingCall* call);
  // The host has changed the memory of the device by itself: it is kept again before the next drawing call.
  void ForgetContents(const DeviceHandle* handle);
  // Ends the file. Later calls are not kept.
  void Close();
  bool Failed();
  // No thread is inside Before or After.
  bool IsFree();
  uint64_t Calls();

 private:
  struct Device {
    uint32_t number;
    DeviceShape shape;
    const void* band;
    const void* tags;
    bool isKnown = false;    // the file says what the memory holds
    bool isPainted = false;  // something was drawn since the last checksum
  };
  // Small records that the next call probably names again.
  struct RecentBlob {
    uint32_t number = 0;
    std::size_t bytes = 0;
    uint8_t content[sizeof(PhysicalBrush)];
  };

  Device* Find(uintptr_t handle);
  uint32_t RecordBlob(Memory memory, const void* record, std::size_t bytes);
  uint8_t* PutHandle(uint8_t* at, uintptr_t handle, const Device* device);
  uint8_t* PutBlob(uint8_t* at, uint32_t blob, std::ptrdiff_t offset);
  uint8_t* PutRows(uint8_t* at, const void* bits, const SourceRange& range, PendingCall* call);
  uint8_t* PutSource(uint8_t* at, const void* record, bool reads, const SourceRange& range, PendingCall* call);
  uint8_t* PutPointer(uint8_t* at, std::size_t argument, const Slots& slots, const Device* device, PendingCall* call);
  void KeepContents(Device& device);
  uint64_t HashOf(const void* plane, uint64_t bytes);
  uint32_t Output(const Slots& slots, uintptr_t result, const PendingCall& call);

  std::mutex mutex_;
  CallWriter writer_;
  const CaptureOptions options_;
  FontMemory fonts_;
  CallChecker checker_;
  std::unordered_map<uintptr_t, Device> devices_;
  std::unordered_map<uint64_t, uint32_t> threads_;
  uint32_t deviceCount_ = 0;
  RecentBlob recent_[32];
  TextShape text_;  // of the call that is being stored
};

}  // namespace qnv::calls
