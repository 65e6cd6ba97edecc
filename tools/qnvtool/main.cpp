// qnvtool: its commands, with fonts, picture formats and the library that it is linked with.
#include <utility>

#include "qnvtool/calls/local_server.h"
#include "qnvtool/calls/tool_program.h"
#include "qnvtool/input/jpeg_reader.h"
#include "qnvtool/input/png_reader.h"
#include "qnvtool/input/tiff_reader.h"
#include "qnvtool/ipp/ipp_printer.h"
#include "qnvtool/output/documents.h"
#include "qnvtool/output/gzip.h"
#include "qnvtool/output/png_writer.h"
#include "qnvtool/text/iconv_decoder.h"
#include "qnvtool/text/shaped_font.h"

namespace qnv::tool {
namespace {

// Fonts from font files or from the installed fonts, for pages of a resolution.
FontShelf OpenFonts(const PrintOptions& options, int dpi, NoteSink note) {
  const auto system = std::make_shared<FontSystem>(std::move(note));
  return FontShelf([&options, system, dpi](FontRole role, double points) {
    return OpenShapedFont(system, options.fonts.Of(role), FontNames().Of(role), points, dpi);
  });
}

}  // namespace
}  // namespace qnv::tool

int main(int argc, char** argv) {
  using namespace qnv::tool;
  const PrintParts print{.openFonts = OpenFonts,
                         .linked = LinkedRasteriser,
                         .output = {CreatePngFile, CreateDocument, CreateEncoder},
                         .openPrinter = OpenIppPrinter,
                         .decoders = {OpenPng, OpenJpeg, OpenTiff},
                         .openDecoder = OpenIconvDecoder};
  return RunTool(print, {LinkedRasteriser, WritePngFile, Gzip, ServeLocalPage}, QNVTOOL_VERSION, argc, argv);
}
