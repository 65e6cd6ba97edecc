// Compresses the rows of a picture on several threads into one zlib stream, as PNG and PDF files hold it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "qnvtool/base/workers.h"
#include "qnvtool/output/picture_writer.h"

namespace qnv::tool {

// Without a level, parts that differ little from the rows above are written as runs only, others at a fast level.
// The stream holds for each row a byte with the PNG filter "up", then the differences of the row's bytes, as ConvertRow
// makes them, from those of the row above. It depends neither on the number of threads nor on how many rows are handed
// over at a time.
class RowDeflate {
 public:
  using Piece = std::vector<uint8_t>;

  // `write` gets the pieces of the stream in order, from the thread that calls WriteRows and Finish. `path` is for
  // messages.
  RowDeflate(Workers& workers, const PictureForm& form, std::string path, std::function<void(const Piece&)> write);
  ~RowDeflate();
  RowDeflate(const RowDeflate&) = delete;
  RowDeflate& operator=(const RowDeflate&) = delete;

  // The next rows. Throws what `write` throws, and ToolError (cannot write) when there is no memory.
  void WriteRows(const uint8_t* first, std::size_t stride, int rows);

  // Ends the stream.
  void Finish();

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace qnv::tool
