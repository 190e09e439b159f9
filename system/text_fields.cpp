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

void passBlanks(std::string_view& text) {
    const char* const begin = std::find_if_not(text.begin(), text.end(), isBlank);
    text.remove_prefix(static_cast<size_t>(begin - text.begin()));
}

template <typename Integer>
bool takeInteger(std::string_view& text, Integer& number) {
    passBlanks(text);
    if (text.empty()) {
        return false;
    }
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    constexpr int64_t kMaximum = std::numeric_limits<Integer>::max();
    constexpr int64_t kMinimum =
        std::is_signed_v<Integer> ? int64_t{std::numeric_limits<Integer>::min()} : -kMaximum;
    const bool negative = text.starts_with('-');
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), value);
    text.remove_prefix(static_cast<size_t>(end - text.begin()));
    if (error == std::errc::result_out_of_range || value < kMinimum || value > kMaximum) {
        number = static_cast<Integer>(negative && std::is_signed_v<Integer> ? kMinimum : kMaximum);
        return false;
    }
    number = static_cast<Integer>(value);
    return error == std::errc();
}

// What looks like a decimal number, which lacks digits at worst.
std::string takeDecimal(std::string_view& text) {
    size_t length = 0;
    const auto pass = [&](std::string_view any) {
        const bool fits = length < text.size() && any.find(text[length]) != std::string_view::npos;
        length += fits ? 1 : 0;
        return fits;
    };
    const auto passDigits = [&] {
        const size_t before = length;
        while (pass("0123456789")) {
        }
        return length - before;
    };
    pass("+-");
    size_t digits = passDigits();
    if (pass(".")) {
        digits += passDigits();
    }
    if (digits > 0 && pass("eE")) {
        pass("+-");
        passDigits();
    }
    std::string decimal(text.substr(0, length));
    text.remove_prefix(length);
    return decimal;
}

}  // namespace

std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::string_view takeWord(std::string_view& text) {
    passBlanks(text);
    const char* const end = std::find_if(text.begin(), text.end(), isBlank);
    const std::string_view word(text.begin(), end);
    text.remove_prefix(word.size());
    return word;
}

bool takeNumber(std::string_view& text, int32_t& number) {
    return takeInteger(text, number);
}

bool takeNumber(std::string_view& text, uint32_t& number) {
    return takeInteger(text, number);
}

bool takeNumber(std::string_view& text, double& number) {
    passBlanks(text);
    if (text.empty()) {
        return false;
    }
    const std::string decimal = takeDecimal(text);
    // The C library has this locale at hand: it is neither allocated nor to be freed.
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
