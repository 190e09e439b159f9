// One call of one function that is made to fail.
#pragma once

#include <cstring>

// Set while a test is within the library: only what the library calls itself is made to fail.
inline thread_local bool inLibrary = false;

// What a played function does on behalf of the library's surroundings.
class Outside {
  public:
    Outside() : before(inLibrary) { inLibrary = false; }
    ~Outside() { inLibrary = before; }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

  private:
    bool before;
};

constexpr auto plainly = [](auto call) { return call(); };

// Calls the library where that can be made to fail.
constexpr auto within = [](auto call) {
    struct Leave {
        ~Leave() { inLibrary = false; }
    } leave;
    inLibrary = true;
    return call();
};

inline struct Fault {
    const char* function = "";
    int call = 1;  // which one of them, from 1
    bool happened = false;

    bool hits(const char* name) {
        if (!inLibrary || std::strcmp(name, function) != 0 || --call != 0) {
            return false;
        }
        happened = true;
        return true;
    }
} fault;
