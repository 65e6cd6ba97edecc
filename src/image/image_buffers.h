// The work memory of image transfers, owned by a device.
#pragma once

#include "image/work_buffer.h"

namespace qnv {

// Memory of image transfers, kept between calls.
struct ImageBuffers {
  WorkBuffer columns;
  WorkBuffer groups;
  WorkBuffer converted;
  WorkBuffer row;
  WorkBuffer keptRuns;
  WorkBuffer keptColumns;
  WorkBuffer rleRows;
  WorkBuffer rleRow;
};

}  // namespace qnv
