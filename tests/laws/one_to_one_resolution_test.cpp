// A resolution-mapping device with nothing to map is a plain 24-bit device. Only extended codes of images are kept
// out: it has none.
#include "laws/same_scene.h"
#include "support/random_bytes.h"

namespace qnv::test {
namespace {

TEST(OneToOneResolution, PaintsWhatAPlainDevicePaints) {
  for (uint16_t resolution : {uint16_t{360}, uint16_t{1}, uint16_t{7}, uint16_t{719}}) {
    for (uint64_t seed = 0; seed < 40; ++seed) {
      SCOPED_TRACE("resolution " + std::to_string(resolution) + ", seed " + std::to_string(seed));
      DeviceOptions options{.width = 41 + static_cast<uint32_t>(seed % 4),
                            .height = 23,
                            .resolutionA = resolution,
                            .resolutionB = resolution,
                            .left = static_cast<int32_t>(seed % 3) * 9,
                            .top = static_cast<int32_t>(seed % 2) * 11};
      TestDevice plain(options);
      options.kind = QNV_KIND_SCALED;
      TestDevice scaled(options);
      FillWithNoise(&plain.band(), seed);
      FillWithNoise(&scaled.band(), seed);
      const Scene scene(seed, {.left = options.left, .top = options.top, .extendedCodes = false});
      ExpectSameScene(scene, plain, scaled);
      if (HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace qnv::test
