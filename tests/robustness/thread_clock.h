// The processor time of the calling thread. Bounds on it are only there to catch calls that would hardly end.
#pragma once

namespace qnv::test {

double ThreadSeconds();

// What a call that ends takes at most, with a wide margin for slow builds; the others take minutes or for ever.
inline constexpr double kEndsInSeconds = 2;

}  // namespace qnv::test
