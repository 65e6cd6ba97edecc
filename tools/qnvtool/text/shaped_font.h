// Fonts with everything that letters need: ligatures, kerning, joined and reordered letters, both directions, and other
// installed fonts for what a font lacks.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "qnvtool/text/font.h"
#include "qnvtool/text/font_face.h"
#include "qnvtool/text/text_properties.h"

namespace qnv::tool {

// What the fonts of a job share: the font library, and what the user was told already.
class FontSystem {
 public:
  using Note = std::function<void(const std::string&)>;  // takes a line for the user

  explicit FontSystem(Note note);

  const FontLibrary& library() const { return library_; }

  // Each of these tells the user once for each name or script.
  void NoteReplaced(const std::string& name, const std::string& family);
  void NoteMissing(char32_t code);

 private:
  const Note note_;
  const FontLibrary library_;
  std::set<std::string> replaced_;
  std::set<ScriptTag> missing_;
};

// Opens a font file (a path that exists) or the font of a fontconfig name such as "DejaVu Serif:bold", at a size of
// `points` on a page of `dpi` dots per inch. Characters that it lacks are taken from the installed font that fits
// `fallback`, a fontconfig name, best. Throws ToolError: usage for a name that fontconfig cannot resolve, bad input for
// a file that is no scalable font.
std::unique_ptr<Font> OpenShapedFont(const std::shared_ptr<FontSystem>& system, const std::string& fileOrName,
                                     const std::string& fallback, double points, int dpi);

}  // namespace qnv::tool
