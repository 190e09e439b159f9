/*
 * Contract of libm7-trace-debug.so.0: returns the logger record of the process.
 *
 * On the console this is a closed library.
 */
#ifndef M7_CONTRACTS_TRACE_DEBUG_H
#define M7_CONTRACTS_TRACE_DEBUG_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bit of TDL_LoggerRecord::flags that enables the messages of the settings databases. */
#define TDL_FLAG_DATABASE_MESSAGES 2u

typedef struct TDL_LoggerRecord {
    uint32_t reserved;
    uint32_t flags; /* TDL_FLAG_... */
} TDL_LoggerRecord;

/*
 * Returns the logger record of the process, which the library owns, or null if logging isn't set
 * up. Any thread may call it.
 */
TDL_LoggerRecord* TDL_logger(void);

#ifdef __cplusplus
}
#endif

#endif
