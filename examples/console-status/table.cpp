#include "table.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

// UTF-8 continuation bytes take no room on the screen.
size_t width(const std::string& text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

void printBold(const std::string& text) {
    const bool terminal = isatty(STDOUT_FILENO) == 1;
    std::printf("%s%s%s\n", terminal ? "\033[1m" : "", text.c_str(), terminal ? "\033[0m" : "");
}

}  // namespace

Table::Table(std::vector<std::string> heading) {
    rows.push_back(std::move(heading));
}

void Table::add(std::vector<std::string> row) {
    rows.push_back(std::move(row));
}

void Table::print() const {
    std::vector<size_t> widths(rows.front().size());
    for (const auto& row : rows) {
        for (size_t i = 0; i < row.size() && i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], width(row[i]));
        }
    }
    for (const auto& row : rows) {
        std::string line = " ";
        for (size_t i = 0; i < row.size() && i < widths.size(); ++i) {
            line += " " + row[i] + std::string(widths[i] - width(row[i]) + 1, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        if (&row == &rows.front()) {
            printBold(line);
        } else {
            std::printf("%s\n", line.c_str());
        }
    }
}

std::string orDash(const char* text) {
    return text == nullptr || *text == '\0' ? "-" : text;
}

void printTitle(const std::string& title) {
    std::printf("\n");
    printBold(title);
}
