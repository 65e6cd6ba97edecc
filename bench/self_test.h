// The self-test of qnvbench, which measures nothing.
#pragma once

namespace qnv::bench {

// Checks what a run would not show to be wrong: row names, the filter, options, report files, the loops of the limits.
// Prints each failure; true when there was none.
bool SelfTest();

}  // namespace qnv::bench
