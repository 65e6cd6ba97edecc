// `qnvtool make-picture`.
#pragma once

#include "command_line.h"

namespace qnv::tool {

// Writes one of the sample pictures as a BMP file.
Command MakePictureCommand();

}  // namespace qnv::tool
