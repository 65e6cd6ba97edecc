#include "cmd_make_picture.h"

#include <memory>
#include <string>

#include "bmp_writer.h"
#include "sample_pictures.h"

namespace qnv::tool {
namespace {

struct Arguments {
  std::string kind;
  std::string out;
  int width = 900;
  int height = 600;
};

}  // namespace

void AddMakePictureCommand(CLI::App& program) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App* const command = program.add_subcommand("make-picture", "Make a sample picture as a BMP file");
  command->add_option("kind", arguments->kind, "photo (24 bits: a lake at sunset) or map (RLE8: a relief map)")
      ->required()
      ->check(CLI::IsMember({"photo", "map"}).description(""))
      ->type_name("KIND");
  command->add_option("out", arguments->out, "File to write")->required()->type_name("OUT.bmp");
  command->add_option("--width", arguments->width, "Pixels (default 900)")
      ->type_name("N")
      ->check(CLI::Range(1, 8000).description(""));
  command->add_option("--height", arguments->height, "Pixels (default 600)")
      ->type_name("N")
      ->check(CLI::Range(1, 8000).description(""));
  command->callback([arguments] {
    const auto make = arguments->kind == "photo" ? MakeSamplePhoto : MakeSampleMap;
    WriteFile(arguments->out, make(arguments->width, arguments->height));
  });
}

}  // namespace qnv::tool
