// Texts in columns that fit the terminal.
#pragma once

#include <string>
#include <vector>

#include "report.h"
#include "terminal.h"

// A text with a style. "?" replaces control characters and bytes that aren't UTF-8.
struct Cell {
    Cell(const char* cellText, const char* cellStyle = nullptr)
        : Cell(std::string(cellText), cellStyle) {}
    Cell(const std::string& cellText, const char* cellStyle = nullptr);
    explicit Cell(const Json& value);  // "-" for null

    std::string text;
    size_t width = 0;  // in columns
    const char* style;
};

using Row = std::vector<Cell>;

// Returns a table below its headings. ">" in front of a heading aligns the column to the right. A
// column is as wide as its widest cell. Columns that don't fit the terminal follow below each row,
// with the heading before each cell that isn't empty or "-". A cell that fits no line is wrapped.
// So the most important columns come first.
std::string tableOf(const Names& headings, const std::vector<Row>& rows);

// An indented text, wrapped at the right edge of the terminal.
std::string paragraph(const Cell& cell);

// The heading of a section.
std::string title(const std::string& text);

// 1536 as "1.5 KiB".
std::string sizeText(double bytes);
