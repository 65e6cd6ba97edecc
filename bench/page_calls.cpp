// Reads the recorded page and puts its calls in place.
#include "page_calls.h"

namespace qnv::bench {
namespace {

constexpr const char* kPageFile = "qnvbench_page.qnv";

// The file has a device of each of three kinds, in this order.
uint32_t DeviceOf(Band band) { return band == Band::kGray8 ? 2 : IsDual(band) ? 3 : 1; }

bool IsOfKind(const calls::DeviceShape& shape, Band band) {
  const DeviceDescription& description = shape.description;
  return description.kind == QNV_KIND_RASTER && description.width == kPageWidth && description.height == kPageHeight &&
         description.bitsPerPixel == 8 * BytesPerPixel(band) && shape.dualPlane == IsDual(band);
}

}  // namespace

std::unique_ptr<PageCalls> PageCalls::Read(Band band, std::string& error) {
  std::unique_ptr<PageCalls> page(new PageCalls);
  const std::string path = ProgramFolder() + kPageFile;
  const calls::CallFile::Status status = calls::CallFile::ReadFrom(path, &page->file_);
  if (status.error != calls::FileError::kNone) {
    error = path + ": at byte " + std::to_string(status.offset) + ": " + status.message;
    return nullptr;
  }
  if (page->Place(band, error)) return page;
  error = path + ": " + error;
  return nullptr;
}

// The calls that make the device, its colors and brushes are left to the host that paints the page; records that they
// gave are in the file with the calls that name them.
bool PageCalls::Place(Band band, std::string& error) {
  const uint32_t number = DeviceOf(band);
  calls::DeviceShape shape;
  placer_ = std::make_unique<calls::CallPlacer>(file_);
  for (std::size_t i = 0; i < file_.CallCount(); ++i) {
    auto placed = std::make_unique<calls::PlacedCall>();
    placed->call = i;
    placed->item = &file_.CallItem(i);
    file_.DecodeCall(*placed->item, &placed->stored);
    const calls::StoredCall& stored = placed->stored;
    const bool makesDevice = stored.function == calls::Function::kEnable && stored.result == number;
    if (!makesDevice && stored.Device() != number) continue;
    if (!placer_->Place(shape, placed.get(), &error)) return false;
    calls::FollowShape(stored, placed->slots, &shape);
    if (makesDevice && !IsOfKind(shape, band)) {
      error = "device " + std::to_string(number) + " is of another kind";
      return false;
    }
    if (calls::EntryPointOf(stored.function).draws) placed_.push_back(std::move(placed));
  }
  if (placed_.empty()) error = "nothing is drawn on device " + std::to_string(number);
  return !placed_.empty();
}

void PageCalls::SetHandle(DeviceHandle* handle) {
  calls_.clear();
  for (const auto& placed : placed_) {
    placer_->SetHandle(placed.get(), handle);
    calls_.push_back({placed->stored.function, placed->slots});
  }
}

calls::Functions FunctionsOf(const Library& library) {
  return {library.Enable,        library.Disable,       library.GetDeviceInfo,    library.Control, library.ColorInfo,
          library.RealizeObject, library.Pixel,         library.PolyPixel,        library.BitBlt,  library.Output,
          library.ExtTextOut,    library.StretchDIBits, library.SetDIBitsToDevice};
}

}  // namespace qnv::bench
