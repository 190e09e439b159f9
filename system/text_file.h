// Files of the kernel and of the device image as texts. Read by the system's own calls: a file
// stream costs as much again as the kernel takes for these small files.
#pragma once

#include <string>
#include <string_view>

// All of a file, empty if it can't be opened. A read that fails ends it.
std::string readText(const char* path);

// Takes the first line off text and gives it without its newline, which the last line may lack.
std::string_view takeLine(std::string_view& text);

// Takes the first word off a line, between blanks as a stream sees them; empty if there is none.
std::string_view takeWord(std::string_view& line);
