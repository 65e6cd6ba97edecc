// The options of `qnvtool make-picture`.
#include "qnvtool/cli/cmd_make_picture.h"

#include <memory>
#include <string>

#include "qnvtool/cli/sample_pictures.h"
#include "qnvtool/output/bmp_writer.h"

namespace qnv::tool {
namespace {

struct PictureArguments {
  std::string kind;
  std::string out;
  int width = 900;
  int height = 600;
};

}  // namespace

Command MakePictureCommand() {
  auto arguments = std::make_shared<PictureArguments>();
  Command command{.name = "make-picture", .summary = "Make a sample picture as a BMP file", .options = {}, .run = {}};
  command.options = {
      {.names = "kind",
       .placeholder = "KIND",
       .help = "photo (24 bits: a lake at sunset) or map (RLE8: a relief map)",
       .value = OneOf{&arguments->kind, {"photo", "map"}},
       .required = true},
      {.names = "out",
       .placeholder = "OUT.bmp",
       .help = "File to write",
       .value = Text{&arguments->out},
       .required = true,
       .fileTypes = "bmp"},
      {.names = "--width",
       .placeholder = "N",
       .help = "Pixels, 1 to 8000 (default 900)",
       .value = WholeNumber{&arguments->width, 1, 8000}},
      {.names = "--height",
       .placeholder = "N",
       .help = "Pixels, 1 to 8000 (default 600)",
       .value = WholeNumber{&arguments->height, 1, 8000}},
  };
  command.run = [arguments] {
    const auto make = arguments->kind == "photo" ? MakeSamplePhoto : MakeSampleMap;
    WriteFile(arguments->out, make(arguments->width, arguments->height));
  };
  return command;
}

}  // namespace qnv::tool
