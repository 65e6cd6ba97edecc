// PNG files.
#pragma once

#include <memory>
#include <string>

#include "picture_writer.h"

namespace qnv::tool {

// The resolution is recorded; tags are shown through the colors of the legend.
std::unique_ptr<PictureWriter> CreatePngFile(const std::string& path, const PictureForm& form);

}  // namespace qnv::tool
