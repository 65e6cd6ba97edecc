// Makes the file of the wanted format.
#include "qnvtool/output/documents.h"

namespace qnv::tool {

std::unique_ptr<PageDocument> CreateDocument(PictureFormat format, const std::string& path, int pages,
                                             Workers& workers) {
  switch (format) {
    case PictureFormat::kPdf: return CreatePdfFile(path, workers);
    case PictureFormat::kTiff: return CreateTiffFile(path, pages, workers);
    default: return CreateRasterFile(format, path, pages);
  }
}

}  // namespace qnv::tool
