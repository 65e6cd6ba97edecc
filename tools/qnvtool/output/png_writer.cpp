// Writes PNG files without libpng, which compresses on one core only and so took nine tenths of the time of printing a
// page.
#include "qnvtool/output/png_writer.h"

#include <zlib.h>

#include <cmath>
#include <optional>
#include <vector>

#include "qnvtool/base/output_file.h"
#include "qnvtool/output/row_deflate.h"

namespace qnv::tool {
namespace {

using Buffer = std::vector<uint8_t>;

void AppendBig32(Buffer& buffer, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) buffer.push_back(static_cast<uint8_t>(value >> shift));
}

class PngWriter final : public PictureWriter {
 public:
  PngWriter(const std::string& path, const PictureForm& form) : file_(path), form_(form) {
    WriteHeader();
    data_.emplace([this](const Buffer& piece) { WriteChunk("IDAT", piece); });
  }

  void Write(const EncodedRows& rows) override { data_->Write(rows); }

  void Finish() override {
    data_->Finish();
    WriteChunk("IEND", {});
    file_.Close();
  }

 private:
  // A chunk: length, type, data, checksum.
  void WriteChunk(const char (&type)[5], const Buffer& data) {
    Buffer chunk;
    chunk.reserve(data.size() + 12);
    AppendBig32(chunk, static_cast<uint32_t>(data.size()));
    chunk.insert(chunk.end(), type, type + 4);
    chunk.insert(chunk.end(), data.begin(), data.end());
    AppendBig32(chunk, static_cast<uint32_t>(crc32(0, chunk.data() + 4, static_cast<uInt>(data.size() + 4))));
    file_.Write(chunk.data(), chunk.size());
  }

  void WriteHeader() {
    constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    file_.Write(kSignature, sizeof kSignature);
    constexpr uint8_t kGray = 0, kColor = 2, kPalette = 3;
    const bool tags = form_.pixels == PictureForm::Pixels::kTags;
    Buffer header;
    AppendBig32(header, static_cast<uint32_t>(form_.width));
    AppendBig32(header, static_cast<uint32_t>(form_.height));
    // Bits of a component, kind of pixels, deflate, filters by row, rows in order.
    header.insert(header.end(), {8,
                                 form_.pixels == PictureForm::Pixels::kColor ? kColor
                                 : tags                                      ? kPalette
                                                                             : kGray,
                                 0, 0, 0});
    WriteChunk("IHDR", header);
    if (tags) WritePalette();
    const auto perMetre = static_cast<uint32_t>(std::lround(form_.dpi / 0.0254));
    Buffer density;
    AppendBig32(density, perMetre);
    AppendBig32(density, perMetre);
    density.push_back(1);  // the unit is the metre
    WriteChunk("pHYs", density);
  }

  // Index = tag value. Values that no device writes are black.
  void WritePalette() {
    Buffer palette(std::size_t{256} * 3, 0);
    const auto set = [&](std::size_t index, uint32_t rgb) {
      for (std::size_t i = 0; i < 3; ++i) palette[index * 3 + i] = static_cast<uint8_t>(rgb >> (16 - 8 * i));
    };
    set(0, kTagTextCell);
    set(1, kTagGraphics);
    set(3, kTagImage);
    WriteChunk("PLTE", palette);
  }

  OutputFile file_;
  const PictureForm form_;
  std::optional<ZlibStream> data_;
};

}  // namespace

std::unique_ptr<PictureWriter> CreatePngFile(const std::string& path, const PictureForm& form) {
  return std::make_unique<PngWriter>(path, form);
}

void WritePngFile(const std::string& path, const PictureForm& form, const uint8_t* first, std::size_t stride) {
  Workers workers(CoreCount());
  WritePicture(workers, *CreateDeflateEncoder(form), first, stride, *CreatePngFile(path, form));
}

}  // namespace qnv::tool
