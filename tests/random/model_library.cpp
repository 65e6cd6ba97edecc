// Keeps a model for each device. The model has planes of its own: they follow the memory of the host before a call, and
// the memory follows them afterwards.
#include "random/model_library.h"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "reference/model.h"

namespace qnv::test {
namespace {

struct ModelDevice {
  std::unique_ptr<reference::Model> model;
  uint8_t* band;
  uint8_t* tags;
};

std::map<const DeviceHandle*, ModelDevice>& Devices() {
  static std::map<const DeviceHandle*, ModelDevice> devices;
  return devices;
}

// The contents of a plane, as many bytes as the description promises; none for null.
std::vector<uint8_t> Contents(const uint8_t* plane, std::size_t bytes) {
  return plane == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(plane, plane + bytes);
}

// Makes a call on the model of a device. A bad handle gives 0, which is the half of the result that counts.
template <class Call>
auto OnDevice(const DeviceHandle* handle, const Call& call) -> decltype(call(*Devices()[handle].model)) {
  const auto found = Devices().find(handle);
  if (found == Devices().end()) return 0;
  ModelDevice& device = found->second;
  reference::Model& model = *device.model;
  const auto sizeOf = [](const reference::Plane* plane) { return plane == nullptr ? 0 : plane->bytes().size(); };
  const std::size_t bandBytes = sizeOf(&model.band()), tagBytes = sizeOf(model.tags());
  const std::vector<uint8_t> band = Contents(device.band, bandBytes), tags = Contents(device.tags, tagBytes);
  if (band != model.band().bytes() || (tagBytes != 0 && tags != model.tags()->bytes())) model.SetContents(band, tags);
  const auto result = call(model);
  std::copy_n(model.band().bytes().begin(), bandBytes, device.band);
  if (tagBytes != 0) std::copy_n(model.tags()->bytes().begin(), tagBytes, device.tags);
  return result;
}

DeviceHandle* Enable(const DeviceDescription* description, const BandRect* bandRect, void* buffer, void* secondBuffer) {
  auto* const band = static_cast<uint8_t*>(buffer);
  auto* const tags = static_cast<uint8_t*>(secondBuffer);
  // What the planes hold is read before each call. Here even their memory may be missing, if the device is refused.
  std::vector<uint8_t> bandContents, tagContents;
  if (description != nullptr && bandRect != nullptr) {
    const uint32_t bytes = description->kind == QNV_KIND_SCALED || description->bitsPerPixel == 24 ? 3 : 1;
    bandContents.resize(std::size_t{(description->width * bytes + 3) & ~3u} * description->height);
    tagContents.resize(std::size_t{(description->width + 3) & ~3u} * description->height);
  }
  std::unique_ptr<reference::Model> model = reference::MakeModel(
      description, bandRect, band == nullptr ? nullptr : &bandContents, tags == nullptr ? nullptr : &tagContents);
  if (model == nullptr) return nullptr;
  auto* const handle = reinterpret_cast<DeviceHandle*>(model.get());
  Devices()[handle] = {std::move(model), band, tags};
  return handle;
}

void Disable(DeviceHandle* handle) { Devices().erase(handle); }

uint32_t GetDeviceInfo(const DeviceDescription* description, DeviceSize* result) {
  return reference::GetDeviceInfo(description, result);
}

uint32_t Control(DeviceHandle* handle, uint32_t code, const void* data, void*) {
  return OnDevice(handle, [&](reference::Model& model) { return model.Control(code, data); });
}

uint32_t ColorInfo(DeviceHandle* handle, uint32_t color, uint32_t* result) {
  return OnDevice(handle, [&](reference::Model& model) {
    const uint32_t physical = model.ColorInfo(color);
    if (result != nullptr) *result = physical;
    return physical;
  });
}

uint32_t RealizeObject(DeviceHandle* handle, uint32_t kind, const void* input, void* output, const void*) {
  return OnDevice(handle, [&](reference::Model& model) { return model.RealizeObject(kind, input, output); });
}

uint32_t Pixel(DeviceHandle* handle, int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode,
               const BandRect* clip) {
  return OnDevice(handle, [&](reference::Model& model) { return model.Pixel(x, y, color, drawMode, clip); });
}

uint32_t PolyPixel(DeviceHandle* handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color,
                   const DRAWMODE* drawMode, const BandRect* clip) {
  return OnDevice(handle,
                  [&](reference::Model& model) { return model.PolyPixel(x1, y1, x2, y2, color, drawMode, clip); });
}

uint32_t BitBlt(DeviceHandle* handle, int32_t destX, int32_t destY, const SourceBitmap* source, int32_t srcX,
                int32_t srcY, int32_t width, int32_t height, uint32_t rop, const PhysicalBrush* brush,
                const DRAWMODE* drawMode, const BandRect* clip) {
  return OnDevice(handle, [&](reference::Model& model) {
    return model.BitBlt({destX, destY, source, srcX, srcY, width, height, rop, brush, drawMode, clip});
  });
}

uint32_t Output(DeviceHandle* handle, uint32_t style, uint32_t count, const int16_t* points, const PhysicalPen* pen,
                const PhysicalBrush* brush, const DRAWMODE* drawMode, const BandRect* clip) {
  return OnDevice(handle, [&](reference::Model& model) {
    return model.Output({style, count, points, pen, brush, drawMode, clip});
  });
}

int32_t ExtTextOut(DeviceHandle* handle, int32_t x, int32_t y, const BandRect* clip, const void* string, int32_t count,
                   const void* fontBase, uint32_t fontOffset, DRAWMODE* drawMode, const void*,
                   const int16_t* charWidths, const BandRect* opaqueRect, uint32_t options) {
  return OnDevice(handle, [&](reference::Model& model) {
    return model.ExtTextOut(
        {x, y, clip, string, count, fontBase, fontOffset, drawMode, charWidths, opaqueRect, options});
  });
}

uint32_t StretchDIBits(DeviceHandle* handle, uint32_t get, int32_t dstX, int32_t dstY, int32_t dstWidth,
                       int32_t dstHeight, int32_t srcX, int32_t srcY, int32_t srcWidth, int32_t srcHeight,
                       const void* bits, const void* bitmapInfo, const void*, uint32_t rop, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode, const BandRect* clip) {
  return OnDevice(handle, [&](reference::Model& model) {
    return model.StretchDIBits({get, dstX, dstY, dstWidth, dstHeight, srcX, srcY, srcWidth, srcHeight, bits, bitmapInfo,
                                rop, brush, drawMode, clip});
  });
}

uint32_t SetDIBitsToDevice(DeviceHandle* handle, int32_t x, int32_t y, uint32_t startScan, uint32_t numScans,
                           const BandRect* clip, const DRAWMODE* drawMode, const void* bits, const void* bitmapInfo,
                           const void*) {
  return OnDevice(handle, [&](reference::Model& model) {
    return model.SetDIBitsToDevice(x, y, startScan, numScans, clip, drawMode, bits, bitmapInfo);
  });
}

}  // namespace

calls::Functions ModelFunctions() {
  return {Enable,    Disable, GetDeviceInfo, Control,    ColorInfo,     RealizeObject,    Pixel,
          PolyPixel, BitBlt,  Output,        ExtTextOut, StretchDIBits, SetDIBitsToDevice};
}

bool IsBeyondModel(const DeviceDescription& description, bool tagPlane) {
  return tagPlane && description.kind == QNV_KIND_RASTER && description.bitsPerPixel != 24;
}

}  // namespace qnv::test
