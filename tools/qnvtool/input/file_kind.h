// Tells what a file is by its first bytes, whatever its name says.
#pragma once

#include <cstddef>
#include <string>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// As many first bytes as the table needs.
inline constexpr std::size_t kHeadBytes = 4096;

struct FileKind {
  enum class Form {
    kUnknown,  // not in the table: perhaps text
    kBmp,
    kPng,
    kJpeg,
    kTiff,
    kForeign,  // known, but nothing that can be printed
  };
  Form form = Form::kUnknown;
  const char* what = "";    // "a PDF document"
  const char* remedy = "";  // what the user can do with a foreign one

  bool isPicture() const { return form != Form::kUnknown && form != Form::kForeign; }
};

FileKind KindOf(const Bytes& head);

// The message for a file that is not what was expected: "NAME: is a zip archive: unpack it first".
std::string ForeignFileMessage(const std::string& name, const FileKind& kind);

}  // namespace qnv::tool
