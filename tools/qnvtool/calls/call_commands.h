// The commands over call files. Each is in a file of its own and is listed here.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qnvtool/cli/command_line.h"
#include "qnvtool/output/picture_writer.h"
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {

// Serves a page to browsers on this machine; see local_server.h.
using ServePage = void (*)(const std::string& page, uint16_t port,
                           const std::function<void(const std::string& url)>& isReady);

// What the commands need of the program.
struct CallParts {
  std::function<Rasteriser()> linkedRasteriser;
  // Writes a picture that is in memory.
  std::function<void(const std::string& path, const PictureForm&, const uint8_t* first, std::size_t stride)> writePng;
  std::function<std::vector<uint8_t>(const void* bytes, std::size_t count)> gzip;
  ServePage servePage = nullptr;  // may be absent
};

std::vector<Command> CallCommands(const CallParts& parts);

Command ReplayCommand(const CallParts& parts);
Command CheckCommand(const CallParts& parts);
Command RecordCommand();
Command DiffCommand();
Command ToCCommand(const CallParts& parts);
Command TrimCommand(const CallParts& parts);
Command InfoCommand();
Command DumpCommand(const CallParts& parts);
Command RenderCommand(const CallParts& parts);
Command TimeCommand(const CallParts& parts);
Command InspectCommand(const CallParts& parts);

}  // namespace qnv::tool
