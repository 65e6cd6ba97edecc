// The thirteen functions of a library, linked or loaded, in the order of the table of entry points.
#pragma once

#include "qnvdrv10.h"

namespace qnv::calls {

struct Functions {
  QNVEnableFunction enable;
  QNVDisableFunction disable;
  QNVGetDeviceInfoFunction getDeviceInfo;
  QNVControlFunction control;
  QNVColorInfoFunction colorInfo;
  QNVRealizeObjectFunction realizeObject;
  QNVPixelFunction pixel;
  QNVPolyPixelFunction polyPixel;
  QNVDevBitBltFunction bitBlt;
  QNVOutputFunction output;
  QNVDevExtTextOutFunction extTextOut;
  QNVStretchDIBitsFunction stretchDIBits;
  QNVDevSetDIBitsToDeviceFunction setDIBitsToDevice;
};

// Calls visit(name, function) for one function after the other until it returns false. True when it never did.
template <class Visit>
bool ForEachFunction(Functions& functions, Visit visit) {
  return visit("QNVEnable", functions.enable) && visit("QNVDisable", functions.disable) &&
         visit("QNVGetDeviceInfo", functions.getDeviceInfo) && visit("QNVControl", functions.control) &&
         visit("QNVColorInfo", functions.colorInfo) && visit("QNVRealizeObject", functions.realizeObject) &&
         visit("QNVPixel", functions.pixel) && visit("QNVPolyPixel", functions.polyPixel) &&
         visit("QNVDevBitBlt", functions.bitBlt) && visit("QNVOutput", functions.output) &&
         visit("QNVDevExtTextOut", functions.extTextOut) && visit("QNVStretchDIBits", functions.stretchDIBits) &&
         visit("QNVDevSetDIBitsToDevice", functions.setDIBitsToDevice);
}

// Those that the program is linked with.
inline Functions LinkedFunctions() {
  return {QNVEnable,        QNVDisable,       QNVGetDeviceInfo,       QNVControl,   QNVColorInfo,
          QNVRealizeObject, QNVPixel,         QNVPolyPixel,           QNVDevBitBlt, QNVOutput,
          QNVDevExtTextOut, QNVStretchDIBits, QNVDevSetDIBitsToDevice};
}

}  // namespace qnv::calls
