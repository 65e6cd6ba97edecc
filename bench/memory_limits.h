// Measures the limits that the memory of this machine sets: the fastest of several loops that only store, copy, or read
// and change bytes, run on the buffers that the rows paint into.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "timer.h"

namespace qnv::bench {

enum class LimitKind {
  kNone,
  kStore,            // fills
  kCopy,             // source bytes go to the destination
  kReadModifyWrite,  // destination ^= constant
  kCombine,          // destination ^= source
};

const char* LimitName(LimitKind kind);

// One of the loops.
struct LimitLoop {
  const char* name;
  LimitKind kind;
  bool (*available)();
  void (*run)(uint8_t* destination, const uint8_t* source, std::size_t count);
};

const std::vector<LimitLoop>& LimitLoops();
const std::vector<LimitLoop>& Avx512LimitLoops();  // those of them with vectors of 64 bytes

// A rectangle of bytes in the band, and one of the same size in the source memory.
struct LimitSurface {
  uint8_t* destination;
  const uint8_t* source;
  std::size_t rowBytes;
  std::size_t stride;  // of both
  int rows;
};

std::unique_ptr<Job> MakeLimitJob(const LimitLoop& loop, const LimitSurface& surface);

struct Limit {
  const LimitLoop* loop = nullptr;
  double gigabytesPerSecond = 0;
};

// Measures all loops of a kind and returns the fastest.
Limit MeasureLimit(LimitKind kind, const LimitSurface& surface, const TimingPlan& plan);

}  // namespace qnv::bench
