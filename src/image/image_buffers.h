// The work memory of image transfers. A device owns it, so that only the largest transfer so far allocates.
#pragma once

#include "image/column_plan.h"
#include "image/work_buffer.h"

namespace qnv {

struct ImageBuffers {
  ColumnPlan columns;      // ImageTransfer: the plan of the last transfer, with its own memory
  WorkBuffer row;          // ImageTransfer: a converted row
  WorkBuffer keptRuns;     // KeptColumns
  WorkBuffer keptColumns;  // KeptColumns
  WorkBuffer rleRows;      // RleRows: where each row begins
  WorkBuffer rleRow;       // RleRows: a decoded row
};

}  // namespace qnv
