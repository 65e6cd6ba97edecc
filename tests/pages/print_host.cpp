// The page printer for systems that have none of the libraries qnvtool needs: its own font, PPM and PGM files, and no
// rasteriser but the one it loads. Prints on Windows what it prints natively, so that the pages can be compared.
#include "qnvtool/cli/cmd_make_picture.h"
#include "qnvtool/cli/cmd_print.h"
#include "qnvtool/output/bmp_writer.h"
#include "tools/bmp_file.h"
#include "tools/synthetic_font.h"

namespace qnv::test {
namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 40;

BmpFile Noise(uint16_t bits, int32_t height = kHeight, std::vector<uint32_t> masks = {}) {
  BmpFile file = NoiseBmp(bits, kWidth, height, masks.empty() ? BI_RGB : BI_BITFIELDS);
  file.masks = std::move(masks);
  return file;
}

// Well-formed run-length codes: runs and absolute stretches in turn, now and then a jump into the next row.
BmpFile Runs(uint16_t bits) {
  BmpFile file = NoiseBmp(bits, kWidth, kHeight, bits == 4 ? BI_RLE4 : BI_RLE8);
  const std::vector<uint8_t> noise = std::move(file.pixels);
  auto& codes = file.pixels;
  codes.clear();
  const auto append = [&](std::initializer_list<int> bytes) {
    for (const int byte : bytes) codes.push_back(static_cast<uint8_t>(byte));
  };
  std::size_t next = 0;
  const auto pixels = [&] { return int{noise[next++ % noise.size()]}; };
  for (int row = 0; row < kHeight; ++row) {
    int x = 0;
    for (; x + 18 <= kWidth; x += 13) {
      append({7, pixels(), 0, 6, pixels(), pixels(), pixels()});
      if (bits == 4) append({0});  // six pixels and a byte that fills up
      if (bits == 8) append({pixels(), pixels(), pixels()});
    }
    if (row % 5 == 3) {
      append({0, 2, 4, 1});
      x += 4;
      ++row;
    }
    append({kWidth - x, pixels(), 0, 0});
  }
  append({0, 1});
  return file;
}

// Images of every kind that a BMP file can hold, into a folder that exists. Throws ToolError (cannot write).
void WriteSampleBmps(const std::string& folder) {
  const auto write = [&](const std::string& name, const BmpFile& file) {
    tool::WriteFile(folder + "/" + name, file.Bytes());
  };
  for (const uint16_t bits : std::initializer_list<uint16_t>{1, 4, 8, 16, 24, 32})
    write(std::to_string(bits) + ".bmp", Noise(bits));
  write("16-fields.bmp", Noise(16, kHeight, {0xF800, 0x07E0, 0x001F}));
  write("32-fields.bmp", Noise(32, kHeight, {0x000000FF, 0x0003FC00, 0xFF000000}));
  write("24-top-down.bmp", Noise(24, -kHeight));
  write("rle4.bmp", Runs(4));
  write("rle8.bmp", Runs(8));
}

tool::FontShelf OpenFonts(const tool::PrintOptions&, int dpi, tool::NoteSink) { return SyntheticShelf(dpi); }

}  // namespace
}  // namespace qnv::test

int main(int argc, char** argv) {
  std::string folder;
  const qnv::tool::Command samples{.name = "make-samples",
                                   .summary = "Make images of every depth and kind",
                                   .options = {{.names = "folder",
                                                .placeholder = "FOLDER",
                                                .help = "Where the BMP files go",
                                                .value = qnv::tool::Text{&folder},
                                                .required = true}},
                                   .run = [&] { qnv::test::WriteSampleBmps(folder); }};
  const qnv::tool::Program program{.name = "print_host",
                                   .summary = "prints as qnvtool does, through the library that it is given",
                                   .version = "",
                                   .commands = {qnv::tool::PrintCommand({qnv::test::OpenFonts, nullptr, nullptr}),
                                                qnv::tool::MakePictureCommand(), samples}};
  return qnv::tool::RunProgram(program, argc, argv);
}
