#include "measure.h"

#include <cmath>
#include <cstdio>

#include "terminal.h"

std::string sizeText(double bytes) {
    constexpr const char* kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    size_t unit = 0;
    for (; std::round(bytes * 10) >= 10240 && unit < 4; ++unit) {
        bytes /= 1024;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", unit == 0 ? 0 : 1, bytes, kUnits[unit]);
    return text;
}

std::string percentText(double ratio) {
    return std::to_string(std::lround(100 * ratio)) + " %";
}

Cell cellOf(const Json& value) {
    if (value.is_null()) {
        return {"-", kDim};
    }
    return value.is_string() ? value.get<std::string>() : value.dump();
}

Cell sizeCell(const Json& bytes) {
    return bytes.is_null() ? cellOf(bytes) : Cell(sizeText(bytes.get<double>()));
}
