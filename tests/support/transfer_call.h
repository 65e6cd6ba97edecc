// One call of QNVDevBitBlt as a record, so that tests change only the arguments they are about.
#pragma once

#include <cstdint>

#include "support/test_device.h"

namespace qnv::test {

struct TransferCall {
  int32_t destX = 0;
  int32_t destY = 0;
  const SourceBitmap* source = nullptr;
  int32_t srcX = 0;
  int32_t srcY = 0;
  int32_t width = 0;
  int32_t height = 0;
  uint32_t rop = 0;
  const PhysicalBrush* brush = nullptr;
  const DRAWMODE* drawMode = nullptr;
  const BandRect* clip = &kEverywhere;
};

// The 16-bit result.
inline uint32_t Transfer(DeviceHandle* handle, const TransferCall& call) {
  return QNVDevBitBlt(handle, call.destX, call.destY, call.source, call.srcX, call.srcY, call.width, call.height,
                      call.rop, call.brush, call.drawMode, call.clip) &
         0xFFFF;
}

}  // namespace qnv::test
