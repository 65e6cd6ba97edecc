// Chooses the reader of a picture by its first bytes.
#include <fmt/core.h>

#include <utility>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/bmp_reader.h"
#include "qnvtool/input/file_kind.h"
#include "qnvtool/input/picture_file.h"

namespace qnv::tool {
namespace {

class SinglePage final : public PicturePages {
 public:
  explicit SinglePage(PicturePtr picture) : picture_(std::move(picture)) {}
  int count() const override { return 1; }
  PicturePtr Open(int) const override { return picture_; }

 private:
  const PicturePtr picture_;
};

}  // namespace

std::shared_ptr<PictureRows> PictureFile::Rows() const {
  std::shared_ptr<PictureRows> rows = rows_.lock();
  if (rows == nullptr) {
    rows = OpenRows();
    rows_ = rows;
  }
  return rows;
}

std::unique_ptr<PicturePages> SinglePicture(PicturePtr picture) {
  return std::make_unique<SinglePage>(std::move(picture));
}

void CheckPictureSize(const std::string& name, uint64_t width, uint64_t height) {
  if (width >= 1 && width <= kMaxDibSide && height >= 1 && height <= kMaxDibSide) return;
  throw ToolError(ExitCode::kBadInput, fmt::format("{}: has {} x {} pixels; pictures of 1 to {} on each side can be "
                                                   "printed",
                                                   name, width, height, kMaxDibSide));
}

std::unique_ptr<PicturePages> OpenPictures(const Input& file, const PictureDecoders& decoders, const NoteSink& notes) {
  const FileKind kind = KindOf(file->Head(kHeadBytes));
  const auto by = [&](OpenPicturesOf open) {
    if (open != nullptr) return open(file, notes);
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: is {}, which this program was built without a reader for",
                                                     file->name(), kind.what));
  };
  switch (kind.form) {
    case FileKind::Form::kBmp: return SinglePicture(OpenBmp(file, decoders, notes));
    case FileKind::Form::kPng: return by(decoders.png);
    case FileKind::Form::kJpeg: return by(decoders.jpeg);
    case FileKind::Form::kTiff: return by(decoders.tiff);
    case FileKind::Form::kForeign: throw ToolError(ExitCode::kBadInput, ForeignFileMessage(file->name(), kind));
    case FileKind::Form::kUnknown: break;
  }
  throw ToolError(ExitCode::kBadInput,
                  fmt::format("{}: is no picture that can be printed (BMP, PNG, JPEG and TIFF can)", file->name()));
}

}  // namespace qnv::tool
