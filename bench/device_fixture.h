// A device whose band lies in the shared memory, with the records that a host prepares once and passes to many calls.
#pragma once

#include <memory>

#include "bench_memory.h"
#include "bench_table.h"
#include "library.h"

namespace qnv::bench {

// Logical text and background color of all rows.
inline constexpr uint32_t kInk = 0x00A03C14;
inline constexpr uint32_t kPaper = 0x00DCE6F0;

class DeviceFixture {
 public:
  // `wideHatch` makes the device one of 720 dots per inch, whose brushes have cells of two by two pixels.
  DeviceFixture(const Library& library, Memory& memory, Band band, Shape shape, bool wideHatch = false);
  DeviceFixture(const Library& library, Memory& memory, Band band, int width, int height, bool wideHatch);
  ~DeviceFixture();
  DeviceFixture(const DeviceFixture&) = delete;
  DeviceFixture& operator=(const DeviceFixture&) = delete;

  const Library& library() const { return library_; }
  DeviceHandle* handle() const { return handle_; }
  Memory& memory() const { return memory_; }
  int bytesPerPixel() const { return BytesPerPixel(band_); }
  std::size_t stride() const { return stride_; }

  // Page coordinates for one pixel of the band: 2 on a scaled device, else 1.
  int pageScale() const { return IsScaled(band_) ? 2 : 1; }

  // Restores the first content of the planes.
  void Rewind() const;
  uint64_t PictureHash() const;  // of both planes
  void MoveBand(int top) const;  // page coordinates of the band's resolution
  void Clear() const;

  BandRect clip = {};  // everything; page coordinates
  DRAWMODE mode = {};  // copy pen, opaque, dark text on a light ground
  PhysicalBrush brush = {};
  void MakeBrush(Brush kind);

 private:
  void Enable(int width, int height, bool wideHatch);
  void MarkTags() const;
  std::size_t TagSize() const;

  const Library& library_;
  Memory& memory_;
  Band band_;
  int width_ = 0;
  int height_ = 0;
  std::size_t stride_ = 0;
  DeviceHandle* handle_ = nullptr;
};

// The rectangle of a shape in the page coordinates of a device.
struct PageRect {
  int x, y, width, height;
};
PageRect RectOnPage(const DeviceFixture& device, Shape shape);

// A job that owns its device, rewinds the band, and repeats a call.
template <class Call>
class DeviceJob final : public Job {
 public:
  // Takes over the device.
  DeviceJob(std::unique_ptr<DeviceFixture> device, Call call) : device_(std::move(device)), call_(std::move(call)) {}
  void Run(int times) override {
    for (int i = 0; i < times; ++i) call_(*device_, i);
  }
  void Rewind() override { device_->Rewind(); }
  uint64_t PictureHash() const override { return device_->PictureHash(); }

 private:
  std::unique_ptr<DeviceFixture> device_;
  Call call_;
};

template <class Call>
std::unique_ptr<Job> MakeDeviceJob(std::unique_ptr<DeviceFixture> device, Call call) {
  return std::make_unique<DeviceJob<Call>>(std::move(device), std::move(call));
}

}  // namespace qnv::bench
