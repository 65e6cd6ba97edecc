// Lays out text files.
#pragma once

#include <string>
#include <vector>

#include "qnvtool/layout/page_setup.h"
#include "qnvtool/layout/text_blocks.h"

namespace qnv::tool {

// Sets the blocks on as many pages as they need, at least one. `name` goes into the header.
std::vector<Page> LayOutText(const std::vector<TextBlock>& blocks, const PageSetup& setup, const std::string& name);

}  // namespace qnv::tool
