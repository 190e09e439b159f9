// Reads files of the kernel and of the device image, and the output of commands. By system calls: a
// file stream would double the time that the kernel takes for these small files. A signal does not
// end the reading (EINTR).
#pragma once

#include <string>

// Returns the content of a file, up to the first read that fails; empty if it cannot be opened.
std::string readText(const char* path);

// Returns what is left of an open file or a pipe, and leaves it open.
std::string readText(int descriptor);
