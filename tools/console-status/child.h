// Work in a child process.
#pragma once

#include <functional>
#include <string>

// Does the work in a child process and returns what the child writes to stderr. What the work
// changes in the process, or that it ends it, stays without effect here.
std::string saidByChild(const std::function<void()>& work);
