// Names and sizes of papers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qnvtool/layout/paper.h"

namespace qnv::tool {

// The paper of a name in lower case, in one of the forms "iso_a4_210x297mm", "iso_a4" and "a4". Where a name belongs to
// several standards ("b5"), without the standard it means the ISO one. Nothing for names that are not known.
std::optional<Paper> PaperOfName(std::string_view name);

// The paper of a size such as "100x150mm" or "8.5x11in". Nothing for other text.
std::optional<Paper> PaperOfSize(std::string_view text);

// All names with their standard, separated by blanks, for the shell completion.
std::string KnownPaperNames();

}  // namespace qnv::tool
