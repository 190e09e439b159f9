#include "table.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <string_view>

namespace {

constexpr size_t kIndentBelow = 6;
// The narrowest room for a wrapped text next to other columns.
constexpr size_t kLeastRoom = 20;

// Returns the number of bytes of the first character, and of its columns: -1 if it can't be shown.
std::pair<size_t, int> firstOf(std::string_view text) {
    std::mbstate_t state{};
    wchar_t character = 0;
    const size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
    const bool valid = bytes > 0 && bytes <= text.size();
    return {valid ? bytes : 1, valid ? wcwidth(character) : -1};
}

// Returns how many bytes of a text fit into a line, up to a blank if there is one.
size_t lineEnd(std::string_view text, size_t columns) {
    size_t end = 0;
    for (size_t used = 0; end < text.size();) {
        const auto [bytes, width] = firstOf(text.substr(end));
        used += static_cast<size_t>(std::max(width, 0));
        if (used > columns && end > 0) {
            const size_t blank = text.rfind(' ', end);
            return blank != std::string_view::npos && blank > 0 ? blank : end;
        }
        end += bytes;
    }
    return end;
}

// Wraps a text at the right edge of the terminal; further lines are indented.
std::string wrapped(const Cell& cell, size_t indent) {
    const size_t columns = terminalColumns();
    const size_t room = columns > indent ? columns - indent : 1;
    std::string text;
    for (std::string_view rest = cell.text; !rest.empty();) {
        const size_t end = lineEnd(rest, room);
        text += text.empty() ? "" : "\n" + std::string(indent, ' ');
        text += styled(cell.style, std::string(rest.substr(0, end)));
        rest.remove_prefix(std::min(rest.find_first_not_of(' ', end), rest.size()));
    }
    return text;
}

// Returns how many columns fit the terminal, at least one.
size_t countOf(const std::vector<size_t>& widths) {
    size_t left = terminalColumns();
    for (size_t i = 0; i < widths.size(); ++i) {
        const bool wraps = i + 1 == widths.size();
        const size_t need = 2 + (wraps ? std::min(widths[i], kLeastRoom) : widths[i]);
        if (need > left) {
            return std::max<size_t>(i, 1);
        }
        left -= need;
    }
    return widths.size();
}

std::string lineOf(const Row& row, const std::vector<size_t>& widths, const Names& headings) {
    std::string text;
    size_t used = 0;
    for (size_t i = 0; i < widths.size(); ++i) {
        const std::string blanks(widths[i] - row[i].width, ' ');
        const std::string cell = wrapped(row[i], used + 2);
        text += "  " + (headings[i].starts_with('>') ? blanks + cell : cell + blanks);
        used += 2 + widths[i];
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text.empty() ? "" : text + "\n";
}

// Returns lines with the cells that had no room, each after its heading.
std::string linesBelow(const Row& row, size_t from, const Row& headings) {
    std::string text;
    size_t left = 0;
    for (size_t i = from; i < row.size(); ++i) {
        if (row[i].width == 0 || row[i].text == "-") {
            continue;
        }
        const std::string label =
            headings[i].text + std::string(headings[i].width > 0 ? 1 : 0, ' ');
        const bool fits = left >= 3 + label.size() + row[i].width;
        text += fits ? "   " : "\n" + std::string(kIndentBelow, ' ');
        left = fits ? left - 3 : terminalColumns() - kIndentBelow;
        text += styled(kDim, label) + wrapped(row[i], terminalColumns() - left + label.size());
        left -= std::min(label.size() + row[i].width, left);
    }
    return text.empty() ? "" : text.substr(1) + "\n";
}

}  // namespace

Cell::Cell(const std::string& cellText, const char* cellStyle) : style(cellStyle) {
    for (std::string_view rest = cellText; !rest.empty();) {
        const auto [bytes, columns] = firstOf(rest);
        text += columns < 0 ? "?" : rest.substr(0, bytes);
        width += columns < 0 ? 1 : static_cast<size_t>(columns);
        rest.remove_prefix(bytes);
    }
}

Cell::Cell(const Json& value)
    : Cell(value.is_null()     ? "-"
           : value.is_string() ? value.get<std::string>()
                               : value.dump(),
           value.is_null() ? kDim : nullptr) {}

std::string tableOf(const Names& headings, const std::vector<Row>& rows) {
    Row front;
    std::vector<size_t> widths;
    for (const std::string& heading : headings) {
        front.emplace_back(heading.substr(heading.starts_with('>') ? 1 : 0), kBold);
        size_t width = front.back().width;
        for (const Row& row : rows) {
            width = std::max(width, row[widths.size()].width);
        }
        widths.push_back(width);
    }
    widths.resize(countOf(widths));
    std::string text = lineOf(front, widths, headings);
    for (const Row& row : rows) {
        text += lineOf(row, widths, headings) + linesBelow(row, widths.size(), front);
    }
    return text;
}

std::string paragraph(const Cell& cell) {
    return "  " + wrapped(cell, 2) + "\n";
}

std::string title(const std::string& text) {
    return "\n" + styled(kBold, text) + "\n";
}

std::string sizeText(double bytes) {
    constexpr const char* kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    size_t unit = 0;
    for (; std::round(bytes * 10) >= 10240 && unit < 4; ++unit) {
        bytes /= 1024;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", unit == 0 ? 0 : 1, bytes, kUnits[unit]);
    return text;
}
