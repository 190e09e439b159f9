// Texts in columns that fit the terminal.
#pragma once

#include <string>
#include <vector>

#include "report.h"
#include "terminal.h"

// A text with a style. A "?" takes the place of each character that a terminal would obey and of
// what isn't UTF-8.
struct Cell {
    Cell(const char* cellText, const char* cellStyle = nullptr)
        : Cell(std::string(cellText), cellStyle) {}
    Cell(const std::string& cellText, const char* cellStyle = nullptr);
    explicit Cell(const Json& value);  // of a text or a number; "-" of null

    std::string text;
    size_t width = 0;  // on the screen
    const char* style;
};

using Row = std::vector<Cell>;

// Below headings, of which the columns are flush right where one begins with ">". Each column is as
// wide as its widest cell, two blanks in front. On a terminal a column that doesn't fit any more
// stands in lines below its row, with its heading before each cell that isn't empty or "-"; and a
// cell that fits no line is wrapped. So the columns that matter most come first.
std::string tableOf(const Names& headings, const std::vector<Row>& rows);

// An indented text, wrapped where the terminal ends.
std::string paragraph(const Cell& cell);

// A line that opens a section of the report.
std::string title(const std::string& text);

// 1536 as "1.5 KiB".
std::string sizeText(double bytes);
