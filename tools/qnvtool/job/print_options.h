// What to print and how, and the parts of the program that do it.
#pragma once

#include <string>
#include <vector>

#include "qnvtool/input/picture_file.h"
#include "qnvtool/ipp/printer.h"
#include "qnvtool/layout/page_ranges.h"
#include "qnvtool/layout/paper.h"
#include "qnvtool/layout/picture_layout.h"
#include "qnvtool/layout/text_document.h"
#include "qnvtool/output/job_output.h"
#include "qnvtool/paint/band_pipeline.h"
#include "qnvtool/paint/device_choice.h"
#include "qnvtool/paint/rasteriser.h"
#include "qnvtool/text/font_shelf.h"

namespace qnv::tool {

enum class FileType { kAuto, kPicture, kText, kFigures };

enum class PageOrientation {
  kAsGiven,  // as the paper's size says
  kPortrait,
  kLandscape,
  kAuto,  // sheets of pictures are turned where that shows them larger; as given for others
};

struct PrintOptions {
  std::vector<std::string> files;
  std::string out;     // "-": standard output
  std::string format;  // of all pictures, one of kFormatNames; empty: as the names say
  int compression = kDefaultCompression;
  bool keepGoing = false;
  FileType type = FileType::kAuto;
  Paper paper;
  double marginMm = 20;
  PageOrientation orientation = PageOrientation::kAsGiven;
  PageRanges pages;
  int pagesOnSheet = 1;  // 1, 2, 4, 6 or 9
  int copies = 1;
  DeviceChoice device;
  int bandRows = kAutomaticBandRows;  // 0: whole pages
  PictureStyle pictures;
  FontNames fonts;
  double points = 11;
  TextOptions text;
  bool header = true;
  std::string tags;     // tag plane as a picture; empty: none
  std::string overlay;  // pages with image areas tinted; empty: none
  std::string library;  // empty: the linked one
  bool quiet = false;
  int jobs = 0;  // threads that work at the same time; 0: one for each core
};

// The parts that need libraries of the system, or this project's own. A program passes those that it is built with.
struct PrintParts {
  // The options must outlive the result. `note` gets remarks about fonts.
  FontShelf (*openFonts)(const PrintOptions& options, int dpi, NoteSink note) = nullptr;
  Rasteriser (*linked)() = nullptr;  // may be absent
  OutputParts output = {};
  OpenPrinter openPrinter = nullptr;  // may be absent
  PictureDecoders decoders = {};
  std::unique_ptr<TextDecoder> (*openDecoder)(const std::string&) = nullptr;  // may be absent
};

}  // namespace qnv::tool
