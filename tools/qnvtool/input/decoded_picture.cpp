// Decodes pictures into row stores, and reads windows back from there.
#include "qnvtool/input/decoded_picture.h"

#include <fmt/core.h>

#include <utility>

namespace qnv::tool {
namespace {

class DecodedRows final : public PictureRows {
 public:
  DecodedRows(std::unique_ptr<RowStore> store, const DibForm& form)
      : store_(std::move(store)), info_(MakeDibInfo(form, -1)) {}

  DibWindow Window(int top, int count) override {
    if (count > rows_ || top < top_ || top + count > top_ + rows_) {
      bits_.resize(store_->stride() * static_cast<std::size_t>(count));
      store_->Read(top, count, bits_.data());
      top_ = top;
      rows_ = count;
      SetDibRows(info_, -count);
    }
    return {info_.data(), bits_.data(), top_, rows_};
  }

 private:
  const std::unique_ptr<RowStore> store_;
  Bytes info_;
  Bytes bits_;
  int top_ = 0;
  int rows_ = 0;
};

}  // namespace

std::shared_ptr<PictureRows> DecodedPicture::OpenRows() const {
  auto store = std::make_unique<RowStore>(name(), height(), form_.stride());
  Decode(*store);
  return std::make_shared<DecodedRows>(std::move(store), form_);
}

void DecodedPicture::Note(const std::string& note) const {
  if (notes_) notes_(note);
}

void DecodedPicture::FillRest(RowStore& rows, int first, const std::string& reason) const {
  const Bytes white = WhiteRow(form_);
  for (int row = first; row < rows.rows(); ++row) rows.Write(row, white.data());
  Note(MissingRowsNote(rows.rows() - first, rows.rows(), reason));
}

std::string MissingRowsNote(int missing, int rows, const std::string& reason) {
  return fmt::format("{} of {} rows are missing or damaged and stay white{}{}", missing, rows,
                     reason.empty() ? "" : ": ", reason);
}

void TurnedPicture::TurnSides() {
  width_ = fileWidth_;
  height_ = fileHeight_;
  if (orientation_.swapsSides()) {
    std::swap(width_, height_);
    std::swap(xPixelsPerMetre_, yPixelsPerMetre_);
  }
  form_.width = width_;
}

}  // namespace qnv::tool
