// Remarks for the user.
#pragma once

#include <functional>
#include <string>

namespace qnv::tool {

// Takes remarks for the user, one line each, about what was changed, repaired or left out. They may come again when a
// file is read again.
using NoteSink = std::function<void(const std::string&)>;

}  // namespace qnv::tool
