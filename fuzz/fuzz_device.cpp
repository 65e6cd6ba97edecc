// Makes a device, a draw mode and a brush from the input.
#include "fuzz_input.h"

namespace qnv::fuzz {

FuzzDevice::FuzzDevice(Input& input) {
  const uint8_t choice = input.Byte();
  DeviceDescription description;
  description.kind = choice % 4 == 2 ? QNV_KIND_SCALED : QNV_KIND_RASTER;
  description.bitsPerPixel = choice % 4 == 1 ? 8 : 24;
  if (choice % 8 == 6) description.bitsPerPixel = 0;    // gray mode
  if (choice % 16 == 15) description.bitsPerPixel = 8;  // a dual-plane device described with 8 bits
  const uint16_t resolutions[] = {360, 720, 600, 1, 7, 1440};
  description.resolutionA = resolutions[input.Byte() % 6];
  description.resolutionB = resolutions[input.Byte() % 6];
  description.width = 1u + input.Byte() % 96;
  description.height = 1u + input.Byte() % 64;
  const bool dual = choice % 4 == 3;
  // A dual-plane device clears three bytes a pixel even if another depth is described.
  const bool color = dual || description.kind == QNV_KIND_SCALED || description.bitsPerPixel == 24;
  const uint32_t bytesPerPixel = color ? 3 : 1;
  band_ = std::make_unique<Block>(
      std::vector<uint8_t>(((description.width * bytesPerPixel + 3) & ~3u) * description.height, 0x5A));
  if (dual) {
    tags_ = std::make_unique<Block>(std::vector<uint8_t>(((description.width + 3) & ~3u) * description.height, 1));
  }
  BandRect band;
  band.left = static_cast<int8_t>(input.Byte());
  band.top = static_cast<int8_t>(input.Byte());
  band.right = band.left + static_cast<int32_t>(description.width);
  band.bottom = band.top + static_cast<int32_t>(description.height);
  handle_ = QNVEnable(&description, &band, band_->data(), dual ? tags_->data() : nullptr);
}

FuzzDevice::~FuzzDevice() { QNVDisable(handle_); }

// Also operations and background modes that do not exist.
DRAWMODE TakeDrawMode(Input& input) {
  DRAWMODE mode;
  std::memset(&mode, 0, sizeof mode);
  mode.Rop2 = static_cast<int16_t>(input.Byte() % 18);
  mode.bkMode = static_cast<int16_t>(input.Byte() % 3);
  mode.bkColor = input.Long();
  mode.TextColor = input.Long();
  mode.TBreakExtra = static_cast<int16_t>(input.Word());
  mode.BreakErr = static_cast<int16_t>(input.Word());
  mode.BreakCount = static_cast<int16_t>(input.Word());
  mode.CharacterExtra = static_cast<int8_t>(input.Byte());
  return mode;
}

// Also styles and scales that do not exist.
PhysicalBrush TakeBrush(Input& input) {
  PhysicalBrush brush;
  std::memset(&brush, 0, sizeof brush);
  brush.style = input.Byte() % 5;
  const uint16_t depths[] = {0, 1, 8, 24};
  brush.patternDepth = depths[input.Byte() % 4];
  brush.hatchScale[0] = input.Byte() % 5;
  brush.hatchScale[1] = input.Byte() % 5;
  brush.colour = input.Long();
  for (uint32_t& cell : brush.cells) {
    const uint8_t byte = input.Byte();
    cell = (byte & 1 ? 0xFF000000u : 0u) | (byte & 2 ? 0xFFFFFFu : byte * 0x010203u);
  }
  return brush;
}

}  // namespace qnv::fuzz
