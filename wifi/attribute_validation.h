// Every attribute that the kernel sends passes the rules of a table before anything reads it.
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
    uint32_t max_type;     // 16 bits, as attribute numbers have; above it they are passed over
    const wifi_attribute_rule* rules;
    int32_t rule_count;
};

// Stores one attribute in its slot, if every rule for it holds. A rule that doesn't ends the parse,
// after a line on stderr. The data is a wifi_attribute_set.
int wifi_validate_attribute(const nlattr* attribute, void* data);

// The highest attribute of an nl80211 message that is kept, whatever a later kernel adds.
constexpr uint32_t kMaxMessageAttribute = 281;

// The attributes of a message or nest by their numbers; null where there is none. A nest or an
// attribute that a rule names can be read from its slot without a further look at its length.
template <uint32_t kMaxType>
using Slots = std::array<const nlattr*, kMaxType + 1>;

// Parses the attributes of a generic netlink message. A fault isn't told to the caller: the faulty
// attribute and all behind it count as absent.
template <uint32_t kMaxType, size_t kRules>
Slots<kMaxType> parseMessage(const nlmsghdr* message, const wifi_attribute_rule (&rules)[kRules]) {
    Slots<kMaxType> slots{};
    wifi_attribute_set set{slots.data(), kMaxType, rules, kRules};
    mnl_attr_parse(message, sizeof(genlmsghdr), wifi_validate_attribute, &set);
    return slots;
}

// The same for the attributes in a nest.
template <uint32_t kMaxType, size_t kRules>
Slots<kMaxType> parseNest(const nlattr* nest, const wifi_attribute_rule (&rules)[kRules]) {
    Slots<kMaxType> slots{};
    wifi_attribute_set set{slots.data(), kMaxType, rules, kRules};
    mnl_attr_parse_nested(nest, wifi_validate_attribute, &set);
    return slots;
}
