#include "settings/log_message.h"

#include <cstdarg>

#include "contracts/qor_core.h"

void logMessage(TDL_LoggerRecord* logger, const char* format, ...) {
    constexpr int kFailure = 2;
    std::va_list arguments;
    va_start(arguments, format);
    qor_logger_print3(logger, kFailure, 0, 0, 0, 0, format, arguments);
    va_end(arguments);
}
