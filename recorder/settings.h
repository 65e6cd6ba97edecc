// What the recorder is told: by the environment, or by a file of the recorder's own name with the ending .ini beside
// it. The environment comes first.
//
//   library  QNVREC_LIBRARY  path of the library that makes the calls. Default: beside the recorder, QNVDRV10_REAL.dll
//                            or libqnvdrv10_real.so, else QNVDRV10.dll, libqnvdrv10.so or libqnvdrv10.so.0
//   file     QNVREC_FILE     the call file to write; %p becomes the number of the process. Empty: nothing is recorded
//   hash     QNVREC_HASH     "call": a checksum of the band after every drawing call, not only at the end of a band
//   flush    QNVREC_FLUSH    "call": every call is written at once, for hosts that crash
//   check    QNVREC_CHECK    "1": the calls are checked as well
//   compress QNVREC_COMPRESS "0": blocks are not compressed, so that every build can read them
#pragma once

#include <string>
#include <vector>

namespace qnv::recorder {

struct Settings {
  std::vector<std::string> libraries;  // the first that exists
  std::string file;
  bool hashEveryCall = false;
  bool flushEveryCall = false;
  bool check = false;
  bool compress = true;
};

Settings ReadSettings();

}  // namespace qnv::recorder
