#include "table.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <utility>

namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string styled(const char* style, const std::string& text) {
    static const bool able = isatty(STDOUT_FILENO) == 1 && variable("NO_COLOR").empty() &&
                             !variable("TERM").empty() && variable("TERM") != "dumb";
    if (!able || style == nullptr || text.empty()) {
        return text;
    }
    return std::string("\033[") + style + "m" + text + "\033[0m";
}

}  // namespace

Cell::Cell(const std::string& cellText, const char* cellStyle) : style(cellStyle) {
    for (size_t i = 0; i < cellText.size();) {
        std::mbstate_t state{};
        wchar_t character = 0;
        const size_t left = cellText.size() - i;
        const size_t length = std::mbrtowc(&character, &cellText[i], left, &state);
        const bool valid = length > 0 && length <= left;
        const int columns = valid ? wcwidth(character) : -1;
        text += columns < 0 ? "?" : cellText.substr(i, length);
        width += columns < 0 ? 1 : static_cast<size_t>(columns);
        i += valid ? length : 1;
    }
}

Table::Table(const std::vector<std::string>& headings) : widths(headings.size()) {
    std::vector<Cell> row;
    for (const std::string& heading : headings) {
        flushRight.push_back(heading.starts_with('>'));
        row.emplace_back(heading.substr(flushRight.back() ? 1 : 0), kBold);
    }
    add(std::move(row));
}

void Table::add(std::vector<Cell> row) {
    row.resize(widths.size(), "");
    for (size_t i = 0; i < row.size(); ++i) {
        widths[i] = std::max(widths[i], row[i].width);
    }
    rows.push_back(std::move(row));
}

void Table::print() const {
    for (const auto& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - row[i].width, ' ');
            const std::string text = styled(row[i].style, row[i].text);
            line += "  " + (flushRight[i] ? blanks + text : text + blanks);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        std::printf("%s\n", line.c_str());
    }
}

std::string orDash(const char* text) {
    return text == nullptr || *text == '\0' ? "-" : text;
}

void printTitle(const std::string& title) {
    std::printf("\n%s\n", styled(kBold, title).c_str());
}
