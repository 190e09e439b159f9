// Standard output: its size, its styles and the characters that it draws.
#pragma once

#include <string>

#include "report.h"

// To be called before any other function here.
void setUpTerminal();

// Whether standard output is a terminal, and whether that is one which obeys control sequences.
bool isTerminal();
bool obeysSequences();

// Size of the terminal; of a serial line, for which nobody has set one, 80 and 24. Where standard
// output is no terminal there is no limit to a line.
size_t terminalColumns();
size_t terminalRows();

// Codes of styles, which show on a terminal that obeys, unless NO_COLOR is set.
constexpr const char* kBold = "1";
constexpr const char* kDim = "2";
constexpr const char* kRed = "31";
constexpr const char* kGreen = "32";
constexpr const char* kYellow = "33";
std::string styled(const char* style, const std::string& text);

// A ratio from 0 to 1 as a bar. ASCII, unless the locale is one of UTF-8; so is the next.
std::string bar(double ratio, size_t columns);

// Figures as columns, relative to the highest of them or to 1; a blank for null.
std::string sparkline(const Json& figures);
