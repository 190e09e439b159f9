#include "wifi/report.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "wifi/channel.h"

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

void wifi_report_ignored(const char* what, const nlmsghdr* message) {
    std::fprintf(stderr, "Ignoring generic netlink %s %u seq %u pid  %u genl cmd %u\n", what,
                 unsigned{message->nlmsg_type}, unsigned{message->nlmsg_seq},
                 unsigned{message->nlmsg_pid}, unsigned{wifi_command_of(message)});
}
