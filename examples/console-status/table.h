// Aligned columns of text on standard output.
#pragma once

#include <string>
#include <vector>

class Table {
  public:
    explicit Table(std::vector<std::string> heading);

    // A row may be shorter than the heading; the missing cells stay empty.
    void add(std::vector<std::string> row);

    // Heading and rows, each column as wide as its widest cell, two blanks between them.
    void print() const;

  private:
    std::vector<std::vector<std::string>> rows;
};

// The text, or "-" where it is null or empty.
std::string orDash(const char* text);

// A line that opens a section of the report.
void printTitle(const std::string& title);
