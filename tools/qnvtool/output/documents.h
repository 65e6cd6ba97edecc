// The files that hold all pages of a job: TIFF, PDF, and the raster streams that printers take.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/output/page_document.h"
#include "qnvtool/output/row_encoder.h"

namespace qnv::tool {

// Pages as pictures at their resolution, with invisible text. Rows come from CreateDeflateEncoder.
std::unique_ptr<PageDocument> CreatePdfFile(const std::string& path);

// Compressed by deflate in strips. Rows come from CreateStripEncoder.
std::unique_ptr<PageDocument> CreateTiffFile(const std::string& path, int pages);
std::unique_ptr<RowEncoder> CreateStripEncoder(const PictureForm& form);

// PWG raster, Apple raster (URF) or compressed CUPS raster. Rows come from CreatePlainEncoder.
std::unique_ptr<PageDocument> CreateRasterFile(PictureFormat format, const std::string& path, int pages);

// Any of them. Requires: HoldsAllPages(format).
std::unique_ptr<PageDocument> CreateDocument(PictureFormat format, const std::string& path, int pages);

// For the rows of a file of any format.
std::unique_ptr<RowEncoder> CreateEncoder(PictureFormat format, const PictureForm& form);

}  // namespace qnv::tool
