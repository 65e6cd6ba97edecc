#include "qnvdrv10.h"

/* What the entry point returns is the program's exit code: 42 when the right functions were called. */
int start(void) {
  static uint8_t band[4 * 8];
  const DeviceDescription description = {QNV_KIND_RASTER, 8, 360, 5, 4, 720};
  const BandRect rect = {0, 0, 5, 4};
  DeviceSize size = {0, 0};
  DeviceHandle *device;
  if (QNVGetDeviceInfo(&description, &size) != 8 || size.width != 10 || size.height != 8) return 1;
  device = QNVEnable(&description, &rect, band, 0);
  if (device == 0) return 2;
  if ((QNVControl(device, QNV_CLEAR_BAND, 0, 0) & 0xFFFF) != 1 || band[31] != 0xFF) return 3;
  if (QNVPixel(device, 4, 3, 0, 0, &rect) != 0xFFFFFF) return 4;
  QNVDisable(device);
  return 42;
}
