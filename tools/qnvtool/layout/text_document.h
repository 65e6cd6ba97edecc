// A text file as pages: decoding, structure and layout, a page at a time.
#pragma once

#include <functional>
#include <string>

#include "qnvtool/base/note_sink.h"
#include "qnvtool/layout/text_layout.h"
#include "qnvtool/text/text_reader.h"

namespace qnv::tool {

struct TextOptions {
  enum class Setting {
    kByName,  // names that end in .txt, .text, .md or .markdown flow, others are verbatim
    kFlow,
    kVerbatim,
  };
  Setting setting = Setting::kByName;
  bool lineNumbers = false;      // of texts that are verbatim as a whole
  std::string encoding = {};     // empty: detected
  OpenDecoder openDecoder = {};  // for encodings that are not built in; may be empty
};

// Throws ToolError (usage) unless the encoding of the options can be opened.
void CheckEncoding(const TextOptions& options);

// The memory that it needs does not depend on the length of the text.
class TextDocument {
 public:
  // path: of the file, for messages and for Setting::kByName; its last part goes into the headers. The setup must
  // outlive the document.
  TextDocument(ByteSource source, const TextOptions& options, const PageSetup& setup, const std::string& path,
               NoteSink note);

  // Takes the next page; false behind the last one. Every text has at least one page. Throws ToolError (bad input) for
  // bytes that are no text.
  bool Next(Page& page);

 private:
  const NoteSink note_;
  TextReader reader_;
  TextBlockParser parser_;
  TextLayout layout_;
  bool finished_ = false;
};

}  // namespace qnv::tool
