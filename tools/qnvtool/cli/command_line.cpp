// The one file that includes CLI11, whose headers take a compiler several seconds.
#include "qnvtool/cli/command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <sstream>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/cli/help_text.h"

namespace qnv::tool {
namespace {

// Breaks the descriptions of options into lines that fit a terminal of 80 columns.
class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter() { column_width(kDescriptionColumn); }

  std::string make_option_desc(const CLI::Option* option) const override {
    // The formatter indents the lines after the first.
    return WrapWords(CLI::Formatter::make_option_desc(option), kDescriptionWidth);
  }

 private:
  static constexpr std::size_t kDescriptionColumn = 28;
  static constexpr std::size_t kDescriptionWidth = 80 - kDescriptionColumn;
};

// The name of an option in messages: its long name, which is the last one.
std::string NameOf(const Option& option) { return option.names.substr(option.names.rfind(',') + 1); }

// Registers an option with the parser, according to the kind of its value.
class Binder {
 public:
  Binder(CLI::App& app, const Option& option) : app_(app), option_(option) {}

  CLI::Option* operator()(const Flag& flag) const { return app_.add_flag(option_.names, *flag.given, option_.help); }
  CLI::Option* operator()(const Text& text) const { return app_.add_option(option_.names, *text.value, option_.help); }
  CLI::Option* operator()(const Words& words) const {
    return app_.add_option(option_.names, *words.values, option_.help);
  }
  CLI::Option* operator()(const WholeNumber& number) const {
    return Parsed([name = NameOf(option_), number](const std::string& text) {
      *number.value = ParseWholeNumber(name, text, number.min, number.max);
    });
  }
  CLI::Option* operator()(const Decimal& number) const {
    return Parsed([name = NameOf(option_), number](const std::string& text) {
      *number.value = ParseDecimal(name, text, number.min, number.max);
    });
  }
  CLI::Option* operator()(const OneOf& one) const {
    return Parsed(
        [name = NameOf(option_), one](const std::string& text) { *one.value = ParseChoice(name, text, one.choices); });
  }

 private:
  CLI::Option* Parsed(const std::function<void(const std::string&)>& parse) const {
    return app_.add_option_function<std::string>(option_.names, parse, option_.help);
  }

  CLI::App& app_;
  const Option& option_;
};

// Registers an option with its placeholder, group and rules.
void AddOption(CLI::App& app, const Option& option) {
  CLI::Option* const added = std::visit(Binder(app, option), option.value);
  if (!option.placeholder.empty()) added->type_name(option.placeholder);
  if (!option.group.empty()) added->group(option.group);
  if (option.required) added->required();
  std::istringstream excluded(option.excludes);
  for (std::string other; excluded >> other;) added->excludes(app.get_option(other));
}

void AddCommand(CLI::App& app, const Command& command) {
  CLI::App* const added = app.add_subcommand(command.name, command.summary);
  if (!command.footer.empty()) added->footer(command.footer);
  for (const Option& option : command.options) AddOption(*added, option);
  added->callback(command.run);
}

// "--generate": writes the completion or the man page instead of running a command.
int Generate(const Program& program, const std::vector<std::string>& words) {
  std::string text;
  if (words[2] == "completion") {
    text = BashCompletion(program);
  } else if (words.size() == 4 && words[2] == "man") {
    std::ifstream file(words[3], std::ios::binary);
    std::stringstream page;
    page << file.rdbuf();
    text = FillManPage(program, page.str());
  }
  const bool written = !text.empty() && std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  return static_cast<int>(written ? ExitCode::kOk : ExitCode::kUsage);
}

}  // namespace

int RunProgram(const Program& program, int argc, char** argv) {
  const auto complain = [&](const char* message, ExitCode code) {
    std::fprintf(stderr, "%s: %s\n", program.name.c_str(), message);
    return static_cast<int>(code);
  };
  const std::vector<std::string> words(argv, argv + argc);
  if (argc >= 3 && words[1] == "--generate") return Generate(program, words);
  CLI::App app(program.name + ": " + program.summary, program.name);
  try {
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // paths begin with '/'
    if (!program.version.empty()) app.set_version_flag("--version", program.name + " " + program.version);
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(kExitCodesHelp);
    for (const Command& command : program.commands) AddCommand(app, command);
    app.parse(argc, argv);
  } catch (const CLI::Success& asked) {  // --help, --version
    return app.exit(asked);
  } catch (const CLI::ParseError& error) {
    return complain(error.what(), ExitCode::kUsage);
  } catch (const ToolError& error) {
    return complain(error.what(), error.code());
  } catch (const Interrupted& interrupted) {
    return EndBySignal(interrupted.signal);
  } catch (const std::filesystem::filesystem_error& error) {  // a name in another encoding than the system's
    return complain(error.what(), ExitCode::kBadInput);
  } catch (const std::bad_alloc&) {
    return complain("not enough memory", ExitCode::kBadInput);
  }
  return 0;
}

}  // namespace qnv::tool
