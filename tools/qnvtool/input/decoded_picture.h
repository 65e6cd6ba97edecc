// Pictures whose formats are decoded from the first row to the last. They are decoded as a whole when the first row is
// needed, into a RowStore, so that rows can then be had in any order and the page may need them again.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/input/orientation.h"
#include "qnvtool/input/picture_file.h"
#include "qnvtool/input/row_store.h"

namespace qnv::tool {

class DecodedPicture : public PictureFile {
 protected:
  DecodedPicture(Input file, NoteSink notes) : file_(std::move(file)), notes_(std::move(notes)) {}

  // Fills all rows, from the top row to the bottom one. Damaged rows are filled with white. May add colors to `form`.
  virtual void Decode(RowStore& rows) const = 0;

  const std::string& name() const { return file_->name(); }
  const InputFile& file() const { return *file_; }
  const Input& input() const { return file_; }
  void Note(const std::string& note) const;

  // Fills the rows from `first` on with white and says so. `reason` follows after a colon unless it is empty.
  void FillRest(RowStore& rows, int first, const std::string& reason) const;

  DibForm form_;

 private:
  std::shared_ptr<PictureRows> OpenRows() const override;

  const Input file_;
  const NoteSink notes_;
};

// A picture whose file says how it is turned when it is shown.
class TurnedPicture : public DecodedPicture {
 protected:
  using DecodedPicture::DecodedPicture;

  // Sets the sides as they are shown, from the members below; the resolutions change places with the sides.
  void TurnSides();

  Orientation orientation_;
  int fileWidth_ = 0;
  int fileHeight_ = 0;
};

// Says that rows are white because the file does not hold them.
std::string MissingRowsNote(int missing, int rows, const std::string& reason);

}  // namespace qnv::tool
