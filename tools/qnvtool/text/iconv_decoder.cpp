// Decodes with iconv, block by block.
#include "qnvtool/text/iconv_decoder.h"

#include <iconv.h>

#include <cerrno>
#include <cstring>

namespace qnv::tool {
namespace {

class IconvDecoder final : public TextDecoder {
 public:
  explicit IconvDecoder(iconv_t handle) : handle_(handle) {}
  ~IconvDecoder() override { iconv_close(handle_); }
  IconvDecoder(const IconvDecoder&) = delete;
  IconvDecoder& operator=(const IconvDecoder&) = delete;

  void Decode(const uint8_t* bytes, std::size_t size, bool last, std::u32string& out) override {
    rest_.insert(rest_.end(), bytes, bytes + size);
    char* in = reinterpret_cast<char*>(rest_.data());
    std::size_t left = rest_.size();
    while (left != 0) {
      const std::size_t result = Convert(&in, &left, out);
      if (result != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
      if (errno == EINVAL && !last) break;  // the rest of the character is in the next block
      out.push_back(kInvalid);
      ++in;
      --left;
    }
    if (last) Convert(nullptr, nullptr, out);  // characters that wait for what may follow
    rest_.erase(rest_.begin(), rest_.end() - static_cast<std::ptrdiff_t>(left));
  }

 private:
  std::size_t Convert(char** in, std::size_t* left, std::u32string& out) {
    char32_t characters[1024];
    char* to = reinterpret_cast<char*>(characters);
    std::size_t room = sizeof characters;
    const std::size_t result = iconv(handle_, in, left, &to, &room);
    const int error = errno;
    out.append(characters, (sizeof characters - room) / sizeof(char32_t));
    errno = error;
    return result;
  }

  const iconv_t handle_;
  Bytes rest_;  // bytes of a character that is not complete
};

}  // namespace

std::unique_ptr<TextDecoder> OpenIconvDecoder(const std::string& encoding) {
  // The host's byte order, so that the result needs no conversion.
  const uint16_t one = 1;
  uint8_t first = 0;
  std::memcpy(&first, &one, 1);
  const iconv_t handle = iconv_open(first == 1 ? "UTF-32LE" : "UTF-32BE", encoding.c_str());
  if (handle == reinterpret_cast<iconv_t>(-1)) return nullptr;
  return std::make_unique<IconvDecoder>(handle);
}

}  // namespace qnv::tool
