// Standard output as a terminal: its size, styles and block characters.
#pragma once

#include <string>

#include "report.h"

// Must be called before any other function here.
void setUpTerminal();

// Whether standard output is a terminal, and whether it obeys control sequences.
bool isTerminal();
bool obeysSequences();

// Size of the terminal; 80 and 24 for a serial line of unknown size. Lines are unlimited if
// standard output is no terminal.
size_t terminalColumns();
size_t terminalRows();

// Shows a message on stderr if that is a terminal. The next output overwrites it; an empty text
// removes it.
void showProgress(const std::string& text);

// Styles, for a terminal that obeys control sequences unless NO_COLOR is set.
constexpr const char* kBold = "1";
constexpr const char* kDim = "2";
constexpr const char* kRed = "31";
constexpr const char* kGreen = "32";
constexpr const char* kYellow = "33";
std::string styled(const char* style, const std::string& text);

// A ratio from 0 to 1 as a bar. Both this and sparkline() use ASCII unless the locale is UTF-8.
std::string bar(double ratio, size_t columns);

// One block for each figure, relative to the highest or to 1; a blank for null. At least one
// figure.
std::string sparkline(const Json& figures);
