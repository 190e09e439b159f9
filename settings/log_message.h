#pragma once

#include "contracts/trace_debug.h"

// Prints a message through the logging library. logger is what TDL_logger has returned and may be
// null.
void logMessage(TDL_LoggerRecord* logger, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
