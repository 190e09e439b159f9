// Texts in columns that fit the terminal.
#pragma once

#include <string>
#include <utility>
#include <vector>

// A text with a style. A "?" takes the place of each character that a terminal would obey and of
// what isn't UTF-8.
struct Cell {
    Cell(const char* cellText, const char* cellStyle = nullptr)
        : Cell(std::string(cellText), cellStyle) {}
    Cell(const std::string& cellText, const char* cellStyle = nullptr);

    std::string text;
    size_t width = 0;  // on the screen
    const char* style;
};

class Table {
  public:
    // The columns that matter most come first. Those of a heading that begins with ">" are flush
    // right. Without any heading there is no line for them.
    explicit Table(const std::vector<std::string>& headings);

    // A row may be shorter than the heading; the missing cells stay empty.
    void add(std::vector<Cell> row);

    // Each column as wide as its widest cell, two blanks in front. On a terminal a column that
    // doesn't fit any more stands in lines below its row, with its heading before each cell that
    // isn't empty or "-"; and a cell that fits no line is wrapped. No line is longer than that.
    std::string text() const;

  private:
    using Row = std::vector<Cell>;

    size_t columnsThatFit(size_t columns) const;
    std::string line(const Row& row, size_t count, size_t columns) const;
    std::string below(const Row& row, size_t from) const;

    std::vector<size_t> widths;
    std::vector<bool> flushRight;
    std::vector<Row> rows;
};

// Pairs of a name and a text, as many in each line as fit.
std::string flow(const std::vector<std::pair<Cell, Cell>>& pairs, size_t indent);

// An indented text, wrapped where the terminal ends.
std::string paragraph(const Cell& cell);

// A line that opens a section of the report.
std::string title(const std::string& text);
