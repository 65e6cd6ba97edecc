// Puts the commands together.
#include "qnvtool/calls/tool_program.h"

#include <utility>

#include "qnvtool/cli/cmd_make_picture.h"
#include "qnvtool/cli/cmd_print.h"

namespace qnv::tool {

int RunTool(const PrintParts& print, const CallParts& calls, const std::string& version, int argc, char** argv) {
  Program program{.name = "qnvtool",
                  .summary = "prints and inspects with the band rasteriser",
                  .version = version,
                  .commands = {PrintCommand(print), MakePictureCommand()}};
  for (Command& command : CallCommands(calls)) program.commands.push_back(std::move(command));
  return RunProgram(program, argc, argv);
}

}  // namespace qnv::tool
