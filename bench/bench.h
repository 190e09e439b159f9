// The table of the bench: each exported function, or one of a family, next to its floor, the bare
// work that it can't do without.
#pragma once

#include <functional>
#include <string>

using Work = std::function<void()>;

struct Subject {
    std::string function;  // as exported; after a comma, which one of a family
    Work call;
    Work floor = {};  // none for a function that asks nothing of the system
    // What has to be done first, and isn't timed: once, or before each call.
    Work beforeCall = [] {};
    Work beforeFloor = [] {};
    bool each = false;
};

// The name and the call of a function, for a subject.
#define CALLED(function, ...) #function, [] { function(__VA_ARGS__); }

void measure(const Subject& subject);
void measureSettings();
void measureSystem();
void measureWifi();

// Ends the program if what is measured doesn't work: its time would say nothing.
void require(bool works, const char* what);
void freeList(char** list);
