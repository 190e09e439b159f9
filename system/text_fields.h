// The lines, words and numbers of a text, each taken off its front. They are what the standard
// library's streams make of it in the "C" locale, whatever locale the application has chosen.
#pragma once

#include <cstdint>
#include <string_view>

// Takes the first line and gives it without its newline, which the last line may lack.
std::string_view takeLine(std::string_view& text);

// Takes the first word, between blanks (space, \t, \n, \v, \f, \r); empty if there is none.
std::string_view takeWord(std::string_view& text);

// Takes blanks and the decimal number behind them; what comes next may follow at once. False if
// there is none: then number stays as it was at the end of the text, is 0 for something else than a
// number, and is the nearest value of its type for a number out of range. An unsigned number that
// has a minus is counted down from 0.
bool takeNumber(std::string_view& text, int32_t& number);
bool takeNumber(std::string_view& text, uint32_t& number);
bool takeNumber(std::string_view& text, double& number);
