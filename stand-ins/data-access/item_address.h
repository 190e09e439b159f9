// The rows that an item function addresses: its key path and profile number, checked.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "contracts/data_access.h"

// A profile number as it stands in c_dal_profile_no.
class Profile {
  public:
    static Profile unprofiled() { return {}; }

    static Profile number(int32_t number) {
        Profile profile;
        const auto end = std::to_chars(profile.digits.begin(), profile.digits.end(), number).ptr;
        profile.length = static_cast<size_t>(end - profile.digits.begin());
        profile.state = number >= 0                  ? State::One
                        : number == DAL_ALL_PROFILES ? State::All
                                                     : State::Invalid;
        return profile;
    }

    bool isOne() const { return state == State::One; }
    bool isAll() const { return state == State::All; }
    // Never null and never NULL in SQL: NULLs are not equal to each other, and the tables' UNIQUE
    // constraints would let an unprofiled item have any number of rows.
    std::string_view text() const { return {digits.data(), length}; }

  private:
    enum class State { One, All, Invalid };
    std::array<char, 12> digits{};
    size_t length = 0;
    State state = State::One;
};

enum class Shape { PlainItem, ListItem, Node, WholeList };

// A checked key path.
struct Address {
    Shape shape;
    std::string_view list;  // empty for a plain item
    const char* node = nullptr;
    const char* key = nullptr;
};

// Returns nothing for a path of no known shape. The address points into the path's strings.
std::optional<Address> parse(const KeyPath* path);
