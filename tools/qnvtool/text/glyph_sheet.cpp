// Makes the record when it is asked for.
#include "qnvtool/text/glyph_sheet.h"

#include <utility>

namespace qnv::tool {

uint16_t GlyphSheet::Add(Glyph glyph) {
  const std::lock_guard<std::mutex> lock(mutex_);
  glyphs_.push_back(std::move(glyph));
  record_.reset();
  return static_cast<uint16_t>(glyphs_.size() - 1);
}

std::shared_ptr<const FontRecord> GlyphSheet::Record() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (record_ == nullptr) {
    record_ = std::make_shared<const FontRecord>(MakeTwoByteRecord(glyphs_, ascent_, descent_));
  }
  return record_;
}

}  // namespace qnv::tool
