// What parser, man page and shell completion share: values of options and wrapped text.
#pragma once

#include <string>
#include <vector>

namespace qnv::tool {

// The words of `text` in lines of at most `width` characters; a longer word has a line of its own.
std::string WrapWords(const std::string& text, std::size_t width);

// `text` when it is one of the choices. Throws ToolError (usage) that lists them when it is not.
std::string ParseChoice(const std::string& option, const std::string& text, const std::vector<std::string>& choices);

}  // namespace qnv::tool
