// The functions of the library that the program is linked with.
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {

Rasteriser LinkedRasteriser() {
  return {QNVEnable,
          QNVDisable,
          QNVGetDeviceInfo,
          QNVControl,
          QNVColorInfo,
          QNVRealizeObject,
          QNVPixel,
          QNVPolyPixel,
          QNVDevBitBlt,
          QNVOutput,
          QNVDevExtTextOut,
          QNVStretchDIBits,
          QNVDevSetDIBitsToDevice,
          nullptr};
}

}  // namespace qnv::tool
