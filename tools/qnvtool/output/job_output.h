// Everything that a job writes: for each page its picture and, where they are wanted, its tag plane and the overlay of
// both, in files of their own or in one file for all pages.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qnvtool/output/output_names.h"
#include "qnvtool/output/page_document.h"
#include "qnvtool/output/picture_writer.h"
#include "qnvtool/output/row_encoder.h"
#include "qnvtool/paint/band_printer.h"
#include "qnvtool/paint/device_choice.h"

namespace qnv::tool {

// The writers that need libraries of the system. A program passes those that it is built with.
struct OutputParts {
  std::unique_ptr<PictureWriter> (*createPng)(const std::string& path, const PictureForm&) = nullptr;
  // `pages`: of the job.
  std::unique_ptr<PageDocument> (*createDocument)(PictureFormat, const std::string& path, int pages) = nullptr;
  // For the rows of these files.
  std::unique_ptr<RowEncoder> (*createEncoder)(PictureFormat, const PictureForm&) = nullptr;
  std::vector<PictureFormat> documents = {};  // that createDocument makes; empty: all there are

  bool CanWrite(PictureFormat format) const;
};

// A band as the files take it.
struct EncodedBand {
  EncodedRows picture;
  EncodedRows tags;
  EncodedRows overlay;
};

// Encodes the bands of pages of one size, for all files that they go to. For any thread, and several at a time.
class BandEncoder {
 public:
  // Null: not wanted.
  BandEncoder(std::unique_ptr<RowEncoder> picture, std::unique_ptr<RowEncoder> tags,
              std::unique_ptr<RowEncoder> overlay);

  // As of RowEncoder.
  int unit() const { return unit_; }
  int rowsAbove() const { return rowsAbove_; }
  EncodedBand Encode(const BandView& band) const;

 private:
  EncodedRows EncodeOverlay(const BandView& band) const;

  const std::unique_ptr<RowEncoder> picture_;
  const std::unique_ptr<RowEncoder> tags_;
  const std::unique_ptr<RowEncoder> overlay_;
  int unit_ = 1;
  int rowsAbove_ = 0;
};

class JobOutput {
 public:
  // `format`: of all files; empty: as the names say. `compression`: level in the formats that have levels, or
  // kDefaultCompression. Everything named must outlive the object. Throws ToolError (usage) for names, formats and
  // levels that do not fit together.
  JobOutput(const PageNames& wanted, const std::string& format, const DeviceChoice& device, const OutputParts& parts,
            int compression);
  ~JobOutput();
  JobOutput(const JobOutput&) = delete;
  JobOutput& operator=(const JobOutput&) = delete;

  // Names the files of all pages. Throws ToolError (usage) when they do not fit into the format.
  void Name(int pages);
  const std::vector<PageNames>& names() const { return names_; }

  // For the bands of pages with pictures of this size.
  std::shared_ptr<const BandEncoder> EncoderFor(const PictureSize& size) const;

  // The next page, with a picture of this size. Throws ToolError (cannot write), as all of these.
  void StartPage(const Page& page, const PictureSize& size);
  void Write(const EncodedBand& band);
  void FinishPage();

  // Ends the files that hold all pages.
  void Finish();

 private:
  // One kind of picture.
  struct Kind {
    std::string wanted;  // name; empty: not wanted
    PictureFormat format = PictureFormat::kPng;
    std::unique_ptr<PageDocument> document;
    std::unique_ptr<PictureWriter> picture;  // of the present page
  };

  void Choose(Kind& kind, const std::string& path, const std::string& format, bool gray) const;
  void Start(Kind& kind, const std::string& path, const PictureForm& form, const std::vector<PageWord>& words) const;
  PictureForm FormOf(const PictureSize& size) const;

  const DeviceChoice& device_;
  const OutputParts& parts_;
  const int compression_;
  Kind picture_;
  Kind tags_;
  Kind overlay_;
  std::vector<PageNames> names_;
  std::size_t next_ = 0;  // page
};

}  // namespace qnv::tool
