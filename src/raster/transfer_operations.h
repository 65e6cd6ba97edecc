// The seventeen transfer operations: sixteen common raster codes by name, and the general one for the rest.
#pragma once

#include <cstdint>

#include "raster/rop3.h"

namespace qnv {

enum class TransferOperation : uint8_t {
  kBltGeneral,
  kBltBlackness,
  kBltWhiteness,
  kBltNotSrcErase,
  kBltNotSrcCopy,
  kBltSrcErase,
  kBltDstInvert,
  kBltSrcInvert,
  kBltSrcAnd,
  kBltMergePaint,
  kBltSrcCopy,
  kBltSrcPaint,
  kBltPatInvert,
  kBltPatCopy,
  kBltMergeCopy,
  kBltPatPaint,
  kBltDSPDxax,
};

// Each index is computed from the operation's own formula.
inline constexpr uint8_t kBlackness = IndexOf([](int, int, int) { return 0; });
inline constexpr uint8_t kWhiteness = IndexOf([](int, int, int) { return ~0; });
inline constexpr uint8_t kNotSrcErase = IndexOf([](int d, int s, int) { return ~(s | d); });
inline constexpr uint8_t kNotSrcCopy = IndexOf([](int, int s, int) { return ~s; });
inline constexpr uint8_t kSrcErase = IndexOf([](int d, int s, int) { return s & ~d; });
inline constexpr uint8_t kDstInvert = IndexOf([](int d, int, int) { return ~d; });
inline constexpr uint8_t kSrcInvert = IndexOf([](int d, int s, int) { return s ^ d; });
inline constexpr uint8_t kSrcAnd = IndexOf([](int d, int s, int) { return s & d; });
inline constexpr uint8_t kDestination = IndexOf([](int d, int, int) { return d; });
inline constexpr uint8_t kMergePaint = IndexOf([](int d, int s, int) { return ~s | d; });
inline constexpr uint8_t kSrcCopy = IndexOf([](int, int s, int) { return s; });
inline constexpr uint8_t kSrcPaint = IndexOf([](int d, int s, int) { return s | d; });
inline constexpr uint8_t kPatInvert = IndexOf([](int d, int, int p) { return p ^ d; });
inline constexpr uint8_t kPatCopy = IndexOf([](int, int, int p) { return p; });
inline constexpr uint8_t kMergeCopy = IndexOf([](int, int s, int p) { return p & s; });
inline constexpr uint8_t kPatPaint = IndexOf([](int d, int s, int p) { return p | ~s | d; });
inline constexpr uint8_t kDSPDxax = IndexOf([](int d, int s, int p) { return ((p ^ d) & s) ^ d; });

static_assert(kBlackness == 0x00 && kNotSrcErase == 0x11 && kNotSrcCopy == 0x33 && kSrcErase == 0x44);
static_assert(kDstInvert == 0x55 && kPatInvert == 0x5A && kSrcInvert == 0x66 && kSrcAnd == 0x88);
static_assert(kDestination == 0xAA && kMergePaint == 0xBB && kMergeCopy == 0xC0 && kSrcCopy == 0xCC);
static_assert(kDSPDxax == 0xE2 && kSrcPaint == 0xEE && kPatCopy == 0xF0 && kPatPaint == 0xFB && kWhiteness == 0xFF);

// The operation of the upper half of a raster code. All 16 bits are compared: a code with anything in bits
// 24..31 is always the general one's.
constexpr TransferOperation OperationOf(uint32_t upperHalf) {
  switch (upperHalf) {
    case kBlackness: return TransferOperation::kBltBlackness;
    case kWhiteness: return TransferOperation::kBltWhiteness;
    case kNotSrcErase: return TransferOperation::kBltNotSrcErase;
    case kNotSrcCopy: return TransferOperation::kBltNotSrcCopy;
    case kSrcErase: return TransferOperation::kBltSrcErase;
    case kDstInvert: return TransferOperation::kBltDstInvert;
    case kSrcInvert: return TransferOperation::kBltSrcInvert;
    case kSrcAnd: return TransferOperation::kBltSrcAnd;
    case kMergePaint: return TransferOperation::kBltMergePaint;
    case kSrcCopy: return TransferOperation::kBltSrcCopy;
    case kSrcPaint: return TransferOperation::kBltSrcPaint;
    case kPatInvert: return TransferOperation::kBltPatInvert;
    case kPatCopy: return TransferOperation::kBltPatCopy;
    case kMergeCopy: return TransferOperation::kBltMergeCopy;
    case kPatPaint: return TransferOperation::kBltPatPaint;
    case kDSPDxax: return TransferOperation::kBltDSPDxax;
    default: return TransferOperation::kBltGeneral;
  }
}

// Operations that take a solid brush's colour straight from the brush. The other pattern operations read the
// prepared pattern even then, which shows when a null draw mode has kept an older one.
constexpr bool ReadsBrush(TransferOperation operation) {
  return operation == TransferOperation::kBltGeneral || operation == TransferOperation::kBltPatCopy ||
         operation == TransferOperation::kBltPatInvert;
}

}  // namespace qnv
