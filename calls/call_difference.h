// What differs between two calls of two files: function, arguments with the memory behind them, result, and the
// checksums that both have.
#pragma once

#include <string>

#include "calls/call_file.h"

namespace qnv::calls {

// In words; empty when nothing differs. Times, threads and the places of memory are not compared.
std::string CallDifference(const CallFile& a, const StoredCall& x, const CallFile& b, const StoredCall& y);

}  // namespace qnv::calls
