// What the header offers to hosts that load the library by hand: each type is that of its function, each ordinal the
// published one.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <type_traits>

#include "qnvdrv10.h"
#include "support/published_exports.h"

namespace qnv::test {
namespace {

#define QNV_EVERY_FUNCTION(DO) \
  DO(QNVEnable)                \
  DO(QNVDisable)               \
  DO(QNVGetDeviceInfo)         \
  DO(QNVControl)               \
  DO(QNVColorInfo)             \
  DO(QNVRealizeObject)         \
  DO(QNVPixel)                 \
  DO(QNVPolyPixel)             \
  DO(QNVDevBitBlt)             \
  DO(QNVOutput)                \
  DO(QNVDevExtTextOut)         \
  DO(QNVStretchDIBits)         \
  DO(QNVDevSetDIBitsToDevice)

#define QNV_HAS_ITS_TYPE(name) static_assert(std::is_same_v<decltype(&name), name##Function>);
QNV_EVERY_FUNCTION(QNV_HAS_ITS_TYPE)

TEST(FunctionTypes, Ordinals) {
  std::map<uint32_t, std::string> declared;
#define QNV_DECLARED(name) declared[QNV_ORDINAL_##name] = #name;
  QNV_EVERY_FUNCTION(QNV_DECLARED)
  EXPECT_EQ(PublishedExports(), declared);
}

}  // namespace
}  // namespace qnv::test
