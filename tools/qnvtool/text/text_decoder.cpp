// Decoders of the Unicode encodings and of Latin-1, which need no library, and the detection of an encoding.
#include "qnvtool/text/text_decoder.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <initializer_list>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

constexpr char32_t kMaxCharacter = 0x10FFFF;

bool IsSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

// Strict: no overlong forms, no surrogates. A faulty sequence ends before the first byte that cannot continue it, as
// the Unicode standard recommends.
class Utf8Decoder final : public TextDecoder {
 public:
  void Decode(const uint8_t* bytes, std::size_t size, bool last, std::u32string& out) override {
    const uint8_t* const end = bytes + size;
    while (bytes != end) {
      if (missing_ == 0 && *bytes < 0x80) {
        out.push_back(*bytes++);
      } else if (missing_ == 0) {
        Begin(*bytes++, out);
      } else if (*bytes >= low_ && *bytes <= high_) {
        code_ = code_ << 6 | (*bytes++ & 0x3Fu);
        low_ = 0x80;
        high_ = 0xBF;
        if (--missing_ == 0) out.push_back(code_);
      } else {
        missing_ = 0;  // the byte begins another sequence
        out.push_back(kInvalid);
      }
    }
    if (last && missing_ != 0) {
      missing_ = 0;
      out.push_back(kInvalid);
    }
  }

 private:
  // The range of the second byte excludes overlong forms, surrogates and what is beyond the last character.
  void Begin(uint8_t lead, std::u32string& out) {
    if (lead < 0xC2 || lead > 0xF4) return out.push_back(kInvalid);
    missing_ = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    code_ = lead & (0x3Fu >> missing_);
    low_ = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    high_ = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  }

  char32_t code_ = 0;
  int missing_ = 0;  // bytes until the character is complete
  uint8_t low_ = 0;  // range of the next byte
  uint8_t high_ = 0;
};

// UTF-16 and UTF-32: units of two or four bytes in either order.
template <std::size_t kSize, bool kBigEndian>
class UnitDecoder final : public TextDecoder {
 public:
  void Decode(const uint8_t* bytes, std::size_t size, bool last, std::u32string& out) override {
    for (std::size_t i = 0; i < size; ++i) {
      unit_ = kBigEndian ? unit_ << 8 | bytes[i] : unit_ | char32_t{bytes[i]} << 8 * count_;
      if (++count_ != kSize) continue;
      Unit(unit_, out);
      unit_ = 0;
      count_ = 0;
    }
    if (!last) return;
    if (high_ != 0 || count_ != 0) out.push_back(kInvalid);
    unit_ = high_ = 0;
    count_ = 0;
  }

 private:
  void Unit(char32_t unit, std::u32string& out) {
    if (kSize == 2 && high_ != 0) {
      const char32_t high = high_;
      high_ = 0;
      if (unit >= 0xDC00 && unit <= 0xDFFF) {
        return out.push_back(0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00));
      }
      out.push_back(kInvalid);
    }
    if (kSize == 2 && unit >= 0xD800 && unit < 0xDC00) {
      high_ = unit;
    } else {
      out.push_back(IsSurrogate(unit) || unit > kMaxCharacter ? kInvalid : unit);
    }
  }

  char32_t unit_ = 0;
  std::size_t count_ = 0;  // bytes in unit_
  char32_t high_ = 0;      // a first surrogate that waits for the second
};

class Latin1Decoder final : public TextDecoder {
 public:
  void Decode(const uint8_t* bytes, std::size_t size, bool, std::u32string& out) override {
    out.append(bytes, bytes + size);
  }
};

bool StartsWith(const uint8_t* bytes, std::size_t size, std::initializer_list<uint8_t> mark) {
  return size >= mark.size() && std::equal(mark.begin(), mark.end(), bytes);
}

// Whether the bytes are UTF-16 whose high bytes stand at offsets of this parity: only these may be zero, and none of
// the characters is a control character that texts do not hold. Three quarters of the characters have a zero byte as in
// western texts, or an eighth of them with a space or line end among them as in texts of ideographs.
bool LooksLikeUtf16(const uint8_t* bytes, std::size_t size, std::size_t parity) {
  if (size % 2 != 0) return false;
  std::size_t zeros = 0;
  bool spaces = false;
  for (std::size_t i = 0; i < size; i += 2) {
    const uint8_t low = bytes[i + 1 - parity];
    if (low == 0) return false;
    if (bytes[i + parity] != 0) continue;
    const bool space = low == ' ' || low == '\t' || low == '\n' || low == '\r' || low == '\f';
    if (low < 0x20 && !space) return false;
    spaces = spaces || space;
    ++zeros;
  }
  return zeros * 8 >= size * 3 || (spaces && zeros * 16 >= size);
}

}  // namespace

std::unique_ptr<TextDecoder> OpenBuiltInDecoder(const std::string& encoding) {
  std::string name;
  for (const char c : encoding) {
    if (c != '-' && c != '_') name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  if (name == "utf8") return std::make_unique<Utf8Decoder>();
  if (name == "utf16le") return std::make_unique<UnitDecoder<2, false>>();
  if (name == "utf16be") return std::make_unique<UnitDecoder<2, true>>();
  if (name == "utf32le") return std::make_unique<UnitDecoder<4, false>>();
  if (name == "utf32be") return std::make_unique<UnitDecoder<4, true>>();
  if (name == "iso88591" || name == "latin1") return std::make_unique<Latin1Decoder>();
  return nullptr;
}

std::string DetectEncoding(const uint8_t* bytes, std::size_t size, const std::string& name) {
  if (StartsWith(bytes, size, {0xEF, 0xBB, 0xBF})) return "UTF-8";
  if (StartsWith(bytes, size, {0xFF, 0xFE, 0, 0})) return "UTF-32LE";
  if (StartsWith(bytes, size, {0, 0, 0xFE, 0xFF})) return "UTF-32BE";
  if (StartsWith(bytes, size, {0xFF, 0xFE})) return "UTF-16LE";
  if (StartsWith(bytes, size, {0xFE, 0xFF})) return "UTF-16BE";
  if (std::find(bytes, bytes + size, 0) == bytes + size) return "UTF-8";
  if (LooksLikeUtf16(bytes, size, 1)) return "UTF-16LE";
  if (LooksLikeUtf16(bytes, size, 0)) return "UTF-16BE";
  const auto first = static_cast<std::size_t>(std::find(bytes, bytes + size, 0) - bytes);
  throw ToolError(ExitCode::kBadInput, fmt::format("{}: is no text: zero byte at offset {}", name, first));
}

std::u32string DecodeUtf8(const std::string& bytes) {
  std::u32string decoded;
  Utf8Decoder().Decode(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), true, decoded);
  std::u32string text;
  for (const char32_t c : decoded) {
    if (c == kInvalid) {
      text.push_back(0xFFFD);
    } else if (c >= 0x20 && (c < 0x7F || c > 0x9F)) {
      text.push_back(c);
    }
  }
  return text;
}

}  // namespace qnv::tool
