#include "run_program.h"

#include <cstdio>
#include <new>

#include "tool_error.h"

namespace qnv::tool {

int RunProgram(CLI::App& program, int argc, char** argv) {
  const auto complain = [&](const char* message, ExitCode code) {
    std::fprintf(stderr, "%s: %s\n", program.get_name().c_str(), message);
    return static_cast<int>(code);
  };
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& asked) {  // --help, --version
    return program.exit(asked);
  } catch (const CLI::ParseError& error) {
    return complain(error.what(), ExitCode::kUsage);
  } catch (const ToolError& error) {
    return complain(error.what(), error.code());
  } catch (const std::bad_alloc&) {
    return complain("not enough memory", ExitCode::kBadInput);
  }
  return 0;
}

}  // namespace qnv::tool
