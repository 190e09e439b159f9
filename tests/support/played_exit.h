// For the program whose one source includes this: exit() within the library throws Ended instead,
// so that the program goes on.
#pragma once

#include <dlfcn.h>

#include <cstdlib>
#include <exception>

#include "support/fault.h"

struct Ended : std::exception {
    const char* what() const noexcept override { return "ended"; }
};

// The C library's header says that exit throws nothing; this one does.
extern "C" [[noreturn]] void playExit(int status) __asm__("exit");

void playExit(int status) {
    if (inLibrary) {
        throw Ended();
    }
    reinterpret_cast<void (*)(int)>(dlsym(RTLD_NEXT, "exit"))(status);
    std::abort();
}
