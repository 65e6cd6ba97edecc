// Files to print as streams of pages.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "qnvtool/input/picture_file.h"
#include "qnvtool/job/print_options.h"
#include "qnvtool/layout/page_setup.h"

namespace qnv::tool {

// A file that is laid out page by page. Memory does not grow with the number of pages.
class Document {
 public:
  Document() = default;
  virtual ~Document() = default;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // Lays out the next page; false behind the last. Throws ToolError.
  virtual bool Next(Page& page) = 0;
};

// Opens the documents of a job. Files are opened again for every pass; what can be read only once, such as standard
// input, is read once and kept.
class DocumentOpener {
 public:
  // `note` gets lines for the user: a file's name and the remark. Everything named must outlive the opener and its
  // documents.
  DocumentOpener(const PrintOptions& options, const PictureDecoders& decoders, const PageSetup& setup,
                 std::function<void(const std::string& name, const std::string& remark)> note);

  // Reads the headers. Throws ToolError (bad input).
  std::unique_ptr<Document> Open(const std::string& argument);

  // The files that documents have referred to so far: the images of figure files.
  const std::vector<std::string>& references() const { return references_; }

 private:
  Input OpenFile(const std::string& path);
  NoteSink NotesOf(const std::string& name) const;
  std::unique_ptr<Document> OpenFigures(const Input& file);

  const PrintOptions& options_;
  const PictureDecoders& decoders_;
  const PageSetup& setup_;
  PageSetup turned_;  // the same with the sheet on its other side
  const std::function<void(const std::string&, const std::string&)> note_;
  std::map<std::string, Input> kept_;  // by path
  std::vector<std::string> references_;
};

}  // namespace qnv::tool
