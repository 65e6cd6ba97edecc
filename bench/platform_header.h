// The interface of the library. On Windows the header of the platform is included before it, because both declare some
// of the same names.
#pragma once

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#include "qnvdrv10.h"
