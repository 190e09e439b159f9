// Makes exit() in the library throw Ended, so that the program continues. Included by the one
// source of a program.
#pragma once

#include <dlfcn.h>

#include <cstdlib>
#include <exception>

#include "support/fault.h"

struct Ended : std::exception {
    const char* what() const noexcept override { return "ended"; }
};

// Another name, as the C library declares that exit() does not throw.
extern "C" [[noreturn]] void playExit(int status) __asm__("exit");

void playExit(int status) {
    if (inLibrary) {
        throw Ended();
    }
    reinterpret_cast<void (*)(int)>(dlsym(RTLD_NEXT, "exit"))(status);
    std::abort();
}
