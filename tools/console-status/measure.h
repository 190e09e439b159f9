// Figures as people read them.
#pragma once

#include <cstdint>
#include <string>

#include "report.h"
#include "table.h"

// 1536 as "1.5 KiB".
std::string sizeText(double bytes);

// 0.25 as "25 %".
std::string percentText(double ratio);

// Of a text or a number; "-" of null.
Cell cellOf(const Json& value);
Cell sizeCell(const Json& bytes);
