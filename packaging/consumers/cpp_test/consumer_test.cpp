#include <cstdint>
#include <cstdio>
#include <vector>

#include "qnvdrv10.h"

// Paints one pixel into the middle of a white band and looks at all bytes.
int main() {
  std::vector<uint8_t> band(12 * 3, 0xCC);
  const DeviceDescription description = {QNV_KIND_RASTER, 24, 72, 3, 3, 72};
  const BandRect rect = {0, 0, 3, 3};
  DeviceHandle* const device = QNVEnable(&description, &rect, band.data(), nullptr);
  if (device == nullptr) return 1;
  QNVControl(device, QNV_CLEAR_BAND, nullptr, nullptr);
  DRAWMODE mode = {};
  mode.Rop2 = R2_COPYPEN;
  QNVPixel(device, 1, 1, 0x00112233, &mode, &rect);
  QNVDisable(device);

  std::vector<uint8_t> expected(12 * 3, 0xFF);
  expected[12 + 3] = 0x11;
  expected[12 + 4] = 0x22;
  expected[12 + 5] = 0x33;
  std::puts(band == expected ? "as expected" : "another picture");
  return band == expected ? 0 : 1;
}
