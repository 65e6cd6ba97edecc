#include "help_formatter.h"

#include <sstream>

namespace qnv::tool {
namespace {

constexpr std::size_t kDescriptionColumn = 28;
constexpr std::size_t kDescriptionWidth = 80 - kDescriptionColumn;

}  // namespace

HelpFormatter::HelpFormatter() { column_width(kDescriptionColumn); }

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
  std::istringstream words(CLI::Formatter::make_option_desc(option));
  std::string result;
  std::string word;
  std::size_t column = 0;
  while (words >> word) {
    if (column != 0 && column + 1 + word.size() > kDescriptionWidth) {
      result += '\n';  // the formatter indents what follows
      column = 0;
    } else if (column != 0) {
      result += ' ';
      ++column;
    }
    result += word;
    column += word.size();
  }
  return result;
}

}  // namespace qnv::tool
