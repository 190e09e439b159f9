// Takes lines, words and numbers off the front of a text, as the standard library's streams do in
// the "C" locale, whatever locale the application has set.
#pragma once

#include <cstdint>
#include <string_view>

// Returns the first line without its newline, which the last line may lack.
std::string_view takeLine(std::string_view& text);

// Returns the first word between blanks (space, \t, \n, \v, \f, \r); empty if there is none.
std::string_view takeWord(std::string_view& text);

// Takes blanks and the decimal number after them. Any character may follow the number.
//
//  The text has                        Result  number becomes
//  a number of the type                true    that number
//  "-5", for an unsigned number        true    2^32 - 5
//  a number out of the type's range    false   the type's limit; for unsigned always the largest
//  something else than a number        false   0
//  nothing but blanks                  false   not changed
bool takeNumber(std::string_view& text, int32_t& number);
bool takeNumber(std::string_view& text, uint32_t& number);
bool takeNumber(std::string_view& text, double& number);
