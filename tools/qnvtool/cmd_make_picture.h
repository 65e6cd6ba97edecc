// `qnvtool make-picture`.
#pragma once

#include "command_line.h"

namespace qnv::tool {

Command MakePictureCommand();

}  // namespace qnv::tool
