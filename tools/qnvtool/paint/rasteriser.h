// The thirteen functions of a band rasteriser, linked or loaded. Every picture that the tool makes is painted through
// this table only.
#pragma once

#include <memory>
#include <string>

#include "qnvdrv10.h"

namespace qnv::tool {

struct Rasteriser {
  decltype(&QNVEnable) enable;
  decltype(&QNVDisable) disable;
  decltype(&QNVGetDeviceInfo) getDeviceInfo;
  decltype(&QNVControl) control;
  decltype(&QNVColorInfo) colorInfo;
  decltype(&QNVRealizeObject) realizeObject;
  decltype(&QNVPixel) pixel;
  decltype(&QNVPolyPixel) polyPixel;
  decltype(&QNVDevBitBlt) bitBlt;
  decltype(&QNVOutput) output;
  decltype(&QNVDevExtTextOut) extTextOut;
  decltype(&QNVStretchDIBits) stretchDIBits;
  decltype(&QNVDevSetDIBitsToDevice) setDIBitsToDevice;

  // Keeps a loaded library open as long as any copy of the table lives; null for the linked one.
  std::shared_ptr<void> library;
};

// The library that the program is linked with. Programs that only load libraries are built without this function.
Rasteriser LinkedRasteriser();

// A library file of the program's own architecture. Throws ToolError (library) when it cannot be loaded or lacks one
// of the functions.
Rasteriser LoadRasteriser(const std::string& path);

}  // namespace qnv::tool
