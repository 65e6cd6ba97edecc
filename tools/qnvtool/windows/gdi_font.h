// The installed fonts of Windows.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/base/note_sink.h"
#include "qnvtool/text/font.h"

namespace qnv::tool {

// A font of the system at a size. `name`: serif, sans, monospace or the name of an installed font, followed by ":bold",
// ":italic" or both. Letters are set one by one from left to right. `note` gets lines for the user: which font stands
// for one that is not installed, and what a font lacks. Throws ToolError (usage) for a name that is that of a file, and
// for other words behind the name.
std::unique_ptr<Font> OpenGdiFont(const std::string& name, double points, int dpi, const NoteSink& note);

}  // namespace qnv::tool
