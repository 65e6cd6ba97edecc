// The program: commands and exit codes.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>

#include "cmd_make_picture.h"
#include "cmd_print.h"
#include "help_formatter.h"
#include "tool_error.h"

namespace {

int Complain(const char* message, qnv::tool::ExitCode code) {
  std::fprintf(stderr, "qnvtool: %s\n", message);
  return static_cast<int>(code);
}

}  // namespace

int main(int argc, char** argv) {
  using qnv::tool::ExitCode;
  CLI::App program("qnvtool: prints and inspects with the band rasteriser", "qnvtool");
  program.require_subcommand(1);
  program.set_version_flag("--version", std::string("qnvtool ") + QNVTOOL_VERSION);
  program.formatter(std::make_shared<qnv::tool::HelpFormatter>());
  program.footer(qnv::tool::kExitCodesHelp);
  qnv::tool::AddPrintCommand(program);
  qnv::tool::AddMakePictureCommand(program);
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& asked) {  // --help, --version
    return program.exit(asked);
  } catch (const CLI::ParseError& error) {
    return Complain(error.what(), ExitCode::kUsage);
  } catch (const qnv::tool::ToolError& error) {
    return Complain(error.what(), error.code());
  } catch (const std::bad_alloc&) {
    return Complain("not enough memory", ExitCode::kBadInput);
  }
  return 0;
}
