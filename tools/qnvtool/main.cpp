// qnvtool: its commands, with fonts, PNG files and the library that it is linked with.
#include "qnvtool/cli/cmd_make_picture.h"
#include "qnvtool/cli/cmd_print.h"
#include "qnvtool/output/png_writer.h"
#include "qnvtool/text/freetype_font.h"
#include "qnvtool/text/iconv_decoder.h"

namespace qnv::tool {
namespace {

// Fonts from font files or from the installed fonts.
FontShelf OpenFonts(const PrintOptions& options) {
  return FontShelf([&options](FontRole role, double points) {
    const std::string& name = role == FontRole::kBody      ? options.bodyFont
                              : role == FontRole::kHeading ? options.headingFont
                                                           : options.listingFont;
    return std::make_unique<PlainFont>(OpenFreeTypeFont(name, points, options.device.pageDpi));
  });
}

}  // namespace
}  // namespace qnv::tool

int main(int argc, char** argv) {
  using namespace qnv::tool;
  const Program program{.name = "qnvtool",
                        .summary = "prints and inspects with the band rasteriser",
                        .version = QNVTOOL_VERSION,
                        .commands = {PrintCommand({.openFonts = OpenFonts,
                                                   .linked = LinkedRasteriser,
                                                   .createPng = CreatePngFile,
                                                   .decoders = {},
                                                   .openDecoder = OpenIconvDecoder}),
                                     MakePictureCommand()}};
  return RunProgram(program, argc, argv);
}
