// The options of `qnvtool print`, and their translation into a print job.
#include "qnvtool/cli/cmd_print.h"

#include <fmt/core.h>

#include <cstdio>
#include <iterator>
#include <memory>

#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/cli/manifest.h"
#include "qnvtool/ipp/print_to.h"
#include "qnvtool/job/each_file.h"
#include "qnvtool/job/many_jobs.h"
#include "qnvtool/job/print_job.h"
#include "qnvtool/layout/figures.h"

namespace qnv::tool {
namespace {

// The values of the command line, some of them still to be parsed.
struct PrintArguments {
  PrintOptions options;
  std::string paper;
  std::string device;
  PrinterOptions printer;
  bool noWait = false;
  std::string type = "auto";
  std::string scale;
  int dpi = 0;
  bool fit = false;
  bool crop = false;
  std::string alignment = "center";
  std::string orientation = "paper";
  std::string pages;
  std::string pagesOnSheet = "1";
  bool noHeader = false;
  bool flow = false;
  bool verbatim = false;
  bool timing = false;
  bool each = false;
  std::string manifest;
  std::string shard;
  std::string report;
};

constexpr int kMaxJobs = 256;

// For the shell completion.
constexpr const char* kFontNames = "serif sans monospace";
constexpr const char* kFontFiles = "ttf|otf|ttc|pfb";

const std::string kFooter = std::string(
                                "Every file begins a new page, and so does every picture of a TIFF file. Pictures may\n"
                                "be BMP, PNG, JPEG or TIFF files of any name. In text files an empty line ends a\n"
                                "paragraph, '#', '##' and '###' begin headings, '- ' begins a list item, and lines\n"
                                "indented by four spaces or a tab are set as they are, in the font for listings.\n"
                                "Other files than .txt, .text, .md and .markdown, and standard input, are listings as\n"
                                "a whole.\n\n") +
                            kFigureFormatHelp + "\n" + kExitCodesHelp;

// Parses the values that are still to be parsed.
PrintOptions OptionsOf(const PrintArguments& arguments, const PrintParts& parts) {
  PrintOptions options = arguments.options;
  options.paper = ParsePaper(arguments.paper.empty() ? "a4" : arguments.paper);
  options.device = ParseDevice(arguments.device.empty() ? "color" : arguments.device, arguments.dpi);
  if (!arguments.scale.empty()) options.pictures.scale = ParseScale(arguments.scale);
  if (arguments.crop) options.pictures.scale.mode = PictureScale::Mode::kFill;
  options.pictures.alignment = ParseAlignment(arguments.alignment);
  options.orientation = arguments.orientation == "portrait"    ? PageOrientation::kPortrait
                        : arguments.orientation == "landscape" ? PageOrientation::kLandscape
                        : arguments.orientation == "auto"      ? PageOrientation::kAuto
                                                               : PageOrientation::kAsGiven;
  if (!arguments.pages.empty()) options.pages = PageRanges(arguments.pages);
  options.pagesOnSheet = arguments.pagesOnSheet[0] - '0';
  options.header = !arguments.noHeader;
  options.type = arguments.type == "picture" ? FileType::kPicture
                 : arguments.type == "text"  ? FileType::kText
                 : arguments.type == "fig"   ? FileType::kFigures
                                             : FileType::kAuto;
  options.text.setting = arguments.flow       ? TextOptions::Setting::kFlow
                         : arguments.verbatim ? TextOptions::Setting::kVerbatim
                                              : TextOptions::Setting::kByName;
  options.text.openDecoder = parts.openDecoder;
  return options;
}

std::vector<Option> PrintOptionList(PrintArguments* arguments);

// Prints every job by itself.
void RunMany(const PrintArguments& arguments, const PrintParts& parts) {
  RunOptions run{.threads = arguments.options.jobs,
                 .keepGoing = arguments.options.keepGoing,
                 .quiet = arguments.options.quiet,
                 .report = arguments.report,
                 .inputs = {},
                 .newFolder = {}};
  // A copy of the arguments takes the values of one job after the other.
  PrintArguments one = arguments;
  const std::vector<Option> options = PrintOptionList(&one);
  const JobReader reader{options, [&] { one = arguments; }, [&] { return OptionsOf(one, parts); }};
  if (!arguments.each) {
    if (arguments.manifest != "-") run.inputs.push_back(arguments.manifest);
    return PrintMany(ReadManifest(arguments.manifest, ParseShard(arguments.shard), reader), run, parts);
  }
  PrintMany(JobsOfFiles(OptionsOf(arguments, parts), DescribeValues(options), run.newFolder), run, parts);
}

void Run(const PrintArguments& arguments, const PrintParts& parts) {
  const bool many = arguments.each || !arguments.manifest.empty();
  const PrinterOptions& asked = arguments.printer;
  const auto refuse = [](bool condition, const char* message) {
    if (condition) throw ToolError(ExitCode::kUsage, message);
  };
  refuse(!arguments.manifest.empty() && !arguments.options.files.empty(),
         "--manifest names the files to print; the command line cannot name further ones");
  refuse(!arguments.manifest.empty() && !arguments.options.out.empty(),
         "--manifest names the outputs; the command line cannot give --out");
  refuse(arguments.manifest.empty() && arguments.options.files.empty(), "files is required");
  refuse(!many && !arguments.report.empty(), "--report needs --manifest or --each");
  refuse(arguments.manifest.empty() && !arguments.shard.empty(), "--shard needs --manifest");
  refuse(many && !asked.address.empty(), "--printer takes one job; --each and --manifest write files");
  refuse(arguments.manifest.empty() && arguments.options.out.empty() && asked.address.empty(),
         "--out is required, or --printer");
  if (many) {
    RunMany(arguments, parts);
  } else if (asked.address.empty()) {
    Print(OptionsOf(arguments, parts), parts);
  } else {
    PrinterOptions printer = asked;
    printer.deviceName = arguments.device;
    printer.dpi = arguments.dpi;
    printer.hasPaper = !arguments.paper.empty();
    printer.wait = !arguments.noWait;
    PrintTo(printer, OptionsOf(arguments, parts), parts);
  }
  if (arguments.timing) fmt::print(stderr, "qnvtool: {}\n", DescribePhases());
}

std::vector<Option> PrintOptionList(PrintArguments* arguments) {
  PrintOptions& options = arguments->options;
  const std::string page = "Page";
  const std::string text = "Text";
  const std::string device = "Device";
  return {
      {.names = "files",
       .placeholder = "FILE",
       .help = "Files to print, '-' being standard input; required without --manifest",
       .value = Words{&options.files},
       .fileTypes = "*",
       .ofRun = true},
      {.names = "-o,--out",
       .placeholder = "OUT",
       .help = "The pages: OUT.tiff, OUT.pdf, and the raster files OUT.pwg, OUT.urf and OUT.ras hold all of them; of "
               "OUT.png, OUT.ppm or OUT.pgm there is one for each page, OUT-01.png, OUT-02.png and so on, where there "
               "are several. '-' writes to standard output, PPM or PGM unless --format says otherwise",
       .value = Text{&options.out},
       .fileTypes = kFormatEndings,
       .ofRun = true},
      {.names = "--format",
       .placeholder = "FORMAT",
       .help = "Format of all pictures, whatever their names end in: png, ppm (color), pgm (gray), tiff, pdf (with "
               "invisible text, to be searched), pwg (PWG raster), urf (Apple raster), cups (CUPS raster)",
       .value = OneOf{&options.format, {std::begin(kFormatNames), std::end(kFormatNames)}}},
      {.names = "--compression",
       .placeholder = "N",
       .help = "How PNG, TIFF and PDF files are compressed: 0 (not at all), 1 (fast) to 9 (small); the pixels are the "
               "same. Default: fast, by a way that is chosen for each part of a page",
       .value = WholeNumber{&options.compression, 0, kMaxCompression}},
      {.names = "--printer",
       .placeholder = "ADDRESS",
       .help = "Send the pages to a printer or a queue, ipp://HOST[:PORT]/PATH or ipps://..., instead of writing them. "
               "Format (PWG raster, else Apple raster, else PDF), resolution, color and paper are those of the printer "
               "unless options choose among them. Ctrl-C cancels the job",
       .value = Text{&arguments->printer.address},
       .excludes = "--out",
       .completions = "ipp:// ipps://",
       .ofRun = true},
      {.names = "--no-wait",
       .placeholder = "",
       .help = "Do not wait until the printer has printed the job",
       .value = Flag{&arguments->noWait},
       .ofRun = true},
      {.names = "--timing",
       .placeholder = "",
       .help =
           "Say on standard error where the time went: reading, layout, rasterising, encoding, writing, each added up "
           "over all threads, and how long it took",
       .value = Flag{&arguments->timing},
       .ofRun = true},
      {.names = "--each",
       .placeholder = "",
       .help = "Print every file by itself. OUT is a folder, such as out/, which is made when it is missing and takes "
               "NAME.FORMAT for each file (--format is needed), or holds {name}, {file} (the name with its ending), "
               "{folder} or {number}. A table of the files ends the run",
       .value = Flag{&arguments->each},
       .ofRun = true},
      {.names = "--manifest",
       .placeholder = "JOBS.jsonl",
       .help = "Print the jobs that the lines of this file name, each a JSON object with input (a file or an array of "
               "files), output, and other options of this command by their long names; '-' is standard input. Options "
               "of the command line count for all jobs that do not give them",
       .value = Text{&arguments->manifest},
       .excludes = "--each",
       .fileTypes = "jsonl|json",
       .ofRun = true},
      {.names = "--shard",
       .placeholder = "K/N",
       .help = "Of the manifest, print line K and every Nth line after it, so that N machines share the work",
       .value = Text{&arguments->shard},
       .ofRun = true},
      {.names = "--report",
       .placeholder = "FILE",
       .help = "With --each or --manifest: add a line of JSON for each job that ended, and leave out those that the "
               "file says are done while inputs, options and outputs are the same",
       .value = Text{&arguments->report},
       .fileTypes = "jsonl|json",
       .ofRun = true},
      {.names = "--keep-going",
       .placeholder = "",
       .help = "Report files that cannot be used, print the others, and end with exit code 2; without it nothing is "
               "printed then",
       .value = Flag{&options.keepGoing},
       .ofRun = true},
      {.names = "--jobs",
       .placeholder = "N",
       .help =
           "Threads that paint and compress at the same time, 1 to 256 (default: one for each core). What is written "
           "does not depend on it",
       .value = WholeNumber{&options.jobs, 1, kMaxJobs},
       .ofRun = true},
      {.names = "--type",
       .placeholder = "TYPE",
       .help = "What the files are: auto (pictures by their content, figures by their name, else text), picture, text, "
               "fig",
       .value = OneOf{&arguments->type, {"auto", "picture", "text", "fig"}}},
      {.names = "-q,--quiet",
       .placeholder = "",
       .help = "No progress bar, no notes and no table",
       .value = Flag{&options.quiet},
       .ofRun = true},

      {.names = "--paper",
       .placeholder = "SIZE",
       .help = "a4, letter, any other name that printers know, or a size such as 100x150mm or 8.5x11in (default a4)",
       .value = Text{&arguments->paper},
       .group = page,
       .completions = "a4 letter"},
      {.names = "--dpi",
       .placeholder = "N",
       .help = "Resolution that documents are laid out at, 20 to 4800 (default 300)",
       .value = WholeNumber{&arguments->dpi, kMinDpi, kMaxDpi},
       .group = page},
      {.names = "--margin",
       .placeholder = "MM",
       .help = "White on all sides (default 20)",
       .value = Decimal{&options.marginMm, 0, 1000},
       .group = page},
      {.names = "--no-header",
       .placeholder = "",
       .help = "No line with file name and page number",
       .value = Flag{&arguments->noHeader},
       .group = page},
      {.names = "--fit",
       .placeholder = "",
       .help = "Images as large as the page allows (default)",
       .value = Flag{&arguments->fit},
       .group = page},
      {.names = "--scale",
       .placeholder = "X",
       .help = "Images at a factor of their own size (72 dpi where the file gives none), or 'pixels': one page pixel "
               "for each image pixel",
       .value = Text{&arguments->scale},
       .group = page,
       .excludes = "--fit",
       .completions = "pixels"},
      {.names = "--crop",
       .placeholder = "",
       .help = "Images as small as covers the page, cut off at its edges",
       .value = Flag{&arguments->crop},
       .group = page,
       .excludes = "--fit --scale"},
      {.names = "--align",
       .placeholder = "PLACE",
       .help = "Where images lie on the page: center (default), top, bottom, left, right, top-left, top-right, "
               "bottom-left, bottom-right",
       .value = Text{&arguments->alignment},
       .group = page,
       .completions = "center top bottom left right top-left top-right bottom-left bottom-right"},
      {.names = "--orientation",
       .placeholder = "SIDE",
       .help =
           "portrait, landscape, paper (as --paper says, default) or auto: sheets of pictures are turned where that "
           "shows them larger",
       .value = OneOf{&arguments->orientation, {"paper", "portrait", "landscape", "auto"}},
       .group = page},
      {.names = "--pages",
       .placeholder = "LIST",
       .help = "Pages to print, counted over all files, for example 2-5,8 or 10- (default all)",
       .value = Text{&arguments->pages},
       .group = page},
      {.names = "--n-up",
       .placeholder = "N",
       .help = "Pages on each sheet: 1, 2, 4, 6 or 9 (default 1)",
       .value = OneOf{&arguments->pagesOnSheet, {"1", "2", "4", "6", "9"}},
       .group = page},
      {.names = "--copies",
       .placeholder = "N",
       .help = "Prints all sheets N times, 1 to 9999 (default 1)",
       .value = WholeNumber{&options.copies, 1, 9999},
       .group = page},

      {.names = "--font",
       .placeholder = "FONT",
       .help = "Font file or fontconfig name of the text (default serif)",
       .value = Text{&options.fonts.body},
       .group = text,
       .completions = kFontNames,
       .fileTypes = kFontFiles},
      {.names = "--heading-font",
       .placeholder = "FONT",
       .help = "The same for headings and headers (default sans:bold)",
       .value = Text{&options.fonts.heading},
       .group = text,
       .completions = kFontNames,
       .fileTypes = kFontFiles},
      {.names = "--listing-font",
       .placeholder = "FONT",
       .help = "The same for listings (default monospace)",
       .value = Text{&options.fonts.listing},
       .group = text,
       .completions = kFontNames,
       .fileTypes = kFontFiles},
      {.names = "--size",
       .placeholder = "PT",
       .help = "Size of the text in points, 2 to 200 (default 11)",
       .value = Decimal{&options.points, 2, 200},
       .group = text},
      {.names = "--flow",
       .placeholder = "",
       .help = "Set all texts in paragraphs, whatever their names (default for .txt, .text, .md and .markdown)",
       .value = Flag{&arguments->flow},
       .group = text},
      {.names = "--verbatim",
       .placeholder = "",
       .help = "Set all texts as listings, line by line (default for other names)",
       .value = Flag{&arguments->verbatim},
       .group = text,
       .excludes = "--flow"},
      {.names = "--line-numbers",
       .placeholder = "",
       .help = "Number the lines of texts that are listings as a whole",
       .value = Flag{&options.text.lineNumbers},
       .group = text},
      {.names = "--encoding",
       .placeholder = "NAME",
       .help =
           "What texts are encoded in, by any name that 'iconv -l' lists (default: UTF-8, or UTF-16 and UTF-32 where "
           "a byte order mark or the zero bytes tell)",
       .value = Text{&options.text.encoding},
       .group = text,
       .completions = "UTF-8 UTF-16 ISO-8859-1 ISO-8859-15 WINDOWS-1252 KOI8-R SHIFT_JIS EUC-JP GB18030 BIG5"},

      {.names = "--device",
       .placeholder = "DEVICE",
       .help = "color (24 bits), gray (8 bits), dual (color with a plane of tags), or scaled:A/B, scaled-gray:A/B: "
               "laid out "
               "at A dpi, printed at B dpi (default color)",
       .value = Text{&arguments->device},
       .group = device,
       .completions = "color gray dual scaled: scaled-gray:"},
      {.names = "--band-rows",
       .placeholder = "N",
       .help = "Most rows that are painted at a time, 0 for whole pages (default: about half a megabyte). The files do "
               "not depend on it",
       .value = WholeNumber{&options.bandRows, 0, 1000000},
       .group = device},
      {.names = "--library",
       .placeholder = "FILE",
       .help = "Rasteriser to load instead of the linked one",
       .value = Text{&options.library},
       .group = device,
       .fileTypes = "so"},
      {.names = "--tags",
       .placeholder = "FILE.png",
       .help =
           "Write the tag plane of --device dual: pale gray = graphics, text and paper (tag 1), red = images (tag 3), "
           "yellow = cells of opaque text over images (tag 0); .pgm files hold the tags themselves",
       .value = Text{&options.tags},
       .group = device,
       .fileTypes = "png|pgm"},
      {.names = "--overlay",
       .placeholder = "FILE.png",
       .help = "Write the page with its image areas tinted red (--device dual)",
       .value = Text{&options.overlay},
       .group = device,
       .fileTypes = "png|ppm"},
  };
}

}  // namespace

Command PrintCommand(const PrintParts& parts) {
  auto arguments = std::make_shared<PrintArguments>();
  return {.name = "print",
          .summary = "Print pictures, text and figure files to pictures of pages",
          .footer = kFooter,
          .options = PrintOptionList(arguments.get()),
          .run = [arguments, parts] { Run(*arguments, parts); }};
}

}  // namespace qnv::tool
