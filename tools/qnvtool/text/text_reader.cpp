// Splits decoded text at line ends and form feeds.
#include "qnvtool/text/text_reader.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kBlock = 1 << 16;     // bytes read at a time
constexpr std::size_t kExamined = 1 << 12;  // bytes that the encoding is detected from
constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr char32_t kEscape = 0x1B;
constexpr char32_t kReplacement = 0xFFFD;

bool IsLineEnd(char32_t c) { return c == '\n' || c == '\r' || c == 0x85 || c == 0x2028 || c == 0x2029; }

// Other control characters are dropped.
bool IsKept(char32_t c) { return c >= 0x20 ? c < 0x7F || c > 0x9F : c == '\t'; }

}  // namespace

TextReader::TextReader(ByteSource source, std::unique_ptr<TextDecoder> decoder, std::string name)
    : source_(std::move(source)), decoder_(std::move(decoder)), name_(std::move(name)), block_(kBlock) {}

// Decodes the next block. False at the end of the input.
bool TextReader::Fill() {
  decoded_.clear();
  at_ = 0;
  while (decoded_.empty() && !ended_) {
    std::size_t size = source_(block_.data(), block_.size());
    if (!started_) {
      // A pipe may give a few bytes at a time; the encoding is detected from as many as there are.
      while (size != 0 && size < kExamined) {
        const std::size_t more = source_(block_.data() + size, block_.size() - size);
        if (more == 0) break;
        size += more;
      }
      if (decoder_ == nullptr) {
        decoder_ = OpenBuiltInDecoder(DetectEncoding(block_.data(), std::min(size, kExamined), name_));
      }
    }
    ended_ = size == 0;
    decoder_->Decode(block_.data(), size, ended_, decoded_);
    if (!started_ && !decoded_.empty() && decoded_[0] == kByteOrderMark) at_ = 1;
    started_ = true;
    if (at_ == decoded_.size()) {
      decoded_.clear();
      at_ = 0;
    }
  }
  return !decoded_.empty();
}

// Programs color what they write by control sequences, which end up in logs.
bool TextReader::IsInSequence(char32_t c) {
  const Sequence before = sequence_;
  sequence_ = c == kEscape                                               ? Sequence::kEscape
              : before == Sequence::kEscape && c == '['                  ? Sequence::kParameters
              : before == Sequence::kParameters && c >= 0x20 && c < 0x40 ? Sequence::kParameters
                                                                         : Sequence::kNone;
  // The letter at the end belongs to the sequence too.
  return sequence_ != Sequence::kNone || (before == Sequence::kParameters && c >= 0x40 && c < 0x7F);
}

bool TextReader::Next(TextPiece& piece) {
  piece.text.clear();
  bool any = false;
  for (;;) {
    piece.line = line_;
    if (at_ == decoded_.size() && !Fill()) {
      piece.end = TextPiece::End::kLine;
      return any;
    }
    const char32_t c = decoded_[at_++];
    const After after = after_;
    after_ = After::kOther;
    if (c == '\n' && after == After::kReturn) continue;
    if (IsLineEnd(c) || c == '\f') sequence_ = Sequence::kNone;
    if (IsLineEnd(c)) {
      ++line_;
      if (c == '\r') after_ = After::kReturn;
      if (after == After::kFormFeed) continue;
      piece.end = TextPiece::End::kLine;
      return true;
    }
    if (c == '\f') {
      after_ = After::kFormFeed;
      piece.end = TextPiece::End::kFormFeed;
      return true;
    }
    any = true;
    if (c == kInvalid) {
      if (invalid_++ == 0) firstInvalidLine_ = line_;
      piece.text.push_back(kReplacement);
    } else if (!IsInSequence(c) && IsKept(c)) {
      piece.text.push_back(c);
    }
    if (piece.text.size() >= kMaxPiece) {
      piece.end = TextPiece::End::kBound;
      return true;
    }
  }
}

}  // namespace qnv::tool
