// The command line of a program: its commands and their options, each described once. Parsing, --help, the options part
// of the man page and the shell completion are generated from these descriptions.
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace qnv::tool {

// The kinds of values that an option takes, with the variable that receives the value. A variable keeps its contents
// when the option is not given.
struct Flag {
  bool* given;
};
struct Text {
  std::string* value;
};
struct Words {  // all positional arguments
  std::vector<std::string>* values;
};
struct WholeNumber {
  int* value;
  int min, max;
};
struct Decimal {
  double* value;
  double min, max;
};
struct OneOf {
  std::string* value;
  std::vector<std::string> choices;
};

// An option or a positional argument of a command.
struct Option {
  std::string names;        // "-o,--out"; without dashes: a positional argument
  std::string placeholder;  // the name of the value in help: "FILE"; empty for flags
  std::string help;         // plain text; "(default X)" included
  std::variant<Flag, Text, Words, WholeNumber, Decimal, OneOf> value;
  std::string group = {};  // heading in help; empty: the general ones
  bool required = false;
  std::string excludes = {};     // names of options of the same command, described earlier
  std::string completions = {};  // for Text: words that complete it, separated by spaces
  std::string fileTypes = {};    // for Text: extensions of files that complete it, "png|ppm"; "*": any file
  bool ofRun = false;            // concerns a run of many jobs as a whole, so that a manifest may not set it for one
};

// A command, such as "print".
struct Command {
  std::string name;
  std::string summary;
  std::string footer = {};  // shown below the options in help
  std::vector<Option> options;
  std::function<void()> run;
};

// A program: what --help and --version show, and its commands.
struct Program {
  std::string name;
  std::string summary;
  std::string version;  // empty: no --version
  std::vector<Command> commands;
};

inline constexpr const char* kExitCodesHelp =
    "Exit codes: 0 done, 1 wrong command line, 2 an input file cannot be used,\n"
    "3 a result cannot be written or printed, 4 the library cannot be loaded or refuses.\n";

// Runs the command that the arguments name. "--generate completion" and "--generate man TEMPLATE", which the build of
// the packages uses, write the shell completion, or the template with each line "@OPTIONS COMMAND@" replaced by the
// options of the command, to standard output. Returns the program's exit code; when it is not 0, one line on standard
// error says why.
int RunProgram(const Program& program, int argc, char** argv);

// The entries of a man page for the options of a command (troff), in the order and groups of --help.
std::string ManOptions(const Command& command);

// `page` with each line "@OPTIONS COMMAND@" replaced by ManOptions of that command.
std::string FillManPage(const Program& program, const std::string& page);

// A bash completion script for the program.
std::string BashCompletion(const Program& program);

// The number that `text` holds. Throws ToolError (usage) that names the option and the range for anything else:
// other characters, nan, infinity, a value outside min..max.
int ParseWholeNumber(const std::string& option, const std::string& text, int min, int max);
double ParseDecimal(const std::string& option, const std::string& text, double min, double max);

}  // namespace qnv::tool
