// Stores rows of pictures.
#include "qnvtool/input/row_store.h"

#include <cstring>
#include <utility>

#include "qnvtool/base/interruption.h"

namespace qnv::tool {
namespace {

constexpr uint64_t kMaxInMemory = uint64_t{1} << 25;  // bytes; a temporary file holds more

}  // namespace

RowStore::RowStore(std::string name, int rows, std::size_t stride) : rows_(rows), stride_(stride) {
  if (Place(rows) <= kMaxInMemory) {
    memory_.resize(static_cast<std::size_t>(Place(rows)));
  } else {
    file_ = std::make_unique<TemporaryFile>(std::move(name));
  }
}

void RowStore::Write(int row, const uint8_t* from) { Write(row, 0, from, stride_); }

void RowStore::Write(int row, std::size_t column, const uint8_t* from, std::size_t count) {
  if (++writes_ % 64 == 0) ThrowIfInterrupted();
  if (file_ != nullptr) {
    file_->Write(Place(row) + column, from, count);
  } else {
    std::memcpy(memory_.data() + Place(row) + column, from, count);
  }
}

void RowStore::Read(int top, int count, uint8_t* to) const {
  const auto size = static_cast<std::size_t>(Place(count));
  if (file_ == nullptr) {
    std::memcpy(to, memory_.data() + Place(top), size);
    return;
  }
  const std::size_t got = file_->Read(Place(top), to, size);
  if (got < size) std::memset(to + got, 0, size - got);
}

}  // namespace qnv::tool
