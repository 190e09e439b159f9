#include "watch.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>

#include "sections.h"
#include "table.h"

namespace {

using Clock = std::chrono::steady_clock;

std::optional<std::chrono::seconds> parse(const std::string& text) {
    int32_t seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    if (error != std::errc() || stop != end || seconds < 1) {
        return std::nullopt;
    }
    return std::chrono::seconds(seconds);
}

std::string now() {
    const std::time_t time = std::time(nullptr);
    char text[32];
    text[std::strftime(text, sizeof text, "%F %T", std::localtime(&time))] = '\0';
    return text;
}

// Whether a signal of the set came before the time; the signals must be blocked.
bool cameBefore(Clock::time_point time, const sigset_t& signals) {
    for (;;) {
        const auto left = std::max(time - Clock::now(), Clock::duration::zero());
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        const timespec timeout{static_cast<std::time_t>(seconds.count()),
                               static_cast<long>(std::chrono::nanoseconds(left - seconds).count())};
        if (sigtimedwait(&signals, nullptr, &timeout) > 0) {
            return true;
        }
        // A stop and a continue end the wait early, too.
        if (Clock::now() >= time) {
            return false;
        }
    }
}

}  // namespace

int watch(const std::string& seconds, void (*report)()) {
    const auto interval = parse(seconds);
    if (!interval) {
        std::fprintf(stderr,
                     "console-status: --watch takes a whole number of seconds from 1, not '%s'\n",
                     seconds.c_str());
        return kUsageError;
    }
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    sigprocmask(SIG_BLOCK, &interrupt, nullptr);
    const auto show = [&] {
        printTitle(now());
        report();
        std::fflush(stdout);
    };
    show();
    // Counted from the end of the first report, which waits for a load to show. Each comes at its
    // time, and not sooner because the one before was late.
    for (auto next = Clock::now() + *interval;
         std::ferror(stdout) == 0 && !cameBefore(next, interrupt);
         next = std::max(next + *interval, Clock::now())) {
        show();
    }
    return 0;
}
