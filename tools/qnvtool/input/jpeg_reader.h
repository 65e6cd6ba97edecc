// Reads JPEG files with libjpeg-turbo.
#pragma once

#include "qnvtool/input/picture_file.h"

namespace qnv::tool {

// Opens a JPEG file: baseline and progressive, gray, RGB, YCbCr, CMYK and YCCK. It is turned as its EXIF data says.
// Gray pictures stay gray, with 8 bits; CMYK is converted without a color profile. Rows behind a break in the data are
// white. A progressive picture needs its coefficients in memory: above kMaxCoefficientBytes it is refused. Throws
// ToolError (bad input).
std::unique_ptr<PicturePages> OpenJpeg(const Input& file, const NoteSink& notes);

inline constexpr uint64_t kMaxCoefficientBytes = uint64_t{128} << 20;

}  // namespace qnv::tool
