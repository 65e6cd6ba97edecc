// A printer that takes jobs over IPP: what it says of itself, and what is sent to it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qnv::tool {

// A size of paper that the printer names.
struct Medium {
  std::string name = {};  // as IPP has it, "iso_a4_210x297mm"
  double widthMm = 0;
  double heightMm = 0;
};

// What a printer says that it takes. Lists are empty where it says nothing.
struct PrinterTraits {
  std::string name = {};
  bool color = false;
  std::vector<std::string> formats = {};  // document formats, as MIME types
  std::vector<int> resolutions = {};      // dots per inch, the same in both directions
  int defaultResolution = 0;
  std::vector<int> pwgResolutions = {};    // for PWG raster
  std::vector<std::string> pwgTypes = {};  // "srgb_8", "sgray_8"
  std::vector<std::string> urf = {};       // capabilities for Apple raster: "W8", "SRGB24", "RS300-600"
  std::vector<Medium> media = {};
  Medium smallestCustom = {};  // without a name: no sizes but those of `media`
  Medium largestCustom = {};
  Medium defaultMedium = {};
};

// The document and how it is to be printed.
struct PrinterJob {
  std::string title = {};
  std::string file = {};  // on this machine
  std::string mimeType = {};
  Medium medium = {};
  int dpi = 0;
  bool gray = false;
  bool wait = true;  // until the job is printed
};

class Printer {
 public:
  virtual ~Printer() = default;

  // Asks the printer. Throws ToolError (cannot write) when it does not answer or accepts no jobs. To be called before
  // Print.
  virtual PrinterTraits Ask() = 0;

  // Sends the job and follows it to its end. `note` gets what the printer says meanwhile, `done` the part of the
  // document that is sent, 0..1, then what the job does. Throws ToolError (cannot write) when the printer refuses the
  // job or ends it unprinted; on a signal the job is cancelled and Interrupted thrown.
  virtual void Print(const PrinterJob& job, const std::function<void(const std::string&)>& note,
                     const std::function<void(double, const std::string&)>& done) = 0;

  // The name that IPP has for a size of paper.
  virtual Medium Name(double widthMm, double heightMm) const = 0;
};

// Opens a printer by "ipp://HOST[:PORT]/PATH" or "ipps://...". Throws ToolError (usage) for other addresses.
using OpenPrinter = std::function<std::unique_ptr<Printer>(const std::string& address)>;

}  // namespace qnv::tool
