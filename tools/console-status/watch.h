// A report that is repeated.
#pragma once

#include <chrono>
#include <span>

#include "report.h"

// Reads the sections now and then again every so many seconds, until SIGINT comes; a report that
// has begun is finished. A terminal shows the last one in place; otherwise they follow each other,
// as JSON one object a line. Gives the exit status of the program.
int watch(std::span<const Section> sections, std::chrono::seconds interval, bool asJson);
