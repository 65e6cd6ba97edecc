// The program: its commands, and the parts that they work with.
#include <CLI/CLI.hpp>

#include "cmd_make_picture.h"
#include "cmd_print.h"
#include "freetype_font.h"
#include "help_formatter.h"
#include "png_writer.h"
#include "run_program.h"

namespace qnv::tool {
namespace {

FontShelf OpenFonts(const PrintOptions& options) {
  return FontShelf([&options](FontRole role, double points) {
    const std::string& name = role == FontRole::kBody      ? options.bodyFont
                              : role == FontRole::kHeading ? options.headingFont
                                                           : options.listingFont;
    return OpenFreeTypeFont(name, points, options.device.pageDpi);
  });
}

}  // namespace
}  // namespace qnv::tool

int main(int argc, char** argv) {
  CLI::App program("qnvtool: prints and inspects with the band rasteriser", "qnvtool");
  program.require_subcommand(1);
  program.set_version_flag("--version", std::string("qnvtool ") + QNVTOOL_VERSION);
  program.formatter(std::make_shared<qnv::tool::HelpFormatter>());
  program.footer(qnv::tool::kExitCodesHelp);
  qnv::tool::AddPrintCommand(program, {qnv::tool::OpenFonts, qnv::tool::LinkedRasteriser, qnv::tool::CreatePngFile});
  qnv::tool::AddMakePictureCommand(program);
  return qnv::tool::RunProgram(program, argc, argv);
}
