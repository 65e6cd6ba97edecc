// Reads a text and lays it out.
#include "qnvtool/job/text_document.h"

#include <utility>
#include <vector>

#include "qnvtool/base/utf8.h"
#include "qnvtool/layout/text_layout.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxText = std::size_t{1} << 30;  // bytes

class TextDocument final : public Document {
 public:
  explicit TextDocument(std::vector<Page> pages) : pages_(std::move(pages)) {}

  bool Next(Page& page) override {
    if (next_ == pages_.size()) return false;
    page = std::move(pages_[next_++]);
    return true;
  }

 private:
  std::vector<Page> pages_;
  std::size_t next_ = 0;
};

}  // namespace

std::unique_ptr<Document> OpenTextDocument(const Input& file, const PrintOptions& options, const PageSetup& setup,
                                           const std::string& name) {
  const std::u32string text = DecodeTextFile(file->All(kMaxText, "a text"), file->name());
  return std::make_unique<TextDocument>(LayOutText(ParseTextBlocks(text, options.verbatim), setup, name));
}

}  // namespace qnv::tool
