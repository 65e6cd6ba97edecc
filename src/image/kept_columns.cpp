// Collects the runs of columns that a resolution-mapping band keeps into two lists.
#include "image/kept_columns.h"

#include <algorithm>

namespace qnv {

bool KeptColumns::Make(const KeptMapping& mapping, int32_t left, int32_t width, int32_t bandColumns,
                       ImageBuffers& buffers) {
  // Every band column shows at most one column of the picture, so there are not more entries, nor runs, than either has
  // columns.
  const std::size_t most =
      std::min<std::size_t>(static_cast<uint32_t>(width), static_cast<uint32_t>(MaxOf(bandColumns, 0)));
  auto* const columns = buffers.keptColumns.Take<int32_t>(most);
  auto* const runs = buffers.keptRuns.Take<Run>(most);
  if (columns == nullptr || runs == nullptr) return false;
  std::size_t used = 0;
  mapping.ForEachRun(left, width, bandColumns, [&](const ColumnRun& run) {
    runs[runCount_++] = Run{run.bandColumn, run.count, columns + used};
    for (int32_t i = 0; i < run.count; ++i) columns[used++] = run.callerColumn + run.indices[i];
  });
  runs_ = runs;
  return true;
}

}  // namespace qnv
