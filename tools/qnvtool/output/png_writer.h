// PNG files.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/output/picture_writer.h"

namespace qnv::tool {

// Creates a PNG file that records the resolution; a tag plane is shown in the colors of the legend. Its rows come from
// CreateDeflateEncoder.
std::unique_ptr<PictureWriter> CreatePngFile(const std::string& path, const PictureForm& form);

// Writes a picture that is in memory, on all cores.
void WritePngFile(const std::string& path, const PictureForm& form, const uint8_t* first, std::size_t stride);

}  // namespace qnv::tool
