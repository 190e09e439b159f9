#include "contracts/qor_core.h"

#include <cstdio>

#pragma GCC visibility push(default)

void qor_logger_print3(TDL_LoggerRecord* /*logger*/, int level, int /*zero1*/, int /*zero2*/,
                       int /*zero3*/, int /*zero4*/, const char* format, va_list arguments) {
    flockfile(stderr);
    std::fprintf(stderr, "[%d] ", level);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    funlockfile(stderr);
}
