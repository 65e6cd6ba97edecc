// Feeds the layout with blocks until a page is full.
#include "qnvtool/layout/text_document.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

bool IsVerbatim(const TextOptions& options, const std::string& path) {
  if (options.setting != TextOptions::Setting::kByName) return options.setting == TextOptions::Setting::kVerbatim;
  std::string extension = FileNameOf(PathOf(path).extension());
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension != ".txt" && extension != ".text" && extension != ".md" && extension != ".markdown";
}

// Null when the encoding is to be detected.
std::unique_ptr<TextDecoder> DecoderOf(const TextOptions& options) {
  if (options.encoding.empty()) return nullptr;
  std::unique_ptr<TextDecoder> decoder = OpenBuiltInDecoder(options.encoding);
  if (decoder == nullptr && options.openDecoder != nullptr) decoder = options.openDecoder(options.encoding);
  if (decoder != nullptr) return decoder;
  throw ToolError(ExitCode::kUsage, fmt::format("--encoding {}: is unknown; {}", options.encoding,
                                                options.openDecoder != nullptr
                                                    ? "'iconv -l' lists the names"
                                                    : "this program knows UTF-8, UTF-16LE, UTF-16BE, UTF-32LE, "
                                                      "UTF-32BE and ISO-8859-1"));
}

std::string FileName(const std::string& path) { return FileNameOf(PathOf(path).filename()); }

}  // namespace

void CheckEncoding(const TextOptions& options) { DecoderOf(options); }

TextDocument::TextDocument(ByteSource source, const TextOptions& options, const PageSetup& setup,
                           const std::string& path, NoteSink note)
    : note_(std::move(note)),
      reader_(std::move(source), DecoderOf(options), path),
      parser_(IsVerbatim(options, path)),
      layout_(setup, FileName(path), options.lineNumbers && IsVerbatim(options, path)) {}

bool TextDocument::Next(Page& page) {
  while (!layout_.Next(page)) {
    if (finished_) return false;
    TextBlock block;
    if (parser_.Next(block)) {
      layout_.Set(block);
      continue;
    }
    TextPiece piece;
    if (reader_.Next(piece)) {
      parser_.Add(piece);
      continue;
    }
    finished_ = true;
    parser_.Finish();
    while (parser_.Next(block)) layout_.Set(block);
    layout_.Finish();
    if (reader_.invalid() == 0) continue;
    note_(fmt::format("{} {} shown as U+FFFD, the first in line {}; --encoding says what the text is in",
                      reader_.invalid(),
                      reader_.invalid() == 1 ? "sequence of bytes is no character and is"
                                             : "sequences of bytes are no characters and are",
                      reader_.firstInvalidLine()));
  }
  return true;
}

}  // namespace qnv::tool
