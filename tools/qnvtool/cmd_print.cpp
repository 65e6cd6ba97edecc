#include "cmd_print.h"

#include <map>
#include <memory>

#include "figures.h"
#include "help_formatter.h"
#include "tool_error.h"

namespace qnv::tool {
namespace {

// What the command line holds before it is made sense of.
struct Arguments {
  PrintOptions options;
  std::string paper = "a4";
  std::string device = "color";
  std::string scale;
  int dpi = 0;
  bool fit = false;
  bool noHeader = false;
};

void Run(Arguments& arguments, const PrintParts& parts) {
  PrintOptions& options = arguments.options;
  options.paper = ParsePaper(arguments.paper);
  options.device = ParseDevice(arguments.device, arguments.dpi);
  if (!arguments.scale.empty()) options.scale = ParseScale(arguments.scale);
  options.header = !arguments.noHeader;
  Print(options, parts);
}

}  // namespace

void AddPrintCommand(CLI::App& program, const PrintParts& parts) {
  auto arguments = std::make_shared<Arguments>();
  PrintOptions& options = arguments->options;
  CLI::App* const command = program.add_subcommand("print", "Print BMP, text and figure files to pictures of pages");
  command->footer(std::string("Every file begins a new page. In text files an empty line ends a paragraph, '#',\n"
                              "'##' and '###' begin headings, '- ' begins a list item, and lines indented by four\n"
                              "spaces or a tab are set as they are, in the font for listings. Scripts that join\n"
                              "letters or run from right to left come out letter by letter.\n\n") +
                  kFigureFormatHelp + "\n" + kExitCodesHelp);
  command->add_option("files", options.files, "Files to print")->required()->type_name("FILE");
  command
      ->add_option("-o,--out", options.out,
                   "Picture of the first page; the others are OUT-2.png, OUT-3.png ... Names ending in .ppm or "
                   ".pgm give those formats, '-' writes PPM or PGM to standard output")
      ->required()
      ->type_name("OUT.png");

  const std::map<std::string, FileType> types{
      {"auto", FileType::kAuto}, {"bmp", FileType::kBmp}, {"text", FileType::kText}, {"fig", FileType::kFigures}};
  command->add_option("--type", options.type, "What the files are: auto (by name, then by content), bmp, text, fig")
      ->transform(CLI::Transformer(types).description(""))
      ->type_name("TYPE");

  const char* const page = "Page";
  command->add_option("--paper", arguments->paper, "a4, letter, or a size such as 100x150mm (default a4)")
      ->type_name("SIZE")
      ->group(page);
  command->add_option("--dpi", arguments->dpi, "Resolution that documents are laid out at (default 300)")
      ->type_name("N")
      ->check(CLI::Range(1, 100000).description(""))
      ->group(page);
  command->add_option("--margin", options.marginMm, "White on all sides (default 20)")
      ->type_name("MM")
      ->check(CLI::Range(0.0, 1000.0).description(""))
      ->group(page);
  command->add_flag("--no-header", arguments->noHeader, "No line with file name and page number")->group(page);
  CLI::Option* const fit =
      command->add_flag("--fit", arguments->fit, "Images as large as the page allows (default)")->group(page);
  command
      ->add_option("--scale", arguments->scale,
                   "Images at a factor of their own size (72 dpi where the file gives none), or 'pixels': one page "
                   "pixel for each image pixel")
      ->type_name("X")
      ->excludes(fit)
      ->group(page);

  const char* const text = "Text";
  command->add_option("--font", options.bodyFont, "Font file or fontconfig name of the text (default serif)")
      ->type_name("FONT")
      ->group(text);
  command->add_option("--heading-font", options.headingFont, "The same for headings and headers (default sans:bold)")
      ->type_name("FONT")
      ->group(text);
  command->add_option("--listing-font", options.listingFont, "The same for listings (default monospace)")
      ->type_name("FONT")
      ->group(text);
  command->add_option("--size", options.points, "Size of the text in points (default 11)")
      ->type_name("PT")
      ->check(CLI::Range(2.0, 200.0).description(""))
      ->group(text);
  command->add_flag("--verbatim", options.verbatim, "Keep all lines of text files as they are, as listings")
      ->group(text);

  const char* const device = "Device";
  command
      ->add_option("--device", arguments->device,
                   "color (24 bits), gray (8 bits), dual (colour with a plane of tags), or scaled:A/B, "
                   "scaled-gray:A/B: laid out at A dpi, printed at B dpi (default color)")
      ->type_name("DEVICE")
      ->group(device);
  command
      ->add_option("--band-rows", options.bandRows,
                   "Rows of a band, 0 for whole pages (default 256). The picture does not depend on it")
      ->type_name("N")
      ->check(CLI::Range(0, 1000000).description(""))
      ->group(device);
  command->add_option("--library", options.library, "Rasteriser to load instead of the linked one")
      ->type_name("FILE")
      ->group(device);
  command
      ->add_option(
          "--tags", options.tags,
          "Write the tag plane of --device dual: pale gray = graphics, text and paper (tag 1), red = "
          "images (tag 3), yellow = cells of opaque text over images (tag 0); .pgm files hold the tags themselves")
      ->type_name("FILE.png")
      ->group(device);
  command->add_option("--overlay", options.overlay, "Write the page with its image areas tinted red (--device dual)")
      ->type_name("FILE.png")
      ->group(device);
  command->add_flag("-q,--quiet", options.quiet, "No progress bar and no notes");
  command->callback([arguments, parts] { Run(*arguments, parts); });
}

}  // namespace qnv::tool
