// Measures single characters.
#include "qnvtool/text/font.h"

namespace qnv::tool {

int32_t Font::Advance(char32_t code) {
  const auto known = known_.find(code);
  if (known != known_.end()) return known->second;
  const int32_t advance = Shape(std::u32string_view(&code, 1), TextForm::kColumns)->advances()[0];
  known_.emplace(code, advance);
  return advance;
}

}  // namespace qnv::tool
