// `qnvtool make-picture`.
#pragma once

#include <CLI/CLI.hpp>

namespace qnv::tool {

void AddMakePictureCommand(CLI::App& program);

}  // namespace qnv::tool
