// qnvtool for Windows: what can be done with this project's own code, zlib and the fonts of the system.
#include <fmt/core.h>

#include <cstdio>
#include <memory>
#include <set>
#include <string>

#include "qnvtool/calls/call_commands.h"
#include "qnvtool/cli/cmd_make_picture.h"
#include "qnvtool/cli/cmd_print.h"
#include "qnvtool/output/documents.h"
#include "qnvtool/output/png_writer.h"
#include "qnvtool/windows/gdi_font.h"

namespace qnv::tool {
namespace {

FontShelf OpenFonts(const PrintOptions& options, int dpi) {
  const auto noted = std::make_shared<std::set<std::string>>();
  const NoteSink note = [noted, quiet = options.quiet](const std::string& text) {
    if (!quiet && noted->insert(text).second) fmt::print(stderr, "qnvtool: note: {}\n", text);
  };
  return FontShelf([&options, note, dpi](FontRole role, double points) {
    const std::string& name = role == FontRole::kBody      ? options.bodyFont
                              : role == FontRole::kHeading ? options.headingFont
                                                           : options.listingFont;
    return OpenGdiFont(name, points, dpi, note);
  });
}

std::unique_ptr<PageDocument> CreatePdfDocument(PictureFormat, const std::string& path, int) {
  return CreatePdfFile(path);
}

}  // namespace
}  // namespace qnv::tool

int main(int argc, char** argv) {
  using namespace qnv::tool;
  Program program{.name = "qnvtool",
                  .summary = "prints and inspects with the band rasteriser",
                  .version = QNVTOOL_VERSION,
                  .commands = {PrintCommand({.openFonts = OpenFonts,
                                             .linked = LinkedRasteriser,
                                             .output = {.createPng = CreatePngFile,
                                                        .createDocument = CreatePdfDocument,
                                                        .documents = {PictureFormat::kPdf}}}),
                               MakePictureCommand()}};
  for (Command& command : CallCommands({LinkedRasteriser, CreatePngFile})) {
    program.commands.push_back(std::move(command));
  }
  return RunProgram(program, argc, argv);
}
