// The work memory of image transfers. A device owns it, so that only the largest transfer so far allocates.
#pragma once

#include "image/work_buffer.h"

namespace qnv {

struct ImageBuffers {
  WorkBuffer columns;      // ColumnPlan: the source column of each destination column
  WorkBuffer groups;       // ColumnPlan: the same as shuffles
  WorkBuffer converted;    // ColumnPlan: a row between two steps
  WorkBuffer row;          // ImageTransfer: a converted row
  WorkBuffer keptRuns;     // KeptColumns
  WorkBuffer keptColumns;  // KeptColumns
  WorkBuffer rleRows;      // RleRows: where each row begins
  WorkBuffer rleRow;       // RleRows: a decoded row
};

}  // namespace qnv
