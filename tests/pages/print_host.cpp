// The page printer for systems that have none of the libraries qnvtool needs: its own font, PPM and PGM files, and no
// rasteriser but the one it loads. Prints on Windows what it prints natively, so that the pages can be compared.
#include <CLI/CLI.hpp>

#include "qnvtool/cmd_make_picture.h"
#include "qnvtool/cmd_print.h"
#include "qnvtool/run_program.h"
#include "sample_bmps.h"
#include "tools/synthetic_font.h"

namespace qnv::test {
namespace {

tool::FontShelf OpenFonts(const tool::PrintOptions& options) { return SyntheticShelf(options.device.pageDpi); }

}  // namespace
}  // namespace qnv::test

int main(int argc, char** argv) {
  CLI::App program("print_host: prints as qnvtool does, through the library that it is given", "print_host");
  program.require_subcommand(1);
  program.allow_windows_style_options(false);  // paths begin with '/'
  qnv::tool::AddPrintCommand(program, {qnv::test::OpenFonts, nullptr, nullptr});
  qnv::tool::AddMakePictureCommand(program);
  std::string folder;
  CLI::App* const samples = program.add_subcommand("make-samples", "Make images of every depth and kind");
  samples->add_option("folder", folder, "Where the BMP files go")->required()->type_name("FOLDER");
  samples->callback([&] { qnv::test::WriteSampleBmps(folder); });
  return qnv::tool::RunProgram(program, argc, argv);
}
