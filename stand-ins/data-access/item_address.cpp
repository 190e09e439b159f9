#include "stand-ins/data-access/item_address.h"

#include <algorithm>

namespace {

constexpr std::string_view kKeyLevel = "dal_key";

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
    const KeyPathSlot* slot = path->slots;
    Address address{Shape::PlainItem, {}, nullptr, nullptr};
    if (slot->name != kKeyLevel) {
        if (!isListName(slot->name)) {
            return std::nullopt;
        }
        address.list = slot->name;
        address.node = slot->value;
        address.shape = slot->value == nullptr ? Shape::WholeList : Shape::Node;
        ++slot;
    }
    if (slot->name == nullptr) {
        return address;
    }
    const bool itemOfWholeList = address.shape == Shape::WholeList;
    if (slot->name != kKeyLevel || slot->value == nullptr || slot[1].name != nullptr ||
        itemOfWholeList) {
        return std::nullopt;
    }
    address.key = slot->value;
    address.shape = address.list.empty() ? Shape::PlainItem : Shape::ListItem;
    return address;
}
