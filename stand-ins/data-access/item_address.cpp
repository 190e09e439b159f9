#include "stand-ins/data-access/item_address.h"

#include <algorithm>

namespace {

// A list's name becomes part of table and column names.
bool isListName(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    });
}

}  // namespace

std::optional<Address> parse(const KeyPath* path) {
    if (path == nullptr || path->slots[0].name == nullptr) {
        return std::nullopt;
    }
    constexpr std::string_view kKeyLevel = "dal_key";
    Address address;
    const KeyPathSlot* slot = path->slots;
    if (slot->name != kKeyLevel) {
        if (!isListName(slot->name)) {
            return std::nullopt;
        }
        address.list = slot->name;
        address.node = slot->value;
        ++slot;
    }
    if (slot->name != nullptr) {
        if (slot->name != kKeyLevel || slot->value == nullptr) {
            return std::nullopt;
        }
        address.key = slot->value;
        ++slot;
    }
    if (slot->name != nullptr) {
        return std::nullopt;
    }
    return address;
}
