// PNG files.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/base/workers.h"
#include "qnvtool/output/picture_writer.h"

namespace qnv::tool {

// Creates a PNG file that records the resolution; a tag plane is shown in the colors of the legend. `workers`, which
// must outlive the writer, compress the picture.
std::unique_ptr<PictureWriter> CreatePngFileWith(Workers& workers, const std::string& path, const PictureForm& form);

// The same on all cores.
std::unique_ptr<PictureWriter> CreatePngFile(const std::string& path, const PictureForm& form);

}  // namespace qnv::tool
