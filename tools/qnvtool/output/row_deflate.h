// Compresses the rows of a picture in parts that together are one zlib stream, as PNG and PDF files hold it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "qnvtool/output/row_encoder.h"

namespace qnv::tool {

// Without a level, parts that differ little from the rows above are written as runs only, others at a fast level. The
// stream holds for each row a byte with the PNG filter "up", then the differences of the row's bytes, as ConvertRow
// makes them, from those of the row above.
std::unique_ptr<RowEncoder> CreateDeflateEncoder(const PictureForm& form);

// Joins the parts to a stream.
class ZlibStream {
 public:
  // `write` gets the pieces of the stream in order.
  explicit ZlibStream(std::function<void(const std::vector<uint8_t>&)> write);

  // The next rows, encoded by CreateDeflateEncoder.
  void Write(const EncodedRows& rows);

  // Ends the stream.
  void Finish();

 private:
  const std::function<void(const std::vector<uint8_t>&)> write_;
  uint32_t checksum_ = 1;  // Adler-32 of all that was compressed
};

}  // namespace qnv::tool
