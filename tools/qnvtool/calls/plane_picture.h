// Writes the band of a replayed device as a picture.
#pragma once

#include <string>

#include "calls/player.h"
#include "qnvtool/calls/call_commands.h"

namespace qnv::tool {

// Writes the part of a device's memory that its band rectangle names. tags: the tag plane instead of the band.
// Nothing is written for an empty band. Throws ToolError (cannot write).
void WriteDevicePicture(const calls::PlayedDevice& device, bool tags, const std::string& path, const CallParts& parts);

// Rows and columns of the memory that the band rectangle names and the description holds.
struct PlaneSize {
  int width = 0, height = 0;
};
PlaneSize SizeOf(const calls::PlayedDevice& device);

PictureForm FormOf(const calls::PlayedDevice& device, bool tags, const PlaneSize& size);

}  // namespace qnv::tool
