// Checks each attribute from the kernel against a table of rules before it is read.
#pragma once

#include <libmnl/libmnl.h>
#include <linux/genetlink.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "console-manager/wifi.h"

// The argument of one parse.
struct wifi_attribute_set {
    const nlattr** slots;  // one for each number from 0 to max_type
    uint32_t max_type;     // at most 16 bits; attributes with a higher number are ignored
    const wifi_attribute_rule* rules;
    int32_t rule_count;
};

// Stores one attribute in its slot if it satisfies every rule for it. Otherwise prints a line on
// stderr and ends the parse. The data is a wifi_attribute_set.
int wifi_validate_attribute(const nlattr* attribute, void* data);

// The highest attribute of an nl80211 message that is stored. Later kernels may send higher ones.
constexpr uint32_t kMaxMessageAttribute = 281;

// The attributes of a message or nest by number; null if absent. They are read by std::get, so that
// a number above kMaxType doesn't compile. If a rule names an attribute, its length is right.
template <uint32_t kMaxType>
using Slots = std::array<const nlattr*, kMaxType + 1>;

// Parses the attributes of a generic netlink message. A faulty attribute and all after it count as
// absent.
template <uint32_t kMaxType, size_t kRules>
Slots<kMaxType> parseMessage(const nlmsghdr* message, const wifi_attribute_rule (&rules)[kRules]) {
    Slots<kMaxType> slots{};
    wifi_attribute_set set{slots.data(), kMaxType, rules, kRules};
    mnl_attr_parse(message, sizeof(genlmsghdr), wifi_validate_attribute, &set);
    return slots;
}

// Parses the attributes in a nest in the same way.
template <uint32_t kMaxType, size_t kRules>
Slots<kMaxType> parseNest(const nlattr* nest, const wifi_attribute_rule (&rules)[kRules]) {
    Slots<kMaxType> slots{};
    wifi_attribute_set set{slots.data(), kMaxType, rules, kRules};
    mnl_attr_parse_nested(nest, wifi_validate_attribute, &set);
    return slots;
}
