// The page printer for systems that have none of the libraries qnvtool needs: its own font, PPM and PGM files, and no
// rasteriser but the one it loads. Prints on Windows what it prints natively, so that the pages can be compared.
#include "qnvtool/cmd_make_picture.h"
#include "qnvtool/cmd_print.h"
#include "sample_bmps.h"
#include "tools/synthetic_font.h"

namespace qnv::test {
namespace {

tool::FontShelf OpenFonts(const tool::PrintOptions& options) { return SyntheticShelf(options.device.pageDpi); }

}  // namespace
}  // namespace qnv::test

int main(int argc, char** argv) {
  std::string folder;
  const qnv::tool::Command samples{.name = "make-samples",
                                   .summary = "Make images of every depth and kind",
                                   .options = {{.names = "folder",
                                                .placeholder = "FOLDER",
                                                .help = "Where the BMP files go",
                                                .value = qnv::tool::Text{&folder},
                                                .required = true}},
                                   .run = [&] { qnv::test::WriteSampleBmps(folder); }};
  const qnv::tool::Program program{.name = "print_host",
                                   .summary = "prints as qnvtool does, through the library that it is given",
                                   .version = "",
                                   .commands = {qnv::tool::PrintCommand({qnv::test::OpenFonts, nullptr, nullptr}),
                                                qnv::tool::MakePictureCommand(), samples}};
  return qnv::tool::RunProgram(program, argc, argv);
}
