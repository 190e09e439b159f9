// Pieces of netlink messages, as bytes in host byte order.
#pragma once

#include <cstdint>
#include <string>

template <typename Record>
std::string bytes(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}
constexpr auto u8 = [](auto value) { return bytes(static_cast<uint8_t>(value)); };
constexpr auto u16 = [](auto value) { return bytes(static_cast<uint16_t>(value)); };
constexpr auto u32 = [](auto value) { return bytes(static_cast<uint32_t>(value)); };

constexpr auto aligned = [](size_t length) { return (length + 3) / 4 * 4; };

// An attribute with its padding. lengthOff is added to the true length.
inline std::string attribute(uint16_t type, const std::string& payload, int lengthOff = 0) {
    std::string whole = u16(4 + std::ssize(payload) + lengthOff) + u16(type) + payload;
    whole.resize(aligned(whole.size()));
    return whole;
}
