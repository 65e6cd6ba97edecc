// Documents of a print queue as pages of pixels, row by row.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qnv::filter {

// The pixels of a page: 8 bits of gray, or red, green, blue.
struct PageForm {
  int width = 0;
  int height = 0;
  int dpi = 0;
  bool gray = false;
};

class PageSource {
 public:
  virtual ~PageSource() = default;

  // Whether the document is a raster, not PDF.
  virtual bool isRaster() const = 0;

  // Goes to the next page; false behind the last one. Requires: all rows of the page before are read. Throws ToolError
  // (bad input) as ReadRow does.
  virtual bool NextPage(PageForm& form) = 0;

  // The next row of the page, width or 3 * width bytes.
  virtual void ReadRow(uint8_t* row) = 0;
};

// How PDF documents become pixels; raster documents say it themselves.
struct PdfForm {
  int dpi = 300;
  bool gray = false;
};

// Opens a document by its content: PWG, Apple or CUPS raster, or PDF, which pdftoppm turns into pixels. An empty path
// is standard input.
std::unique_ptr<PageSource> OpenPages(const std::string& path, const PdfForm& form);

}  // namespace qnv::filter
