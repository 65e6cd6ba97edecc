// A case that is a call file: made again on the library and on the model, each compared with what was recorded.
#pragma once

#include <string>

#include "calls/encoding.h"
#include "random/random_case.h"

namespace qnv::test {

bool IsCallFile(const calls::Bytes& bytes);

// Returns the failure, empty when the case passed.
std::string RunCallFile(const calls::Bytes& bytes, CaseTotals& totals);

}  // namespace qnv::test
