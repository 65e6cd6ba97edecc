// Plays a scene on two devices that have to agree, and names the first call after which they do not.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/plane_image.h"
#include "support/scene.h"
#include "support/test_device.h"

namespace qnv::test {

// Results and bands are equal after every call.
inline void ExpectSameScene(const Scene& scene, const TestDevice& expected, const TestDevice& got) {
  for (std::size_t step = 0; step < scene.size(); ++step) {
    SCOPED_TRACE("call " + std::to_string(step) + ": " + scene.Name(step));
    ASSERT_EQ(scene.Play(step, expected.handle()), scene.Play(step, got.handle()));
    ASSERT_TRUE(SameImage(BandImage(expected), BandImage(got)));
  }
  EXPECT_TRUE(expected.FencesIntact());
  EXPECT_TRUE(got.FencesIntact());
}

}  // namespace qnv::test
