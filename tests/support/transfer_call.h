// One call of QNVDevBitBlt as a record, so that tests change only the arguments they are about.
#pragma once

#include <cstdint>

#include "support/test_device.h"

namespace qnv::test {

struct TransferPoint {
  int32_t x = 0;
  int32_t y = 0;
};

struct TransferSize {
  int32_t width = 0;
  int32_t height = 0;
};

struct TransferCall {
  TransferPoint at{};  // of the destination
  const SourceBitmap* source = nullptr;
  TransferPoint from{};  // of the source
  TransferSize size{};
  uint32_t rop = 0;
  const PhysicalBrush* brush = nullptr;
  const DRAWMODE* drawMode = nullptr;
  const BandRect* clip = &kEverywhere;
};

// The 16-bit result.
inline uint32_t Transfer(DeviceHandle* handle, const TransferCall& call) {
  return QNVDevBitBlt(handle, call.at.x, call.at.y, call.source, call.from.x, call.from.y, call.size.width,
                      call.size.height, call.rop, call.brush, call.drawMode, call.clip) &
         0xFFFF;
}

}  // namespace qnv::test
