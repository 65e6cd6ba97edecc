// The recorder's state: the functions of the real library, and the file when something is recorded.
#pragma once

#include "calls/call_capture.h"
#include "calls/invoke.h"
#include "qnvrec.h"

namespace qnv::recorder {

struct Session {
  calls::Functions functions{};
  bool isLoaded = false;
  calls::CallCapture* capture = nullptr;  // null: nothing is recorded
  bool checks = false;
};

// Made at the first call.
const Session& CurrentSession();

// Sets or removes the callback of findings. True when calls are checked.
bool SetFindingCallback(QNVFindingCallback* callback, void* context);

// Makes a call through the real library and records it.
uintptr_t RecordedCall(const Session& session, calls::Function function, const calls::Slots& slots);

}  // namespace qnv::recorder
