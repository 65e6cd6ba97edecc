// The slow model behind the thirteen functions of the library, so that a call file is replayed on it as on a library.
#pragma once

#include "calls/functions.h"

namespace qnv::test {

calls::Functions ModelFunctions();

// A dual-plane device described with another depth than 24 bits: the model can be made, but has no rules for it.
bool IsBeyondModel(const DeviceDescription& description, bool tagPlane);

}  // namespace qnv::test
