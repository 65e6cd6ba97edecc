// What every fuzz target starts from: numbers taken off the input, host memory of exact size, a device to paint on.
// Memory comes from the heap block by block, so that the address sanitizer fences each of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "qnvdrv10.h"

namespace qnv::fuzz {

class Input {
 public:
  Input(const uint8_t* data, std::size_t size) : at_(data), left_(size) {}

  bool empty() const { return left_ == 0; }
  // Zeros once the input is used up.
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
  // Mostly near the band, now and then anything.
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

// Host memory of exactly these bytes; at least one, so that there is an address.
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

DRAWMODE TakeDrawMode(Input& input);
PhysicalBrush TakeBrush(Input& input);

// One call each; the records and lists behind the arguments keep what the host has to keep.
void CallOutput(Input& input, DeviceHandle* handle);
void CallText(Input& input, DeviceHandle* handle);
void CallImage(Input& input, DeviceHandle* handle);
void CallTransfer(Input& input, DeviceHandle* handle);

// A list as long as style and count say: record lengths are small and never negative.
std::vector<uint8_t> TakeSpanList(Input& input, uint16_t style, uint16_t count);

// Run-length codes, followed by as many ends of line as a decoder of `rows` rows can ask for.
std::vector<uint8_t> TerminatedCodes(std::vector<uint8_t> codes, uint32_t rows);

}  // namespace qnv::fuzz
