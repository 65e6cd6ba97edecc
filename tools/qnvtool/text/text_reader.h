// Reads a text line by line, holding a block of bytes and a line of it at a time.
#pragma once

#include <cstdint>
#include <string>

#include "qnvtool/text/text_decoder.h"

namespace qnv::tool {

// Reads up to `capacity` bytes of an input and returns how many; 0 at its end.
using ByteSource = std::function<std::size_t(uint8_t* to, std::size_t capacity)>;

// A line of a text, or a part of one.
struct TextPiece {
  enum class End {
    kLine,      // LF, CR LF, CR, NEL, U+2028 or U+2029, or the end of the text
    kFormFeed,  // with the line end that may follow it
    kBound,     // the line goes on in the next piece
  };
  std::u32string text;  // with tabs, without other control characters and the sequences that color terminals
  int64_t line = 0;     // number of the line that the piece belongs to, from 1
  End end = End::kLine;
};

class TextReader {
 public:
  // Longer lines come in pieces of this many characters.
  static constexpr std::size_t kMaxPiece = std::size_t{1} << 16;

  // Detects the encoding when `decoder` is null. `name` is for messages. Throws ToolError (bad input) for bytes that
  // are no text.
  TextReader(ByteSource source, std::unique_ptr<TextDecoder> decoder, std::string name);

  // Reads the next piece; false at the end.
  bool Next(TextPiece& piece);

  // Faulty sequences so far, which are shown as U+FFFD, and the line of the first.
  int64_t invalid() const { return invalid_; }
  int64_t firstInvalidLine() const { return firstInvalidLine_; }

 private:
  // The last character, where the next one may belong to it: CR LF is one line end, and a line end behind a form feed
  // is no empty line.
  enum class After { kOther, kReturn, kFormFeed };
  // Where in a control sequence of terminals, ESC [ parameters letter, the last character was.
  enum class Sequence { kNone, kEscape, kParameters };

  bool Fill();
  bool IsInSequence(char32_t c);

  ByteSource source_;
  std::unique_ptr<TextDecoder> decoder_;
  std::string name_;
  Bytes block_;
  std::u32string decoded_;
  std::size_t at_ = 0;  // in decoded_
  bool started_ = false;
  bool ended_ = false;
  After after_ = After::kOther;
  Sequence sequence_ = Sequence::kNone;
  int64_t line_ = 1;
  int64_t invalid_ = 0;
  int64_t firstInvalidLine_ = 0;
};

}  // namespace qnv::tool
