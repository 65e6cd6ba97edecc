// Chooses format, resolution, color and paper of a job from what the printer takes and the user wants.
#pragma once

#include <string>

#include "qnvtool/ipp/printer.h"

namespace qnv::tool {

// What the user said; the rest is left to the printer.
struct JobWishes {
  std::string format = {};  // one of kFormatNames, or empty
  bool hasDevice = false;   // a device was chosen
  bool gray = false;        // it is gray
  int dpi = 0;              // resolution of its picture; 0: not chosen
  bool hasPaper = false;
  Medium paper = {};  // with the name that IPP has for it
};

struct JobPlan {
  std::string format = {};  // one of kFormatNames
  std::string mimeType = {};
  bool gray = false;
  int dpi = 0;
  Medium medium = {};
};

// The format is the first of PWG raster, Apple raster and PDF that the printer takes; color is used where the printer
// has it; the resolution is the default one of the printer where the format has it, else the highest up to 600; the
// paper is the printer's default. Wishes that the printer cannot fulfil are errors. Throws ToolError (usage).
JobPlan PlanJob(const PrinterTraits& printer, const JobWishes& wishes);

}  // namespace qnv::tool
