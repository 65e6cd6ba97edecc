// What the fuzz targets share: numbers from the input, host memory of exact size, and a device to paint on. Every block
// of memory is allocated by itself, so that the address sanitizer notices accesses behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "qnvdrv10.h"

namespace qnv::fuzz {

// Reads numbers from the input; zeros after its end.
class Input {
 public:
  Input(const uint8_t* data, std::size_t size) : at_(data), left_(size) {}

  bool empty() const { return left_ == 0; }
  uint8_t Byte() {
    if (left_ == 0) return 0;
    --left_;
    return *at_++;
  }
  uint16_t Word() { return static_cast<uint16_t>(Byte() | Byte() << 8); }
  uint32_t Long() {
    const uint32_t low = Word();
    return low | static_cast<uint32_t>(Word()) << 16;
  }
  // Usually near the band, sometimes any number.
  int32_t Coordinate() {
    const uint8_t kind = Byte();
    if (kind == 0xFF) return static_cast<int32_t>(Long());
    if (kind == 0xFE) return static_cast<int16_t>(Word());
    return static_cast<int32_t>(kind) - 64;
  }
  BandRect Rect() {
    BandRect rect;
    rect.left = Coordinate();
    rect.top = Coordinate();
    rect.right = Coordinate();
    rect.bottom = Coordinate();
    return rect;
  }
  std::vector<uint8_t> Bytes(std::size_t count) {
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) byte = Byte();
    return bytes;
  }
  std::vector<uint8_t> Rest() { return Bytes(left_); }

 private:
  const uint8_t* at_;
  std::size_t left_;
};

// Host memory that holds exactly these bytes, at least one.
class Block {
 public:
  explicit Block(const std::vector<uint8_t>& bytes)
      : memory_(std::make_unique<uint8_t[]>(bytes.empty() ? 1 : bytes.size())) {
    if (!bytes.empty()) std::memcpy(memory_.get(), bytes.data(), bytes.size());
  }
  uint8_t* data() const { return memory_.get(); }

 private:
  std::unique_ptr<uint8_t[]> memory_;
};

// A small band of any device class, chosen by the first bytes of the input.
class FuzzDevice {
 public:
  explicit FuzzDevice(Input& input);
  ~FuzzDevice();
  FuzzDevice(const FuzzDevice&) = delete;
  FuzzDevice& operator=(const FuzzDevice&) = delete;
  DeviceHandle* handle() const { return handle_; }

 private:
  std::unique_ptr<Block> band_;
  std::unique_ptr<Block> tags_;
  DeviceHandle* handle_ = nullptr;
};

// Records made from the input.
DRAWMODE TakeDrawMode(Input& input);
PhysicalBrush TakeBrush(Input& input);

// Each makes one call with arguments from the input. Records and lists are as large as the host must provide them.
void CallOutput(Input& input, DeviceHandle* handle);
void CallText(Input& input, DeviceHandle* handle);
void CallImage(Input& input, DeviceHandle* handle);
void CallTransfer(Input& input, DeviceHandle* handle);

// A span list as long as style and count say. Lengths of records are small and not negative.
std::vector<uint8_t> TakeSpanList(Input& input, uint16_t style, uint16_t count);

// Run-length codes, followed by as many zeros as the library may read for a bitmap of `rows` rows.
std::vector<uint8_t> TerminatedCodes(std::vector<uint8_t> codes, uint32_t rows);

}  // namespace qnv::fuzz
