// The list of what the DLL exports.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <string>

namespace qnv::test {

// Names by number.
inline std::map<uint32_t, std::string> PublishedExports() {
  std::ifstream file(QNV_TEST_SOURCE_DIR "/published_exports.txt");
  std::map<uint32_t, std::string> published;
  std::string name;
  for (uint32_t ordinal = 0; file >> ordinal >> name;) published[ordinal] = name;
  EXPECT_EQ(13u, published.size());
  return published;
}

}  // namespace qnv::test
