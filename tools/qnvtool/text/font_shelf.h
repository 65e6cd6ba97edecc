// The fonts of a job, opened once for each role and size.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "qnvtool/text/font.h"

namespace qnv::tool {

// What a font is used for.
enum class FontRole { kBody, kHeading, kListing };

// Names of fonts, or of their files; initially the generic names, for which some installed font always stands.
struct FontNames {
  std::string body = "serif";
  std::string heading = "sans:bold";
  std::string listing = "monospace";

  const std::string& Of(FontRole role) const {
    return role == FontRole::kBody ? body : role == FontRole::kHeading ? heading : listing;
  }
};

class FontShelf {
 public:
  // Opens the font of a role at a size in points.
  using Opener = std::function<std::unique_ptr<Font>(FontRole role, double points)>;

  explicit FontShelf(Opener opener) : opener_(std::move(opener)) {}

  std::shared_ptr<Font> Get(FontRole role, double points) {
    std::shared_ptr<Font>& font = fonts_[{role, points}];
    if (font == nullptr) font = opener_(role, points);
    return font;
  }

 private:
  const Opener opener_;
  std::map<std::pair<FontRole, double>, std::shared_ptr<Font>> fonts_;
};

}  // namespace qnv::tool
