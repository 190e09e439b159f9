// How values stand in the text column c_dal_value, and how a getter delivers them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

// The text of an item that was looked up; nothing where there is none, or the look-up failed.
using StoredText = std::optional<std::string_view>;

// A 32-bit integer in decimal; the default for any other text. value may be null.
void deliverNumber(StoredText text, int32_t* value, int32_t defaultValue);

// At most size bytes with the terminator; valueInfo receives the length of the whole text without
// it. buffer and valueInfo may be null, and so may defaultValue, for an empty text.
void deliverString(StoredText text, char* buffer, uint32_t* valueInfo, size_t size,
                   const char* defaultValue);

// In a block from malloc; null when memory has run out.
char* copyOf(std::string_view text);
