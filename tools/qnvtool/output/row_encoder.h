// Turns rows of a picture into what a file holds of them. Parts of a picture are encoded by several threads; the file
// takes them in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qnvtool/base/workers.h"
#include "qnvtool/output/picture_writer.h"

namespace qnv::tool {

// Some rows of a picture as a device has them. As many rows as the encoder asks for are above them in memory, as far as
// the picture has them.
struct PictureRowsView {
  const uint8_t* first = nullptr;
  std::size_t stride = 0;
  int top = 0;  // of the first row in the picture
  int rows = 0;

  const uint8_t* Row(int row) const { return first + static_cast<std::ptrdiff_t>(stride) * row; }
};

// The rows of `form` are encoded in pieces of unit() rows, so that the bytes depend on nothing but the picture.
class RowEncoder {
 public:
  explicit RowEncoder(const PictureForm& form) : form_(form) {}
  virtual ~RowEncoder() = default;
  RowEncoder(const RowEncoder&) = delete;
  RowEncoder& operator=(const RowEncoder&) = delete;

  // Views begin at a multiple of this number of rows, and end at one or with the picture. A power of two, so that the
  // larger one of two encoders' units suits both.
  virtual int unit() const = 0;
  // Rows above a view that are read, too.
  virtual int rowsAbove() const = 0;
  // For any thread, and several at a time.
  virtual EncodedRows Encode(const PictureRowsView& view) const = 0;

  const PictureForm& form() const { return form_; }

 protected:
  const PictureForm form_;
};

// For the formats that take rows as they are: in the byte order of ConvertRow.
std::unique_ptr<RowEncoder> CreatePlainEncoder(const PictureForm& form);

// Encodes a whole picture on several threads and writes it to `file`, which it finishes. Throws what `file` throws.
void WritePicture(Workers& workers, const RowEncoder& encoder, const uint8_t* first, std::size_t stride,
                  PictureWriter& file);

// Writes a picture that is in memory to a PPM or PGM file.
void WritePnmFile(const std::string& path, const PictureForm& form, const uint8_t* first, std::size_t stride);

}  // namespace qnv::tool
