#include "contracts/trace_debug.h"

#pragma GCC visibility push(default)

TDL_LoggerRecord* TDL_logger(void) {
    static TDL_LoggerRecord record{0, TDL_FLAG_DATABASE_MESSAGES};
    return &record;
}
