#include "stand-ins/data-access/item_values.h"

#include <charconv>
#include <cstdlib>

void deliverNumber(StoredText text, int32_t* value, int32_t defaultValue) {
    if (value == nullptr) {
        return;
    }
    *value = defaultValue;
    int32_t number = 0;
    if (text) {
        const char* const end = text->data() + text->size();
        const auto [stop, error] = std::from_chars(text->data(), end, number);
        if (error == std::errc() && stop == end) {
            *value = number;
        }
    }
}

void deliverString(StoredText text, char* buffer, uint32_t* valueInfo, size_t size,
                   const char* defaultValue) {
    const std::string_view delivered =
        text.value_or(defaultValue == nullptr ? std::string_view() : defaultValue);
    if (valueInfo != nullptr) {
        *valueInfo = static_cast<uint32_t>(delivered.size());
    }
    if (buffer != nullptr && size > 0) {
        buffer[delivered.copy(buffer, size - 1)] = '\0';
    }
}

char* copyOf(std::string_view text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        copy[text.copy(copy, text.size())] = '\0';
    }
    return copy;
}
