// Decodes the bytes of a text, piece by piece.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// Stands for bytes that are not well-formed, one for each faulty sequence. It is no Unicode character, so it differs
// from a U+FFFD of the text itself.
inline constexpr char32_t kInvalid = 0x110000;

// Turns bytes into characters. A sequence may be cut anywhere between two calls.
class TextDecoder {
 public:
  virtual ~TextDecoder() = default;
  // Appends the characters of the next bytes to `out`. `last`: no bytes follow; a sequence that is cut off is invalid.
  virtual void Decode(const uint8_t* bytes, std::size_t size, bool last, std::u32string& out) = 0;
};

// Opens a decoder by the name of an encoding; null for a name that it does not know.
using OpenDecoder = std::function<std::unique_ptr<TextDecoder>(const std::string& encoding)>;

// Decoders for "UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE" and "ISO-8859-1"; case and hyphens in names do
// not matter. Null for any other name.
std::unique_ptr<TextDecoder> OpenBuiltInDecoder(const std::string& encoding);

// The encoding of a text that begins with these bytes, as a name for OpenBuiltInDecoder: by its byte order mark, or
// UTF-16 when zero bytes are frequent as in texts and only at odd offsets or only at even ones, or else UTF-8. Throws
// ToolError (bad input), naming `name` and the byte, when zero bytes show that this is no text.
std::string DetectEncoding(const uint8_t* bytes, std::size_t size, const std::string& name);

// A name or another short string. Bytes that are not UTF-8 become U+FFFD, control characters are dropped.
std::u32string DecodeUtf8(const std::string& bytes);

}  // namespace qnv::tool
