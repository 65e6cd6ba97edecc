// Holds the decoded rows of a picture, in memory or, when there are many, in a temporary file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "qnvtool/base/file_bytes.h"
#include "qnvtool/base/temporary_file.h"

namespace qnv::tool {

class RowStore {
 public:
  // `rows` rows of `stride` bytes, at first of any content. `name` is the picture's, for messages.
  RowStore(std::string name, int rows, std::size_t stride);

  std::size_t stride() const { return stride_; }
  int rows() const { return rows_; }

  // Stores a whole row, or `count` bytes from byte `column` of a row on. Throws ToolError (cannot write), and
  // Interrupted now and then.
  void Write(int row, const uint8_t* from);
  void Write(int row, std::size_t column, const uint8_t* from, std::size_t count);

  // Copies `count` rows from `top` on.
  void Read(int top, int count, uint8_t* to) const;

 private:
  uint64_t Place(int row) const { return static_cast<uint64_t>(row) * stride_; }

  const int rows_;
  const std::size_t stride_;
  Bytes memory_;  // empty when the rows are in the file
  std::unique_ptr<TemporaryFile> file_;
  std::size_t writes_ = 0;
};

}  // namespace qnv::tool
