// The page rows that a resolution-mapping device keeps when it paints pictures; it drops the others.
#pragma once

#include <cstddef>
#include <vector>

namespace qnv::tool {

class KeptRows {
 public:
  // Band row j of an inch shows the page row nearest to j * pageDpi / bandDpi; an exact half rounds down.
  KeptRows(int pageDpi, int bandDpi) : kept_(static_cast<std::size_t>(pageDpi)) {
    for (int j = 0; j < bandDpi; ++j) {
      const int position = j * pageDpi;
      const int row = position / bandDpi + (position % bandDpi > bandDpi / 2 ? 1 : 0);
      if (row < pageDpi) kept_[static_cast<std::size_t>(row)] = true;
    }
  }

  bool Has(int pageRow) const { return pageRow >= 0 && kept_[static_cast<std::size_t>(pageRow) % kept_.size()]; }

 private:
  std::vector<bool> kept_;
};

}  // namespace qnv::tool
