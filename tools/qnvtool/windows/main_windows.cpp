// qnvtool for Windows: what can be done with this project's own code, zlib and the fonts of the system.
#include <memory>
#include <string>
#include <utility>

#include "qnvtool/calls/tool_program.h"
#include "qnvtool/output/documents.h"
#include "qnvtool/output/gzip.h"
#include "qnvtool/output/png_writer.h"
#include "qnvtool/output/row_deflate.h"
#include "qnvtool/windows/gdi_font.h"

namespace qnv::tool {
namespace {

FontShelf OpenFonts(const PrintOptions& options, int dpi, NoteSink note) {
  return FontShelf([&options, note = std::move(note), dpi](FontRole role, double points) {
    return OpenGdiFont(options.fonts.Of(role), points, dpi, note);
  });
}

std::unique_ptr<PageDocument> CreatePdfDocument(PictureFormat, const std::string& path, int) {
  return CreatePdfFile(path);
}

// Both formats compress alike.
std::unique_ptr<RowEncoder> CreatePngOrPdfEncoder(PictureFormat, const PictureForm& form) {
  return CreateDeflateEncoder(form);
}

}  // namespace
}  // namespace qnv::tool

int main(int argc, char** argv) {
  using namespace qnv::tool;
  const PrintParts print{.openFonts = OpenFonts,
                         .linked = LinkedRasteriser,
                         .output = {.createPng = CreatePngFile,
                                    .createDocument = CreatePdfDocument,
                                    .createEncoder = CreatePngOrPdfEncoder,
                                    .documents = {PictureFormat::kPdf}}};
  return RunTool(print, {LinkedRasteriser, WritePngFile, Gzip}, QNVTOOL_VERSION, argc, argv);
}
