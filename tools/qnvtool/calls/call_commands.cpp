// The list of the commands over call files.
#include "qnvtool/calls/call_commands.h"

namespace qnv::tool {

std::vector<Command> CallCommands(const CallParts& parts) {
  return {RecordCommand(),      ReplayCommand(parts), CheckCommand(parts),  DiffCommand(),
          TrimCommand(parts),   ToCCommand(parts),    InfoCommand(),        DumpCommand(parts),
          RenderCommand(parts), TimeCommand(parts),   InspectCommand(parts)};
}

}  // namespace qnv::tool
