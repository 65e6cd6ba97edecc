// The interface of the library behind the platform's own header, where there is one: the two share names.
#pragma once

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#include "qnvdrv10.h"
