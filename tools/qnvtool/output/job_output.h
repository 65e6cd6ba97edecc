// Everything that a job writes: for each page its picture and, where they are wanted, its tag plane and the overlay of
// both, in files of their own or in one file for all pages.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qnvtool/base/workers.h"
#include "qnvtool/output/output_names.h"
#include "qnvtool/output/page_document.h"
#include "qnvtool/output/picture_writer.h"
#include "qnvtool/paint/band_printer.h"
#include "qnvtool/paint/device_choice.h"

namespace qnv::tool {

// The writers that need libraries of the system. A program passes those that it is built with.
struct OutputParts {
  std::unique_ptr<PictureWriter> (*createPng)(Workers&, const std::string& path, const PictureForm&) = nullptr;
  // `pages`: of the job.
  std::unique_ptr<PageDocument> (*createDocument)(PictureFormat, const std::string& path, int pages,
                                                  Workers&) = nullptr;
  std::vector<PictureFormat> documents = {};  // that createDocument makes; empty: all there are

  bool CanWrite(PictureFormat format) const;
};

class JobOutput {
 public:
  // `format`: of all files; empty: as the names say. `compression`: level in the formats that have levels, or
  // kDefaultCompression. Everything named must outlive the object. Throws ToolError (usage) for names, formats and
  // levels that do not fit together.
  JobOutput(const PageNames& wanted, const std::string& format, const DeviceChoice& device, const OutputParts& parts,
            int compression, Workers& workers);
  ~JobOutput();
  JobOutput(const JobOutput&) = delete;
  JobOutput& operator=(const JobOutput&) = delete;

  // Names the files of all pages. Throws ToolError (usage) when they do not fit into the format.
  void Name(int pages);
  const std::vector<PageNames>& names() const { return names_; }

  // The next page, with a picture of this size. Throws ToolError (cannot write), as all of these.
  void StartPage(const Page& page, int width, int height);
  void Write(const BandView& band);
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
  void WriteOverlay(const BandView& band);

  const DeviceChoice& device_;
  const OutputParts& parts_;
  const int compression_;
  Workers& workers_;
  Kind picture_;
  Kind tags_;
  Kind overlay_;
  std::vector<PageNames> names_;
  std::size_t next_ = 0;  // page
  std::size_t width_ = 0;
  std::vector<uint8_t> tinted_;
};

}  // namespace qnv::tool
