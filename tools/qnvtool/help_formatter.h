// The look of --help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace qnv::tool {

inline constexpr const char* kExitCodesHelp =
    "Exit codes: 0 done, 1 wrong command line, 2 an input file cannot be used,\n"
    "3 a result cannot be written, 4 the library cannot be loaded or refuses.\n";

// Breaks the descriptions of options into lines that fit a terminal of 80 columns.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter();
  std::string make_option_desc(const CLI::Option* option) const override;
};

}  // namespace qnv::tool
