// Makes one call of one function fail, or all from that one on.
#pragma once

#include <cstring>
#include <utility>

// Set while a test is in the library, so that only calls made by the library fail.
inline thread_local bool inLibrary = false;

// Sets it until the end of a scope.
class Within {
  public:
    explicit Within(bool now) : before(std::exchange(inLibrary, now)) {}
    ~Within() { inLibrary = before; }
    Within(const Within&) = delete;
    Within& operator=(const Within&) = delete;

  private:
    bool before;
};

// Calls the library, in which calls can be made to fail.
auto within(const auto& call, auto... arguments) {
    const Within library(true);
    return call(arguments...);
}

inline struct Fault {
    const char* function = "";
    int call = 1;           // which one of them, from 1
    bool persists = false;  // and all later calls
    bool happened = false;

    bool hits(const char* name) {
        if (!inLibrary || std::strcmp(name, function) != 0 || --call > 0) {
            return false;
        }
        happened = happened || call == 0;
        return call == 0 || persists;
    }
} fault;
