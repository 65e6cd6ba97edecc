// Parses option values, and generates the man page and the shell completion from the descriptions of the options.
#include "qnvtool/cli/help_text.h"

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/cli/command_line.h"

namespace qnv::tool {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

bool IsPositional(const Option& option) { return option.names[0] != '-'; }

// Escapes text for troff, which treats '-' as a hyphen, a backslash as an escape, and a dot or a quote at the start of
// a line as a request.
std::string Troff(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '-') result += '\\';
    result += c;
    if (c == '\\') result += 'e';
  }
  if (!result.empty() && (result[0] == '.' || result[0] == '\'')) result.insert(0, "\\&");
  return result;
}

// The entry of an option in the man page.
std::string ManEntry(const Option& option) {
  std::string names;
  for (const std::string& name : Split(option.names, ',')) {
    names += (names.empty() ? "\\fB" : ", \\fB") + Troff(name) + "\\fR";
  }
  if (!option.placeholder.empty()) names += " \\fI" + Troff(option.placeholder) + "\\fR";
  std::string help = Troff(option.help);
  if (help.empty() || help.back() != '.') help += '.';
  if (option.required) help += "\nRequired.";
  if (!option.excludes.empty()) help += "\nExcludes \\fB" + Troff(option.excludes) + "\\fR.";
  return ".TP\n" + names + "\n" + help + "\n";
}

std::string Join(const std::vector<std::string>& words, const std::string& between) {
  std::string result;
  for (const std::string& word : words) result += (result.empty() ? "" : between) + word;
  return result;
}

// One branch of the completion: what may follow `pattern`, the words before the cursor.
std::string CompletionBranch(const std::string& pattern, const std::string& words, const std::string& fileTypes) {
  if (words.empty() && fileTypes.empty()) return fmt::format("        {}) return ;;\n", pattern);
  std::string actions;
  if (!words.empty()) actions += fmt::format(" words='{}'", words);
  if (!fileTypes.empty()) actions += fmt::format(" kinds='{}'", fileTypes);
  return fmt::format("        {}){} ;;\n", pattern, actions);
}

// The words that complete the value of an option.
std::string WordsOf(const Option& option) {
  const auto* const one = std::get_if<OneOf>(&option.value);
  return one == nullptr ? option.completions : Join(one->choices, " ");
}

// The completion of one command.
std::string CompletionOf(const Command& command) {
  std::string branches;
  std::string names = "-h --help";
  std::string otherTypes;
  for (const Option& option : command.options) {
    if (IsPositional(option)) {
      // The first argument follows the command's name; files may stand anywhere.
      if (!WordsOf(option).empty()) branches += CompletionBranch(command.name, WordsOf(option), "");
      if (!option.fileTypes.empty()) otherTypes = option.fileTypes;
      continue;
    }
    names += " " + Join(Split(option.names, ','), " ");
    if (option.placeholder.empty()) continue;
    branches += CompletionBranch(Join(Split(option.names, ','), " | "), WordsOf(option), option.fileTypes);
  }
  branches += CompletionBranch("*", names, otherTypes);
  return fmt::format("    {})\n      case $previous in\n{}      esac\n      ;;\n", command.name, branches);
}

// The end of the completion script, the same for every program.
constexpr const char* kCompletionEnd = R"(  esac

  # A word is offered to those who begin one; options only once their dash is there, where files may stand as well.
  local word
  for word in $words; do
    [[ $word == -* && $current != -* && -n $kinds ]] && continue
    [[ $word == "$current"* ]] && COMPREPLY+=("$word")
  done
  if [[ -n $kinds && $current != -* ]]; then
    local file
    compopt -o filenames 2>/dev/null
    while IFS= read -r file; do
      if [[ -d $file || $kinds == '*' ]] || [[ $file =~ \.($kinds)$ ]]; then
        COMPREPLY+=("$file")
      fi
    done < <(compgen -f -- "$current")
  fi
  # A value that goes on, as scaled:A/B does.
  if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[:/] ]]; then
    compopt -o nospace 2>/dev/null
  fi
}
)";

}  // namespace

std::string WrapWords(const std::string& text, std::size_t width) {
  std::istringstream words(text);
  std::string result;
  std::string word;
  std::size_t column = 0;
  while (words >> word) {
    if (column != 0 && column + 1 + word.size() > width) {
      result += '\n';
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

std::string ParseChoice(const std::string& option, const std::string& text, const std::vector<std::string>& choices) {
  if (std::find(choices.begin(), choices.end(), text) != choices.end()) return text;
  throw ToolError(ExitCode::kUsage, fmt::format("{} {}: use one of {}", option, text, Join(choices, ", ")));
}

int ParseWholeNumber(const std::string& option, const std::string& text, int min, int max) {
  char* end = nullptr;
  errno = 0;
  const long value = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || errno != 0 || value < min || value > max) {
    throw ToolError(ExitCode::kUsage, fmt::format("{} {}: use a whole number from {} to {}", option, text, min, max));
  }
  return static_cast<int>(value);
}

double ParseDecimal(const std::string& option, const std::string& text, double min, double max) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  // Not-a-number fails both comparisons.
  if (text.empty() || *end != '\0' || !(value >= min && value <= max)) {
    throw ToolError(ExitCode::kUsage, fmt::format("{} {}: use a number from {} to {}", option, text, min, max));
  }
  return value;
}

std::string ManOptions(const Command& command) {
  std::string result;
  std::string group;
  for (const Option& option : command.options) {
    if (IsPositional(option)) continue;
    if (option.group != group) result += ".SS " + option.group + "\n";
    group = option.group;
    result += ManEntry(option);
  }
  return result;
}

std::string FillManPage(const Program& program, const std::string& page) {
  std::string result = page;
  for (const Command& command : program.commands) {
    const std::string mark = "@OPTIONS " + command.name + "@\n";
    const std::size_t at = result.find(mark);
    if (at != std::string::npos) result.replace(at, mark.size(), ManOptions(command));
  }
  return result;
}

std::string BashCompletion(const Program& program) {
  std::vector<std::string> commands;
  for (const Command& command : program.commands) commands.push_back(command.name);
  std::string result = fmt::format(
      "# bash completion of {0}\n\n_{0}() {{\n"
      "  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}} command= i\n"
      "  COMPREPLY=()\n"
      "  # Bash takes '=' for a word of its own: --device=gray arrives as three.\n"
      "  if [[ $current == = ]]; then\n"
      "    current=\n"
      "  elif [[ $previous == = ]]; then\n"
      "    previous=${{COMP_WORDS[COMP_CWORD - 2]}}\n"
      "  fi\n"
      "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
      "    case ${{COMP_WORDS[i]}} in\n"
      "      {1})\n"
      "        command=${{COMP_WORDS[i]}}\n"
      "        break\n"
      "        ;;\n"
      "    esac\n"
      "  done\n\n"
      "  local words= kinds=\n"
      "  case $command in\n",
      program.name, Join(commands, " | "));
  for (const Command& command : program.commands) result += CompletionOf(command);
  const std::string version = program.version.empty() ? "" : " --version";
  result += fmt::format("    *) words='{} -h --help{}' ;;\n", Join(commands, " "), version);
  return result + kCompletionEnd + fmt::format("\ncomplete -F _{0} {0}\n", program.name);
}

}  // namespace qnv::tool
