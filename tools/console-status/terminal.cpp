#include "terminal.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

bool drawsUnicode = false;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

size_t sizeOr(unsigned short told, const char* name, size_t fallback) {
    const int set = std::atoi(variable(name).c_str());
    return told > 0 ? told : set > 0 ? static_cast<size_t>(set) : fallback;
}

winsize toldSize() {
    winsize size{};
    ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
    return size;
}

// The whole steps, from 0 to the highest, of a ratio; 0 of a NaN.
size_t steps(double ratio, size_t highest) {
    return ratio > 0 ? static_cast<size_t>(
                           std::lround(std::min(ratio, 1.0) * static_cast<double>(highest)))
                     : 0;
}

std::string repeated(const char* character, size_t times) {
    std::string text;
    while (times-- > 0) {
        text += character;
    }
    return text;
}

}  // namespace

void setUpTerminal() {
    std::setlocale(LC_CTYPE, "");
    drawsUnicode = std::string(nl_langinfo(CODESET)) == "UTF-8";
    // Networks' names are UTF-8, if they are text at all, whatever the user's locale. Where a
    // system lacks this one, all but ASCII shows as "?".
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool isTerminal() {
    static const bool terminal = isatty(STDOUT_FILENO) == 1;
    return terminal;
}

bool obeysSequences() {
    static const std::string type = variable("TERM");
    return isTerminal() && !type.empty() && type != "dumb";
}

size_t terminalColumns() {
    return isTerminal() ? sizeOr(toldSize().ws_col, "COLUMNS", 80) : SIZE_MAX;
}

size_t terminalRows() {
    return sizeOr(toldSize().ws_row, "LINES", 24);
}

std::string styled(const char* style, const std::string& text) {
    static const bool able = obeysSequences() && variable("NO_COLOR").empty();
    if (!able || style == nullptr || text.empty()) {
        return text;
    }
    return std::string("\033[") + style + "m" + text + "\033[0m";
}

std::string bar(double ratio, size_t columns) {
    const size_t filled = steps(ratio, columns);
    return repeated(drawsUnicode ? "\u2588" : "#", filled) +
           repeated(drawsUnicode ? "\u2591" : ".", columns - filled);
}

std::string sparkline(const std::vector<double>& ratios) {
    constexpr const char* kBlocks[] = {"\u2581", "\u2582", "\u2583", "\u2584",
                                       "\u2585", "\u2586", "\u2587", "\u2588"};
    constexpr const char* kSigns[] = {"_", ".", ":", "-", "=", "+", "*", "#"};
    std::string line;
    for (const double ratio : ratios) {
        line += (drawsUnicode ? kBlocks : kSigns)[steps(ratio, 7)];
    }
    return line;
}
