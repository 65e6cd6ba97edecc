// `qnvtool render`: replays a file and puts the bands of a device together to the picture of its page.
#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "calls/player.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"
#include "qnvtool/calls/plane_picture.h"
#include "qnvtool/output/row_encoder.h"

namespace qnv::tool {
namespace {

struct RenderArguments {
  std::string file, out, tags, library;
  int device = 1, page = 1;
};

constexpr int64_t kMaxPixels = int64_t{1} << 30;

// One of the pages of a device, as far as bands covered it. A band that does not lie below the one before it begins a
// new page.
struct RenderedPage {
  int64_t left = 0, top = 0, width = 0, height = 0;
  uint32_t pixelBytes = 0;
  std::vector<uint8_t> pixels, tags;
  int wanted = 1, current = 0;
  int64_t lastTop = 0;
  bool begun = false, ended = false;

  void Add(const calls::PlayedDevice& device) {
    const PlaneSize size = SizeOf(device);
    if (ended || size.width == 0 || size.height == 0 || device.band.empty()) return;
    const BandRect& rect = device.shape.rect;
    if (current == 0 || rect.top <= lastTop) ++current;
    lastTop = rect.top;
    ended = current > wanted;
    if (current != wanted) return;
    if (!begun) {
      left = rect.left;
      top = rect.top;
      width = size.width;
      pixelBytes = device.shape.PixelBytes();
      begun = true;
    }
    const int64_t first = int64_t{rect.top} - top, end = first + size.height;
    if (first < 0 || end * width > kMaxPixels || rect.left != left || size.width != width) {
      throw ToolError(ExitCode::kBadInput, fmt::format("the band at ({}, {}) does not fit the page that the first band "
                                                       "begins; choose another device",
                                                       int32_t{rect.left}, int32_t{rect.top}));
    }
    height = std::max(height, end);
    const auto rowBytes = static_cast<std::size_t>(width) * pixelBytes;
    pixels.resize(static_cast<std::size_t>(height) * rowBytes, 0xFF);
    for (int64_t row = 0; row < size.height; ++row) {
      std::memcpy(pixels.data() + static_cast<std::size_t>(first + row) * rowBytes,
                  device.band.data() + static_cast<std::size_t>(row) * device.shape.Stride(), rowBytes);
    }
    if (device.tags.empty() || !device.shape.dualPlane) return;
    tags.resize(static_cast<std::size_t>(height * width), QNV_TAG_GRAPHICS);
    for (int64_t row = 0; row < size.height; ++row) {
      std::memcpy(tags.data() + static_cast<std::size_t>((first + row) * width),
                  device.tags.data() + static_cast<std::size_t>(row) * device.shape.TagStride(),
                  static_cast<std::size_t>(width));
    }
  }
};

void Render(const RenderArguments& a, const CallParts& parts) {
  const calls::CallFile file = ReadCallFile(a.file);
  const auto wanted = static_cast<uint32_t>(a.device);
  if (wanted > file.DeviceCount()) {
    throw ToolError(ExitCode::kUsage, fmt::format("{} has {} devices", a.file, file.DeviceCount()));
  }
  const CalledLibrary library = OpenCalledLibrary(a.library, parts);
  calls::Player player(file, library.functions);
  RenderedPage page;
  page.wanted = a.page;
  PictureForm form;
  bool painted = false;
  const auto endBand = [&](const calls::StoredCall& call) {
    const calls::PlayedDevice* const device = player.Device(wanted);
    if (call.Device() != wanted || device == nullptr || !painted) return;
    form = FormOf(*device, false, {});
    page.Add(*device);
    painted = false;
  };
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t, const calls::StoredCall& call, const calls::Slots& slots) {
    const uint16_t code = slots.Low16(1);
    if (call.function == calls::Function::kDisable ||
        (call.function == calls::Function::kControl && (code == QNV_SET_BAND_RECT || code == QNV_CLEAR_BAND))) {
      endBand(call);
    }
    return !page.ended;
  };
  watcher.after = [&](const calls::Player::MadeCall& made) {
    // A cleared band counts as one too: pages have empty bands.
    const bool cleared = made.stored.function == calls::Function::kControl && made.slots.Low16(1) == QNV_CLEAR_BAND;
    if (made.stored.Device() == wanted && (cleared || calls::EntryPointOf(made.stored.function).draws)) painted = true;
    return true;
  };
  Completed(player.Play({.compare = false}, watcher), a.file);
  if (painted) {
    // A host that ended without freeing its device.
    calls::StoredCall last;
    last.function = calls::Function::kDisable;
    last.arguments[0].number = wanted + 1;
    endBand(last);
  }
  if (!page.begun)
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: device {} painted no page {}", a.file, wanted, a.page));
  form.width = static_cast<int>(page.width);
  form.height = static_cast<int>(page.height);
  const auto write = [&](const std::string& path, const std::vector<uint8_t>& plane, std::size_t rowBytes) {
    if (FormatOf(path, "") == PictureFormat::kPng) {
      parts.writePng(path, form, plane.data(), rowBytes);
    } else {
      WritePnmFile(path, form, plane.data(), rowBytes);
    }
  };
  write(a.out, page.pixels, static_cast<std::size_t>(page.width) * page.pixelBytes);
  if (a.tags.empty()) return;
  if (page.tags.empty()) throw ToolError(ExitCode::kUsage, fmt::format("device {} has no tag plane", wanted));
  form.pixels = PictureForm::Pixels::kTags;
  write(a.tags, page.tags, static_cast<std::size_t>(page.width));
}

}  // namespace

Command RenderCommand(const CallParts& parts) {
  auto arguments = std::make_shared<RenderArguments>();
  RenderArguments& a = *arguments;
  Command command{.name = "render", .summary = "Paint the page of a call file as a picture", .options = {}, .run = {}};
  command.options = {
      CallFileArgument(&a.file),
      {.names = "-o,--out",
       .placeholder = "FILE",
       .help = "Picture of the page: .png, .ppm or .pgm",
       .value = Text{&a.out},
       .required = true,
       .fileTypes = "png|ppm|pgm"},
      {.names = "--tags",
       .placeholder = "FILE",
       .help = "Picture of the tag plane",
       .value = Text{&a.tags},
       .fileTypes = "png|pgm"},
      {.names = "--device",
       .placeholder = "N",
       .help = "Device, in the order in which they were made (default 1)",
       .value = WholeNumber{&a.device, 1, 1000000000}},
      {.names = "--page",
       .placeholder = "N",
       .help = "Page, where the bands of several follow one another (default 1)",
       .value = WholeNumber{&a.page, 1, 1000000}},
      LibraryOption(&a.library),
  };
  command.run = [arguments, parts] { Render(*arguments, parts); };
  return command;
}

}  // namespace qnv::tool
