// Makes the file of the wanted format.
#include "qnvtool/output/documents.h"

#include "qnvtool/output/row_deflate.h"

namespace qnv::tool {

std::unique_ptr<PageDocument> CreateDocument(PictureFormat format, const std::string& path, int pages) {
  switch (format) {
    case PictureFormat::kPdf: return CreatePdfFile(path);
    case PictureFormat::kTiff: return CreateTiffFile(path, pages);
    default: return CreateRasterFile(format, path, pages);
  }
}

std::unique_ptr<RowEncoder> CreateEncoder(PictureFormat format, const PictureForm& form) {
  switch (format) {
    case PictureFormat::kPng:
    case PictureFormat::kPdf: return CreateDeflateEncoder(form);
    case PictureFormat::kTiff: return CreateStripEncoder(form);
    default: return CreatePlainEncoder(form);
  }
}

}  // namespace qnv::tool
