// A report that is repeated.
#pragma once

#include <string>

// Makes the report now and then again every so many seconds, until SIGINT comes; a report that has
// begun is finished. Gives the exit status of the program: 0, or kUsageError after a message on
// stderr if seconds is no whole number from 1.
int watch(const std::string& seconds, void (*report)());
