// A host that makes random calls of every kind, many of them with a null draw mode, and all of them recorded.
#pragma once

#include "calls/recording.h"

namespace qnv::test {

// The same seed gives the same file.
calls::Bytes RecordRandomCalls(const std::string& name, const SampleDevice& device, uint32_t seed, int count);

}  // namespace qnv::test
