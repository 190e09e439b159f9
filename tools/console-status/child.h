// Work that may end the process, or must not change it.
#pragma once

#include <functional>
#include <string>

// Does the work in a child process, and returns what the child writes to stderr.
std::string saidByChild(const std::function<void()>& work);
