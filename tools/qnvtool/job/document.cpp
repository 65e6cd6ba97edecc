// Opens files by what they hold: pictures, figures, text.
#include "qnvtool/job/document.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/file_kind.h"
#include "qnvtool/layout/figures.h"
#include "qnvtool/layout/picture_layout.h"
#include "qnvtool/layout/text_document.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxFigureFile = std::size_t{64} << 20;  // bytes; such a file is held as a whole

// Pages that are laid out at once.
class LaidOutPages final : public Document {
 public:
  explicit LaidOutPages(std::vector<Page> pages) : pages_(std::move(pages)) {}

  bool Next(Page& page) override {
    if (next_ == pages_.size()) return false;
    page = std::move(pages_[next_++]);
    return true;
  }

 private:
  std::vector<Page> pages_;
  std::size_t next_ = 0;
};

// A page for each picture of a file.
class PictureDocument final : public Document {
 public:
  PictureDocument(std::unique_ptr<PicturePages> pictures, const PrintOptions& options, const PageSetup& setup,
                  const PageSetup& turned, std::string name, NoteSink note)
      : pictures_(std::move(pictures)),
        options_(options),
        setup_(setup),
        turned_(turned),
        name_(std::move(name)),
        note_(std::move(note)) {}

  bool Next(Page& page) override {
    if (next_ == pictures_->count()) return false;
    PicturePtr picture = pictures_->Open(next_);
    // In landscape when the other is portrait, or the other way round.
    const double onItsSide = (PictureAspect(*picture) - 1) * (setup_.sheet.height - setup_.sheet.width);
    const bool turn = options_.orientation == PageOrientation::kAuto && options_.pagesOnSheet == 1 && onItsSide < 0;
    page = LayOutPicture(std::move(picture), options_.pictures, turn ? turned_ : setup_, name_, next_ + 1, note_);
    ++next_;
    return true;
  }

 private:
  const std::unique_ptr<PicturePages> pictures_;
  const PrintOptions& options_;
  const PageSetup& setup_;
  const PageSetup& turned_;
  const std::string name_;
  const NoteSink note_;
  int next_ = 0;
};

// A text, read piece by piece.
class TextPages final : public Document {
 public:
  TextPages(const Input& file, const TextOptions& options, const PageSetup& setup, NoteSink note)
      : document_(
            [file, at = uint64_t{0}](uint8_t* to, std::size_t capacity) mutable {
              const std::size_t count = file->Read(at, to, capacity);
              at += count;
              return count;
            },
            options, setup, file->name(), std::move(note)) {}

  bool Next(Page& page) override { return document_.Next(page); }

 private:
  TextDocument document_;
};

// What a file is to be printed as. Content counts; only figure files, which are texts, are known by their name.
FileType TypeOf(const InputFile& file) {
  const FileKind kind = KindOf(file.Head(kHeadBytes));
  if (kind.isPicture()) return FileType::kPicture;
  if (kind.form == FileKind::Form::kForeign) {
    throw ToolError(ExitCode::kBadInput, ForeignFileMessage(file.name(), kind));
  }
  std::string extension = FileNameOf(PathOf(file.name()).extension());
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension == ".fig" ? FileType::kFigures : FileType::kText;
}

}  // namespace

DocumentOpener::DocumentOpener(const PrintOptions& options, const PictureDecoders& decoders, const PageSetup& setup,
                               std::function<void(const std::string&, const std::string&)> note)
    : options_(options), decoders_(decoders), setup_(setup), turned_(setup), note_(std::move(note)) {
  Sheet& sheet = turned_.sheet;
  std::swap(sheet.width, sheet.height);
  sheet.content = {sheet.content.top, sheet.content.left, sheet.content.bottom, sheet.content.right};
}

Input DocumentOpener::OpenFile(const std::string& path) {
  if (const auto found = kept_.find(path); found != kept_.end()) return found->second;
  Input file = OpenInput(path);
  std::error_code error;
  if (path == "-" || !std::filesystem::is_regular_file(PathOf(path), error)) kept_[path] = file;
  return file;
}

NoteSink DocumentOpener::NotesOf(const std::string& name) const {
  return [this, name](const std::string& remark) { note_(name, remark); };
}

std::unique_ptr<Document> DocumentOpener::OpenFigures(const Input& file) {
  const auto openImage = [this](const std::string& path) {
    references_.push_back(path);
    return OpenPictures(OpenFile(path), decoders_, NotesOf(path))->Open(0);
  };
  return std::make_unique<LaidOutPages>(
      LayOutFigures(file->All(kMaxFigureFile, "a figure file"), setup_, file->name(), openImage));
}

std::unique_ptr<Document> DocumentOpener::Open(const std::string& argument) {
  const Input file = OpenFile(argument);
  const std::string name = FileNameOf(PathOf(file->name()).filename());
  switch (options_.type == FileType::kAuto ? TypeOf(*file) : options_.type) {
    case FileType::kPicture:
      return std::make_unique<PictureDocument>(OpenPictures(file, decoders_, NotesOf(file->name())), options_, setup_,
                                               turned_, name, NotesOf(file->name()));
    case FileType::kFigures: return OpenFigures(file);
    default: return std::make_unique<TextPages>(file, options_.text, setup_, NotesOf(file->name()));
  }
}

}  // namespace qnv::tool
