// A case whose numbers are the bytes of a file: a device, and calls on it for as long as the file lasts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "random/random_case.h"

namespace qnv::test {

// Returns the failure, empty when the case passed.
std::string RunFileCase(const uint8_t* bytes, std::size_t size, CallMemory& memory, bool verbose, CaseTotals& totals);

}  // namespace qnv::test
