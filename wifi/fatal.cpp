#include "wifi/fatal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

void wifi_report_errno(const char* text) {
    const int failure = errno;
    std::fputs("CML: wifi-scan: ", stderr);
    errno = failure;
    std::perror(text);
}

void wifi_fatal_errno(const char* text) {
    wifi_report_errno(text);
    std::exit(1);
}

void wifi_fatal_text(const char* text) {
    std::fprintf(stderr, "CML: wifi-scan: %s\n", text);
    std::exit(1);
}
