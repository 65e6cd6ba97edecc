// Describes the options once for all commands.
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {

Option CallFileArgument(std::string* path, const std::string& name) {
  return {.names = name,
          .placeholder = "FILE.qnv",
          .help = "Call file",
          .value = Text{path},
          .required = true,
          .fileTypes = "qnv"};
}

Option CallFileOut(std::string* path) {
  Option out = CallFileArgument(path, "-o,--out");
  out.help = "Call file to write";
  return out;
}

Option LibraryOption(std::string* path) {
  return LibraryOption(path, "--library", "Library to make the calls (default: the built-in one)");
}

Option LibraryOption(std::string* path, const std::string& name, const std::string& help) {
  return {.names = name, .placeholder = "FILE", .help = help, .value = Text{path}, .fileTypes = "so|dll"};
}

Option HashOption(bool* given) {
  return {.names = "--hash",
          .placeholder = "",
          .help = "A checksum of the band after every drawing call",
          .value = Flag{given}};
}

Option StoredOption(bool* given) {
  return {
      .names = "--stored", .placeholder = "", .help = "No compression, for readers without it", .value = Flag{given}};
}

}  // namespace qnv::tool
