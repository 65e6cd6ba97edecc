// Fuzz target: BMP files of any content, read by the page printer in windows and painted by the library.
#include "qnvdrv10.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/picture_file.h"

namespace {

// Paints a window unscaled onto a small gray band.
void Paint(const qnv::tool::DibWindow& window) {
  constexpr int32_t kSide = 40;
  uint8_t band[kSide * kSide];
  const DeviceDescription description{QNV_KIND_RASTER, 8, 100, kSide, kSide, 100};
  const BandRect rect{0, 0, kSide, kSide};
  DeviceHandle* const device = QNVEnable(&description, &rect, band, nullptr);
  QNVStretchDIBits(device, 0, 0, 0, kSide, kSide, 0, 0, 32767, window.rows, window.bits, window.info, nullptr, SRCCOPY,
                   nullptr, nullptr, &rect);
  QNVDisable(device);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace qnv::tool;
  try {
    const Input file = InputOf(Bytes(data, data + size), "fuzz");
    const auto pages = OpenPictures(file, {}, [](const std::string&) {});
    const PicturePtr picture = pages->Open(0);
    // Larger ones only take longer.
    if (int64_t{picture->width()} * picture->height() > 1'000'000) return 0;
    const auto rows = picture->Rows();
    const int height = picture->height();
    for (const int count : {1, 7, height}) {
      if (count > height) continue;
      for (const int top : {0, (height - count) / 2, height - count}) Paint(rows->Window(top, count));
    }
  } catch (const ToolError&) {
    // The files that are refused.
  }
  return 0;
}
