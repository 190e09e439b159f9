// Aligned columns of text on standard output.
#pragma once

#include <string>
#include <vector>

// Codes of styles, which show on a terminal that has them, unless NO_COLOR is set.
constexpr const char* kBold = "1";
constexpr const char* kDim = "2";
constexpr const char* kGreen = "32";
constexpr const char* kYellow = "33";

struct Cell {
    Cell(const char* cellText, const char* cellStyle = nullptr)
        : Cell(std::string(cellText), cellStyle) {}
    // A "?" takes the place of each character that a terminal would obey and of what isn't UTF-8.
    Cell(const std::string& cellText, const char* cellStyle = nullptr);

    std::string text;
    size_t width = 0;  // on the screen
    const char* style;
};

class Table {
  public:
    // The cells below a heading that begins with ">" are flush right.
    explicit Table(const std::vector<std::string>& headings);

    // A row may be shorter than the heading; the missing cells stay empty.
    void add(std::vector<Cell> row);

    // Heading and rows, each column as wide as its widest cell, two blanks between them.
    void print() const;

  private:
    std::vector<size_t> widths;
    std::vector<bool> flushRight;
    std::vector<std::vector<Cell>> rows;
};

// The text, or "-" where it is null or empty.
std::string orDash(const char* text);

// A line that opens a section of the report.
void printTitle(const std::string& title);
