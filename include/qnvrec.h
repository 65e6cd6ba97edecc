/* What a host can ask of the recorder, libqnvrec.so or QNVREC.dll. None of it is needed to be recorded.
 *
 * The recorder takes the library's place, so a host finds this function only while it is recorded: look it up by name
 * (dlsym, GetProcAddress) and go on without it where it is not there.
 */
#ifndef QNVREC_H
#define QNVREC_H

#include <stdint.h>

#include "qnvdrv10.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A mistake of the host, as docs/host-mistakes.md lists them. The texts are constants of the recorder. */
typedef struct QNVFinding {
  uint32_t size;        /* bytes of this record: later versions add fields at its end */
  uint32_t mistake;     /* its number */
  uint64_t call;        /* of the recorded calls, from 0 on */
  const char *function; /* name of the function called */
  const char *argument; /* name of the argument */
  const char *wrong;    /* a sentence: what is wrong */
  const char *advice;   /* a sentence: what to do */
} QNVFinding;

/* Called by the thread that makes the call, before the library is called, once for every finding. It holds the
 * recorder's lock: it must return, and must not call the library. finding: valid until it returns. */
typedef void QNV_CALL QNVFindingCallback(const QNVFinding *finding, void *context);

/* Sets the callback of the process; null removes it. Findings are made where the recorder checks calls (check = 1), and
 * are written to the file and told as they are without a callback. When this returns, no call of an earlier callback is
 * under way on another thread. Returns 1 when calls are checked, 0 when no callback will ever be called. */
uint32_t QNV_CALL QNVRecOnFinding(QNVFindingCallback *callback, void *context);

typedef uint32_t(QNV_CALL *QNVRecOnFindingFunction)(QNVFindingCallback *callback, void *context);

#ifdef __cplusplus
}
#endif

#endif
