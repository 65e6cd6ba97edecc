// `qnvtool make-picture`.
#pragma once

#include "qnvtool/cli/command_line.h"

namespace qnv::tool {

// Writes one of the sample pictures as a BMP file.
Command MakePictureCommand();

}  // namespace qnv::tool
