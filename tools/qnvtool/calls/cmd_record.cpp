// `qnvtool record`: runs a program with the recorder in front of the library.
#include <fmt/core.h>

#ifdef __linux__
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

struct RecordArguments {
  std::vector<std::string> program;
  std::string out, library, recorder;
  bool hash = false, flush = false, check = false, stored = false;
};

#define QNVTOOL_TEXT_OF(number) #number
#define QNVTOOL_TEXT(macro) QNVTOOL_TEXT_OF(macro)

// Programs ask for the second name; the first is there where programs are compiled.
constexpr const char* kLibraryNames[] = {"libqnvdrv10.so", "libqnvdrv10.so." QNVTOOL_TEXT(QNVDRV10_VERSION_MAJOR)};
constexpr const char* kRecorderNames[] = {"libqnvrec.so"};

// The first of these libraries that is beside the program or in a folder of libraries that belongs to it.
template <std::size_t count>
std::string BesideProgram(const char* const (&names)[count]) {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  for (const char* folder : {".", "../lib", "../lib/" QNVTOOL_LIBRARY_ARCHITECTURE}) {
    for (const char* name : names) {
      const auto path = (program.parent_path() / folder / name).lexically_normal();
      if (std::filesystem::is_regular_file(path, error)) return path.string();
    }
  }
  return "";
}

std::string Absolute(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: no such library file", path));
  }
  return std::filesystem::absolute(path).string();
}

#ifdef __linux__

void Run(const RecordArguments& a, const std::string& recorder, const std::string& library, const std::string& out) {
  const pid_t child = fork();
  if (child < 0) throw ToolError(ExitCode::kUsage, fmt::format("cannot start a process: {}", std::strerror(errno)));
  if (child == 0) {
    const char* const before = std::getenv("LD_PRELOAD");
    const std::string preload = before == nullptr || *before == '\0' ? recorder : recorder + ":" + before;
    setenv("LD_PRELOAD", preload.c_str(), 1);
    setenv("QNVREC_LIBRARY", library.c_str(), 1);
    setenv("QNVREC_FILE", out.c_str(), 1);
    setenv("QNVREC_HASH", a.hash ? "call" : "", 1);
    setenv("QNVREC_FLUSH", a.flush ? "call" : "", 1);
    setenv("QNVREC_CHECK", a.check ? "1" : "", 1);
    setenv("QNVREC_COMPRESS", a.stored ? "0" : "", 1);
    std::vector<char*> arguments;
    for (const std::string& argument : a.program) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    const std::string message = fmt::format("{}: {}\n", a.program[0], std::strerror(errno));
    // Nothing of the parent may be written or freed here.
    if (write(STDERR_FILENO, message.data(), message.size()) < 0) _exit(126);
    _exit(127);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw ToolError(ExitCode::kUsage, fmt::format("cannot wait: {}", std::strerror(errno)));
  }
  if (WIFSIGNALED(status)) {
    fmt::print(stderr, "{}: ended by signal {}\n", a.program[0], WTERMSIG(status));
  } else if (WEXITSTATUS(status) != 0) {
    fmt::print(stderr, "{}: ended with {}\n", a.program[0], WEXITSTATUS(status));
  }
}

#else

void Run(const RecordArguments&, const std::string&, const std::string&, const std::string&) {}

#endif

void Record(const RecordArguments& a) {
#ifndef __linux__
  throw ToolError(ExitCode::kUsage, "record runs under Linux; elsewhere put the recorder before the library yourself");
#endif
  const std::string recorder = a.recorder.empty() ? BesideProgram(kRecorderNames) : a.recorder;
  const std::string library = a.library.empty() ? BesideProgram(kLibraryNames) : a.library;
  if (recorder.empty()) throw ToolError(ExitCode::kLibrary, "libqnvrec.so is not beside the program: use --recorder");
  if (library.empty()) throw ToolError(ExitCode::kLibrary, "libqnvdrv10.so is not beside the program: use --library");
  const std::string out = std::filesystem::absolute(a.out).string();
  std::error_code error;
  std::filesystem::remove(out, error);
  Run(a, Absolute(recorder), Absolute(library), out);
  if (!std::filesystem::is_regular_file(out, error)) {
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: made no calls that could be recorded", a.program[0]));
  }
  const calls::CallFile file = ReadCallFile(out);
  fmt::print("{}: {} calls, {} devices, {} bytes", a.out, file.CallCount(), file.DeviceCount(),
             std::filesystem::file_size(out, error));
  if (a.check) fmt::print(", {} mistakes", file.Findings().size());
  fmt::print("\n");
}

}  // namespace

Command RecordCommand() {
  auto arguments = std::make_shared<RecordArguments>();
  RecordArguments& a = *arguments;
  Command command{.name = "record",
                  .summary = "Run a program and record its calls",
                  .footer =
                      "Put -- before the program when it has options of its own. docs/call-format.md says how to\n"
                      "record under Windows.\n",
                  .options = {},
                  .run = {}};
  command.options = {
      {.names = "program",
       .placeholder = "PROGRAM ARGUMENT",
       .help = "Program that is linked with the library, or loads it, and its arguments",
       .value = Words{&a.program},
       .required = true},
      CallFileOut(&a.out),
      {.names = "--library",
       .placeholder = "FILE",
       .help = "Library that makes the calls (default: the one beside this program)",
       .value = Text{&a.library},
       .fileTypes = "so"},
      {.names = "--recorder",
       .placeholder = "FILE",
       .help = "Recorder (default: the one beside this program)",
       .value = Text{&a.recorder},
       .fileTypes = "so"},
      HashOption(&a.hash),
      StoredOption(&a.stored),
      {.names = "--flush",
       .placeholder = "",
       .help = "Write every call at once, for programs that crash",
       .value = Flag{&a.flush}},
      {.names = "--check", .placeholder = "", .help = "Check every call", .value = Flag{&a.check}},
  };
  command.run = [arguments] { Record(*arguments); };
  return command;
}

}  // namespace qnv::tool
