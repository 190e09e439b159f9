#include "terminal.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

bool drawsUnicode = false;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

// 0 for a serial line until stty sets it.
winsize sizeOfTerminal() {
    winsize size{};
    ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
    return size;
}

}  // namespace

void setUpTerminal() {
    std::setlocale(LC_CTYPE, "");
    drawsUnicode = std::string(nl_langinfo(CODESET)) == "UTF-8";
    // Network names are UTF-8 in any locale of the user. On a system without C.UTF-8 only ASCII is
    // shown.
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool isTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool obeysSequences() {
    const std::string type = variable("TERM");
    return isTerminal() && !type.empty() && type != "dumb";
}

size_t terminalColumns() {
    const size_t columns = sizeOfTerminal().ws_col;
    return !isTerminal() ? SIZE_MAX : columns > 0 ? columns : 80;
}

size_t terminalRows() {
    const size_t rows = sizeOfTerminal().ws_row;
    return rows > 0 ? rows : 24;
}

void showProgress(const std::string& text) {
    if (isatty(STDERR_FILENO) == 1) {
        std::fprintf(stderr, "%-30s\r", text.c_str());
    }
}

std::string styled(const char* style, const std::string& text) {
    static const bool able = obeysSequences() && variable("NO_COLOR").empty();
    const bool plain = !able || style == nullptr || text.empty();
    return plain ? text : std::string("\033[") + style + "m" + text + "\033[0m";
}

std::string bar(double ratio, size_t columns) {
    std::string text;
    for (size_t i = 0; i < columns; ++i) {
        const bool filled = ratio * static_cast<double>(columns) >= static_cast<double>(i) + 0.5;
        text += drawsUnicode ? (filled ? "\u2588" : "\u2591") : (filled ? "#" : ".");
    }
    return text;
}

std::string sparkline(const Json& figures) {
    // Null is less than any number.
    const double highest = std::max<Json>(1, *std::ranges::max_element(figures));
    std::string text;
    for (const Json& figure : figures) {
        if (figure.is_null()) {
            text += ' ';
            continue;
        }
        // U+2581 to U+2588 are blocks of rising height.
        const auto step = std::lround(7 * figure.get<double>() / highest);
        text += drawsUnicode ? std::string("\xe2\x96") + static_cast<char>(0x81 + step)
                             : std::string(1, "_.:-=+*#"[step]);
    }
    return text;
}
