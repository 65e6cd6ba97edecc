// The files that hold all pages of a job: TIFF, PDF, and the raster streams that printers take. `workers` compress
// them and must outlive the document.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/base/workers.h"
#include "qnvtool/output/page_document.h"

namespace qnv::tool {

// Pages as pictures at their resolution, with invisible text.
std::unique_ptr<PageDocument> CreatePdfFile(const std::string& path, Workers& workers);

// Compressed by deflate in strips.
std::unique_ptr<PageDocument> CreateTiffFile(const std::string& path, int pages, Workers& workers);

// PWG raster, Apple raster (URF) or compressed CUPS raster.
std::unique_ptr<PageDocument> CreateRasterFile(PictureFormat format, const std::string& path, int pages);

// Any of them. Requires: HoldsAllPages(format).
std::unique_ptr<PageDocument> CreateDocument(PictureFormat format, const std::string& path, int pages,
                                             Workers& workers);

}  // namespace qnv::tool
