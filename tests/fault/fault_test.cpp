// Every exported function while what it calls fails, one call at a time.
#include "support/fault.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "support/calls.h"

// What is made to fail: these, which the played kernel has, and all that follow.
// clang-format off
static std::vector<const char*> functions = {
    "recv", "system", "malloc", "if_nametoindex", "mnl_socket_open", "mnl_socket_bind",
    "mnl_socket_sendto", "mnl_socket_recvfrom", "mnl_socket_setsockopt"};
// clang-format on

// System and library calls: one of them fails, the others go on to the real one. The names are
// those that the dynamic linker knows. Arguments are handed on as they came, in whole words.
using Words = long (*)(long, long, long, long, long, long, long, long);
#define PLAYED_IF(condition, name, failure, error)                                        \
    extern "C" long played_##name(long a, long b, long c, long d, long e, long f, long g, \
                                  long h) __asm__(#name);                                 \
    long played_##name(long a, long b, long c, long d, long e, long f, long g, long h) {  \
        static const auto next = reinterpret_cast<Words>(dlsym(RTLD_NEXT, #name));        \
        if ((condition) && fault.hits(#name)) {                                           \
            errno = error;                                                                \
            return failure;                                                               \
        }                                                                                 \
        return next(a, b, c, d, e, f, g, h);                                              \
    }                                                                                     \
    static const auto& known_##name = functions.emplace_back(#name)

#define PLAYED(...) PLAYED_IF(true, __VA_ARGS__)

// No kernel refuses to take a lock back.
static bool givesUpLock(long command, long argument) {
    return command == F_SETLK && reinterpret_cast<const flock*>(argument)->l_type == F_UNLCK;
}

// clang-format off
PLAYED(socket, -1, EMFILE);      PLAYED(send, -1, ENOBUFS);       PLAYED(getifaddrs, -1, ENOMEM);
PLAYED(uname, -1, EFAULT);       PLAYED(popen, 0, EMFILE);        PLAYED(if_indextoname, 0, ENXIO);
PLAYED(fgets, 0, EIO);           PLAYED(fopen64, 0, EMFILE);      PLAYED(fdopendir, 0, ENOMEM);
PLAYED(open64, -1, EMFILE);      PLAYED(read, -1, EIO);           PLAYED_IF(!givesUpLock(b, c), fcntl64, -1, EIO);
PLAYED(fstat64, -1, EIO);        PLAYED(stat64, -1, EIO);         PLAYED(ftruncate64, -1, EIO);
PLAYED(pread64, -1, EIO);        PLAYED(pwrite64, -1, ENOSPC);    PLAYED(mmap64, -1 /* MAP_FAILED */, ENOMEM);
PLAYED(fdatasync, -1, EIO);      PLAYED(unlink, -1, EIO);
#ifdef __arm__
PLAYED(__ioctl_time64, -1, EIO); PLAYED(openat64, -1, EMFILE);    PLAYED(__setsockopt64, -1, ENOPROTOOPT);
PLAYED(readdir64, 0, EIO);       PLAYED_IF(!givesUpLock(b, c), __fcntl_time64, -1, EIO);
#else
PLAYED(ioctl, -1, EIO);          PLAYED(openat, -1, EMFILE);      PLAYED(setsockopt, -1, ENOPROTOOPT);
PLAYED(readdir, 0, EIO);
#endif
// clang-format on

extern "C" int system(const char* command) {
    static const auto next = reinterpret_cast<decltype(&system)>(dlsym(RTLD_NEXT, "system"));
    if (fault.hits("system")) {
        errno = EAGAIN;
        return -1;
    }
    // The folder of the databases is there: a shell that makes it takes longer than all that is
    // tested.
    return inLibrary && std::strncmp(command, "mkdir", 5) == 0 ? 0 : next(command);
}

static long liveBlocks = 0;

#ifndef __SANITIZE_ADDRESS__
// The sanitizer has an allocator of its own, and tells of leaks by itself.
#define ALLOCATION(name, parameters, arguments, newBlocks) \
    extern "C" void* __libc_##name parameters;             \
    extern "C" void* name parameters {                     \
        if (fault.hits("malloc")) {                        \
            errno = ENOMEM;                                \
            return nullptr;                                \
        }                                                  \
        liveBlocks += newBlocks;                           \
        return __libc_##name arguments;                    \
    }
ALLOCATION(malloc, (size_t size), (size), 1)
ALLOCATION(calloc, (size_t count, size_t size), (count, size), 1)
ALLOCATION(realloc, (void* block, size_t size), (block, size), block == nullptr ? 1 : 0)
extern "C" void __libc_free(void* block);
extern "C" void free(void* block) {
    liveBlocks -= block == nullptr ? 0 : 1;
    __libc_free(block);
}
#endif

namespace {

using Faults = Calls;

// What must not grow.
struct Held {
    long blocks = liveBlocks;
    int descriptors = openDescriptors();
};

// How often the call makes the library call the function.
int countOf(const Call& call, const char* function) {
    fault = {function, 0};
    EXPECT_EQ(call.result(), call.good);
    return -std::exchange(fault, {}).call;
}

// Runs the call while the function's call of that number fails.
void runFailing(const Call& call, const char* function, int number) {
    fault = {function, number};
    const std::string result = call.result();
    fault = {};
    EXPECT_TRUE(result == call.good || std::ranges::count(call.failed, result) > 0) << result;
    EXPECT_EQ(call.result(), call.good) << "the call behind it";
    EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD);
}

// The emulated board has time for a sample: each eighth of a function's calls and of the settings.
constexpr int kStride = sizeof(void*) == 4 ? 8 : 1;

class EachCall : public Calls, public testing::WithParamInterface<Subject> {
  protected:
    static void failEach(const Call& call) {
        for (const char* const function : functions) {
            // libstdc++ ends the process when it can't get memory for an entry of a directory.
            if (call.name.starts_with("CML_getNetworkPortsList") &&
                std::strcmp(function, "malloc") == 0) {
                continue;
            }
            const int count = countOf(call, function);
            for (int number = 1; number <= count; number += kStride) {
                SCOPED_TRACE(call.name + ": " + function + " " + std::to_string(number));
                runFailing(call, function, number);
                const Held once;
                runFailing(call, function, number);
                const Held twice;
                EXPECT_EQ(twice.descriptors, once.descriptors);
                EXPECT_LE(twice.blocks, once.blocks);
            }
        }
    }
};

TEST_P(EachCall, LeavesTheDocumentedResultAndNothingElse) {
    for (const Call& call : GetParam().calls) {
        // What is kept for the next time is kept now.
        EXPECT_EQ(call.result(), call.good);
        EXPECT_EQ(call.result(), call.good);
        const Held before;
        EXPECT_EQ(call.result(), call.good);
        EXPECT_LE(Held().blocks, before.blocks);
        failEach(call);
        for (const Situation& situation : call.situations) {
            change(situation.what, situation.content);
            EXPECT_EQ(call.result(), situation.result) << situation.content;
        }
        EXPECT_EQ(Held().descriptors, before.descriptors);
    }
}

constexpr auto nameOf = [](const auto& of) { return of.param.name; };
INSTANTIATE_TEST_SUITE_P(Functions, EachCall, testing::ValuesIn(functionSubjects()), nameOf);
INSTANTIATE_TEST_SUITE_P(Settings, EachCall, testing::ValuesIn(settingSubjects(kStride)), nameOf);

// A played function that nobody sees would make nothing fail.
TEST_F(Faults, TheLibraryCallsThePlayedFunctionsAndAScanAllocatesNothing) {
    const std::vector<Subject> subjects = functionSubjects();
    for (const char* const function :
         {"socket", "send", "recv", "open64", "read", "popen", "system", "pwrite64"}) {
        EXPECT_TRUE(std::ranges::any_of(subjects, [&](const Subject& subject) {
            return countOf(subject.calls[0], function) > 0;
        })) << function;
    }
    for (const Subject& subject : subjects) {
        const bool scans = subject.name == "wifi_scan_all" || subject.name == "wifi_scan_station";
        EXPECT_EQ(scans ? countOf(subject.calls[0], "malloc") : 0, 0) << subject.name;
    }
}

}  // namespace
