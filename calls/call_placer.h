// Rebuilds the arguments of a stored call: pointers lead to the blobs of the file, to records, rows and fonts that are
// put together from it, and to memory for what the call writes. Nothing in a file is trusted: a call is placed only
// when the memory that it reads is there.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "calls/call_file.h"
#include "calls/device_shape.h"
#include "calls/invoke.h"
#include "calls/memory_reads.h"

namespace qnv::calls {

// A call with its arguments in place. It must not be moved: its slots may lead to its own records. The handle is filled
// in when the call is made.
struct PlacedCall {
  std::size_t call;
  const FileItem* item;
  StoredCall stored;
  Slots slots;
  SourceBitmap source;
  LogicalBrush brush;
  bool skipped;  // its memory was too large to be kept
};

// "block at 24, item at byte 17": where an item lies in its file.
std::string PlaceOf(const FileItem& item);

// Keeps in *shape what a call changes of its device, which for QNVEnable is the new one.
void FollowShape(const StoredCall& call, const Slots& slots, DeviceShape* shape);

class CallPlacer {
 public:
  // file: outlives the placer.
  explicit CallPlacer(const CallFile& file) : file_(file) {}
  CallPlacer(const CallPlacer&) = delete;
  CallPlacer& operator=(const CallPlacer&) = delete;

  // Places the arguments of placed->stored, which came from placed->item. shape: of its device before the call. False
  // for a call that must not be made; *error says why.
  bool Place(const DeviceShape& shape, PlacedCall* placed, std::string* error);
  // The handle, or the null or bad one of the file. Measuring calls, which write into their draw mode, get a copy of
  // it. To be called right before the call is made.
  void SetHandle(PlacedCall* placed, DeviceHandle* handle);

  // What the last call has written.
  uint8_t* output() { return output_; }
  const DRAWMODE& textMode() const { return textMode_; }

 private:
  struct Region {
    int64_t first = 0;
    std::vector<uint8_t> memory;
    bool tooLarge = false;
  };

  bool PlacePointer(const StoredPointer& pointer, uintptr_t* slot, Limit* limit);
  bool PlaceArgument(std::size_t index, PlacedCall* placed, Limit* limits, Limit* nestedRecord, Limit* nestedBits);
  const Region* RegionOf(uint32_t image);
  const Bytes* RowsOf(const StoredPointer& pointer);

  const CallFile& file_;
  std::map<uint32_t, Region> regions_;  // fonts, by root image
  std::map<std::pair<std::pair<uint32_t, int64_t>, std::pair<uint64_t, uint64_t>>, Bytes> rows_;
  uint8_t output_[sizeof(PhysicalBrush)];
  DRAWMODE textMode_;
  uint16_t badHandle_ = 0;
};

}  // namespace qnv::calls
