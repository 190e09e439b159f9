// Files of the kernel and of the device image, and the output of commands, as texts. Read by the
// system's own calls: a file stream costs as much again as the kernel takes for these small files.
// A signal doesn't end the reading.
#pragma once

#include <string>

// All of a file, empty if it can't be opened. A read that fails ends it.
std::string readText(const char* path);

// All that is left of an open file or a pipe, which stays open.
std::string readText(int descriptor);
