#include "system/text_fields.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

void passBlanks(std::string_view& text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
}

std::string_view takeFirst(size_t length, std::string_view& text) {
    const std::string_view first = text.substr(0, length);
    text.remove_prefix(first.size());
    return first;
}

bool takeInteger(std::string_view& text, int64_t minimum, int64_t maximum, int64_t& number) {
    passBlanks(text);
    if (text.empty()) {
        return false;
    }
    const bool negative = text.front() == '-';
    if (negative || text.front() == '+') {
        text.remove_prefix(1);
    }
    // Unsigned, so that a second sign is not taken for part of the number.
    uint32_t digits = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), digits);
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    const int64_t size = error == std::errc::result_out_of_range ? int64_t{1} << 32 : digits;
    const int64_t value = negative ? -size : size;
    number = std::clamp(value, minimum, maximum);
    return error != std::errc::invalid_argument && number == value;
}

// Takes what looks like a decimal number, though it may lack digits.
std::string_view takeDecimal(std::string_view& text) {
    bool point = false;
    bool exponent = false;
    size_t length = 0;
    for (bool mayBeSign = true; length < text.size(); ++length) {
        const char c = text[length];
        const bool isPoint = c == '.' && !point && !exponent;
        const bool isExponent = (c == 'e' || c == 'E') && !exponent;
        if (!isDigit(c) && !isPoint && !isExponent && !(mayBeSign && (c == '+' || c == '-'))) {
            break;
        }
        point = point || isPoint;
        exponent = exponent || isExponent;
        mayBeSign = isExponent;
    }
    return takeFirst(length, text);
}

}  // namespace

std::string_view takeLine(std::string_view& text) {
    const std::string_view line = takeFirst(text.find('\n'), text);
    takeFirst(1, text);
    return line;
}

std::string_view takeWord(std::string_view& text) {
    passBlanks(text);
    size_t length = 0;
    while (length < text.size() && !isBlank(text[length])) {
        ++length;
    }
    return takeFirst(length, text);
}

bool takeNumber(std::string_view& text, int32_t& number) {
    int64_t value = number;
    const bool fits = takeInteger(text, std::numeric_limits<int32_t>::min(),
                                  std::numeric_limits<int32_t>::max(), value);
    number = static_cast<int32_t>(value);
    return fits;
}

bool takeNumber(std::string_view& text, uint32_t& number) {
    constexpr int64_t kMaximum = std::numeric_limits<uint32_t>::max();
    int64_t value = number;
    const bool fits = takeInteger(text, -kMaximum, kMaximum, value);
    number = static_cast<uint32_t>(fits ? value : std::abs(value));
    return fits;
}

bool takeNumber(std::string_view& text, double& number) {
    passBlanks(text);
    if (text.empty()) {
        return false;
    }
    // Not std::from_chars, which the libstdc++ of GCC 9 has for integers alone.
    const std::string decimal(takeDecimal(text));
    // The C library returns a constant here: nothing is allocated and nothing to be freed.
    const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    char* end = nullptr;
    number = strtod_l(decimal.c_str(), &end, classic);
    if (*end != '\0' || end == decimal.c_str()) {
        number = 0;
        return false;
    }
    if (std::isinf(number)) {
        number = std::copysign(std::numeric_limits<double>::max(), number);
        return false;
    }
    return true;
}
