// Pictures in files: what they are is asked first, their rows are read when a band of a page needs them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "qnvtool/base/note_sink.h"
#include "qnvtool/input/dib.h"
#include "qnvtool/input/input_file.h"

namespace qnv::tool {

// Some rows of a picture as a bitmap of their own.
struct DibWindow {
  const uint8_t* info = nullptr;  // BITMAPINFOHEADER with table or masks; biHeight is `rows`, in one of the two orders
  const uint8_t* bits = nullptr;
  int top = 0;  // of the window in the picture; rows count from the top
  int rows = 0;
};

// Gives out the rows of one picture.
class PictureRows {
 public:
  PictureRows() = default;
  virtual ~PictureRows() = default;
  PictureRows(const PictureRows&) = delete;
  PictureRows& operator=(const PictureRows&) = delete;

  // A window with at least the rows [top, top + count), which are rows of the picture. Valid until the next call.
  // Throws ToolError when the file cannot be read; rows that are missing or damaged are white instead.
  virtual DibWindow Window(int top, int count) = 0;
};

// A picture whose headers were read and checked. Not for several threads at once.
class PictureFile {
 public:
  virtual ~PictureFile() = default;
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

  int width() const { return width_; }    // pixels, 1..kMaxDibSide
  int height() const { return height_; }  // rows, 1..kMaxDibSide
  // Pixels per metre as the file says, 0 when it does not.
  int xPixelsPerMetre() const { return xPixelsPerMetre_; }
  int yPixelsPerMetre() const { return yPixelsPerMetre_; }

  // The rows. They are decoded once for all who use them at the same time.
  std::shared_ptr<PictureRows> Rows() const;

 protected:
  PictureFile() = default;
  virtual std::shared_ptr<PictureRows> OpenRows() const = 0;

  int width_ = 0;
  int height_ = 0;
  int xPixelsPerMetre_ = 0;
  int yPixelsPerMetre_ = 0;

 private:
  mutable std::weak_ptr<PictureRows> rows_;
};

using PicturePtr = std::shared_ptr<const PictureFile>;

// The pictures of one file, most often a single one.
class PicturePages {
 public:
  PicturePages() = default;
  virtual ~PicturePages() = default;
  PicturePages(const PicturePages&) = delete;
  PicturePages& operator=(const PicturePages&) = delete;

  virtual int count() const = 0;
  // Reads the headers of a picture, index 0..count() - 1. Throws ToolError (bad input).
  virtual PicturePtr Open(int index) const = 0;
};

// The file's only picture.
std::unique_ptr<PicturePages> SinglePicture(PicturePtr picture);

// Opens files of one format: reads and checks the headers. Throws ToolError (bad input).
using OpenPicturesOf = std::unique_ptr<PicturePages> (*)(const Input& file, const NoteSink& notes);

// The formats for whose files a program needs libraries of the system. Each may be absent.
struct PictureDecoders {
  OpenPicturesOf png = nullptr;
  OpenPicturesOf jpeg = nullptr;
  OpenPicturesOf tiff = nullptr;
};

// Opens a picture of any format, known by its first bytes. Throws ToolError (bad input), also for files that are no
// pictures; the message says what they are.
std::unique_ptr<PicturePages> OpenPictures(const Input& file, const PictureDecoders& decoders, const NoteSink& notes);

// Throws ToolError (bad input) unless both sides are 1..kMaxDibSide.
void CheckPictureSize(const std::string& name, uint64_t width, uint64_t height);

}  // namespace qnv::tool
