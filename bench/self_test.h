#pragma once

namespace qnv::bench {

// Checks what a measurement cannot show to be wrong: row names, their filter, options, report files. Prints each
// failure; true when there was none.
bool SelfTest();

}  // namespace qnv::bench
