/*
 * Contract of libqor-core.so.2: prints a message on behalf of a logger.
 *
 * On the console this is a closed library.
 */
#ifndef M7_CONTRACTS_QOR_CORE_H
#define M7_CONTRACTS_QOR_CORE_H

#include <stdarg.h>

#include "contracts/trace_debug.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Prints one message. logger may be null. level is 2 for a database that can't be used, and the
 * four zeros have no meaning here. format and arguments are those of vprintf; the caller ends
 * arguments with va_end. Any thread may call it.
 */
void qor_logger_print3(TDL_LoggerRecord* logger, int level, int zero1, int zero2, int zero3,
                       int zero4, const char* format, va_list arguments)
    __attribute__((format(printf, 7, 0)));

#ifdef __cplusplus
}
#endif

#endif
