#include "table.h"

#include <algorithm>
#include <cwchar>
#include <string_view>

#include "terminal.h"

namespace {

constexpr size_t kIndentBelow = 6;
// The least room in which a wrapped text stands beside others.
constexpr size_t kLeastRoom = 20;

struct Character {
    size_t bytes;
    int columns;  // -1 if it can't be shown
};

// The first character of a text that isn't empty.
Character first(std::string_view text) {
    std::mbstate_t state{};
    wchar_t character = 0;
    const size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
    const bool valid = bytes > 0 && bytes <= text.size();
    return {valid ? bytes : 1, valid ? wcwidth(character) : -1};
}

// How many bytes of a text fit so many columns, one character at least.
size_t bytesWithin(std::string_view text, size_t columns) {
    size_t bytes = 0;
    for (size_t used = 0; bytes < text.size();) {
        const Character next = first(text.substr(bytes));
        used += static_cast<size_t>(std::max(next.columns, 0));
        if (used > columns && bytes > 0) {
            break;
        }
        bytes += next.bytes;
    }
    return bytes;
}

// Broken at blanks where there are any. Never without a line.
std::vector<std::string> wrapped(std::string_view text, size_t columns) {
    std::vector<std::string> lines;
    do {
        size_t end = bytesWithin(text, columns);
        const size_t blank = text.rfind(' ', end);
        if (end < text.size() && blank != std::string_view::npos && blank > 0) {
            end = blank;
        }
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(text.find_first_not_of(' ', end), text.size()));
    } while (!text.empty());
    return lines;
}

// Each line of a cell's text after the first begins below it.
std::string wrappedBelow(const Cell& cell, size_t indent, size_t columns) {
    const size_t room = columns > indent + 1 ? columns - indent : 1;
    std::string text;
    for (const std::string& line : wrapped(cell.text, room)) {
        text += (text.empty() ? "" : "\n" + std::string(indent, ' ')) + styled(cell.style, line);
    }
    return text;
}

std::string withoutBlanksAtEnd(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

}  // namespace

Cell::Cell(const std::string& cellText, const char* cellStyle) : style(cellStyle) {
    for (std::string_view rest = cellText; !rest.empty();) {
        const Character next = first(rest);
        text += next.columns < 0 ? "?" : rest.substr(0, next.bytes);
        width += next.columns < 0 ? 1 : static_cast<size_t>(next.columns);
        rest.remove_prefix(next.bytes);
    }
}

Table::Table(const std::vector<std::string>& headings) : widths(headings.size()) {
    Row row;
    for (const std::string& heading : headings) {
        flushRight.push_back(heading.starts_with('>'));
        row.emplace_back(heading.substr(flushRight.back() ? 1 : 0), kBold);
    }
    add(std::move(row));
}

void Table::add(Row row) {
    row.resize(widths.size(), "");
    for (size_t i = 0; i < row.size(); ++i) {
        widths[i] = std::max(widths[i], row[i].width);
    }
    rows.push_back(std::move(row));
}

size_t Table::columnsThatFit(size_t columns) const {
    size_t used = 0;
    size_t count = 0;
    for (; count < widths.size(); ++count) {
        const bool canWrap = count + 1 == widths.size() && !flushRight[count];
        const size_t need = canWrap ? std::min(widths[count], kLeastRoom) : widths[count];
        if (used + 2 + need > columns) {
            break;
        }
        used += 2 + widths[count];
    }
    return std::max<size_t>(count, 1);
}

std::string Table::line(const Row& row, size_t count, size_t columns) const {
    std::string line;
    size_t used = 0;
    for (size_t i = 0; i < count; ++i) {
        const std::string blanks(widths[i] - row[i].width, ' ');
        const std::string text = wrappedBelow(row[i], used + 2, columns);
        line += "  " + (flushRight[i] ? blanks + text : text + blanks);
        used += 2 + widths[i];
    }
    return withoutBlanksAtEnd(line);
}

std::string Table::below(const Row& row, size_t from) const {
    std::vector<std::pair<Cell, Cell>> pairs;
    for (size_t i = from; i < row.size(); ++i) {
        if (row[i].width > 0 && row[i].text != "-") {
            pairs.emplace_back(Cell(rows.front()[i].text, kDim), row[i]);
        }
    }
    return flow(pairs, kIndentBelow);
}

std::string Table::text() const {
    const size_t columns = terminalColumns();
    const size_t count = columnsThatFit(columns);
    std::string text;
    for (const Row& row : rows) {
        const bool isHeading = &row == &rows.front();
        const std::string rowText = line(row, count, columns);
        text += isHeading && rowText == "\n" ? "" : rowText;
        text += isHeading ? "" : below(row, count);
    }
    return text;
}

std::string flow(const std::vector<std::pair<Cell, Cell>>& pairs, size_t indent) {
    const size_t columns = terminalColumns();
    const std::string newLine = "\n" + std::string(indent, ' ');
    std::string text;
    size_t used = columns;
    for (const auto& [name, value] : pairs) {
        const size_t label = name.width + (name.width > 0 ? 1 : 0);
        const bool fits = columns - used >= 3 + label + value.width;
        text += fits ? "   " : newLine;
        used = (fits ? used + 3 : indent) + label;
        text += styled(name.style, name.text) + (label > 0 ? " " : "");
        text += wrappedBelow(value, used, columns);
        used = std::min(used + value.width, columns);
    }
    return text.empty() ? "" : text.substr(1) + "\n";
}

std::string paragraph(const Cell& cell) {
    return "  " + wrappedBelow(cell, 2, terminalColumns()) + "\n";
}

std::string title(const std::string& text) {
    return "\n" + styled(kBold, text) + "\n";
}
