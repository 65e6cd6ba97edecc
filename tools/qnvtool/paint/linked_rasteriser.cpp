// The functions of the library that the program is linked with.
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {

Rasteriser LinkedRasteriser() { return {calls::LinkedFunctions(), nullptr}; }

}  // namespace qnv::tool
