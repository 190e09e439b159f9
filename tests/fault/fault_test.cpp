// Every exported function while what it calls fails, one call at a time.
#include "support/fault.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>

#include "console-manager/settings.h"
#include "contracts/trace_debug.h"
#include "support/calls.h"

// What is made to fail: these, which the played kernel has, and all that follow.
// clang-format off
static std::vector<const char*> functions = {
    "recv", "system", "malloc", "if_nametoindex", "mnl_socket_open", "mnl_socket_bind",
    "mnl_socket_sendto", "mnl_socket_recvfrom", "mnl_socket_setsockopt"};
// clang-format on

// System and library calls: one of them fails, the others go on to the real one. The names are
// those that the dynamic linker knows.
#define PLAYED_IF(condition, name, Result, parameters, arguments, failure, error)                 \
    extern "C" Result played_##name parameters __asm__(#name);                                    \
    Result played_##name parameters {                                                             \
        static const auto next = reinterpret_cast<Result(*) parameters>(dlsym(RTLD_NEXT, #name)); \
        if ((condition) && fault.hits(#name)) {                                                   \
            errno = error;                                                                        \
            return failure;                                                                       \
        }                                                                                         \
        return next arguments;                                                                    \
    }                                                                                             \
    static const auto& known_##name = functions.emplace_back(#name);

#define PLAYED(...) PLAYED_IF(true, __VA_ARGS__)

// No kernel refuses to take a lock back.
static bool givesUpLock(int command, const void* argument) {
    return command == F_SETLK && static_cast<const flock*>(argument)->l_type == F_UNLCK;
}

// clang-format off
PLAYED(socket, int, (int a, int b, int c), (a, b, c), -1, EMFILE)
PLAYED(send, ssize_t, (int a, const void* b, size_t c, int d), (a, b, c, d), -1, ENOBUFS)
PLAYED(getifaddrs, int, (void* a), (a), -1, ENOMEM)
PLAYED(if_indextoname, char*, (unsigned a, char* b), (a, b), nullptr, ENXIO)
PLAYED(uname, int, (void* a), (a), -1, EFAULT)
PLAYED(popen, void*, (const char* a, const char* b), (a, b), nullptr, EMFILE)
PLAYED(open64, int, (const char* a, int b, unsigned c), (a, b, c), -1, EMFILE)
PLAYED(fdopendir, void*, (int a), (a), nullptr, ENOMEM)
PLAYED(read, ssize_t, (int a, void* b, size_t c), (a, b, c), -1, EIO)
PLAYED_IF(!givesUpLock(b, c), fcntl64, int, (int a, int b, void* c), (a, b, c), -1, EIO)
PLAYED(fstat64, int, (int a, void* b), (a, b), -1, EIO)
PLAYED(stat64, int, (const char* a, void* b), (a, b), -1, EIO)
PLAYED(pread64, ssize_t, (int a, void* b, size_t c, off64_t d), (a, b, c, d), -1, EIO)
PLAYED(pwrite64, ssize_t, (int a, const void* b, size_t c, off64_t d), (a, b, c, d), -1, ENOSPC)
PLAYED(fdatasync, int, (int a), (a), -1, EIO)
PLAYED(ftruncate64, int, (int a, off64_t b), (a, b), -1, EIO)
PLAYED(mmap64, void*, (void* a, size_t b, int c, int d, int e, off64_t f), (a, b, c, d, e, f), MAP_FAILED, ENOMEM)
PLAYED(unlink, int, (const char* a), (a), -1, EIO)
#ifdef __arm__
PLAYED(__ioctl_time64, int, (int a, unsigned long b, void* c), (a, b, c), -1, EIO)
PLAYED(__setsockopt64, int, (int a, int b, int c, const void* d, unsigned e), (a, b, c, d, e), -1, ENOPROTOOPT)
PLAYED(__fcntl_time64, int, (int a, int b, void* c), (a, b, c), -1, EIO)
PLAYED(openat64, int, (int a, const char* b, int c), (a, b, c), -1, EMFILE)
PLAYED(readdir64, void*, (void* a), (a), nullptr, EIO)
#else
PLAYED(ioctl, int, (int a, unsigned long b, void* c), (a, b, c), -1, EIO)
PLAYED(setsockopt, int, (int a, int b, int c, const void* d, unsigned e), (a, b, c, d, e), -1, ENOPROTOOPT)
PLAYED(openat, int, (int a, const char* b, int c), (a, b, c), -1, EMFILE)
PLAYED(readdir, void*, (void* a), (a), nullptr, EIO)
#endif
// clang-format on

// The folder of the databases is there: a shell that makes it takes longer than all that is tested.
static bool makesFolder(const char* command) {
    return inLibrary && std::strncmp(command, "mkdir", 5) == 0;
}

extern "C" int system(const char* command) {
    static const auto next = reinterpret_cast<decltype(&system)>(dlsym(RTLD_NEXT, "system"));
    if (fault.hits("system")) {
        errno = EAGAIN;
        return -1;
    }
    return makesFolder(command) ? 0 : next(command);
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

// What must not grow.
struct Held {
    long blocks = liveBlocks;
    int descriptors = openDescriptors();
};

using Faults = Calls;

bool matches(const std::string& alternatives, const std::string& text) {
    return fnmatch(("@(" + alternatives + ")").c_str(), text.c_str(), FNM_EXTMATCH) == 0;
}

// Runs the call while the function's call of that number fails; false if it makes fewer.
bool runFailing(const Call& call, const char* function, int number) {
    fault = {function, number};
    const std::string text = call.run();
    const bool happened = fault.happened;
    fault = {};
    if (happened) {
        EXPECT_TRUE(text == call.good || matches(call.failed, text)) << text;
        EXPECT_EQ(call.run(), call.good) << "the call behind it";
        EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD);
    }
    return happened;
}

TEST_F(Faults, EachLeavesTheDocumentedResultAndNothingElse) {
    std::set<std::string> failed;
    for (const Call& call : calls) {
        for (const char* const function : functions) {
            // libstdc++ ends the process when it can't get memory for an entry of a directory.
            if (call.function.starts_with("CML_getNetworkPortsList") &&
                std::strcmp(function, "malloc") == 0) {
                continue;
            }
            for (int number = 1;; ++number) {
                SCOPED_TRACE(call.function + ": " + function + " " + std::to_string(number));
                const Held before;
                if (!runFailing(call, function, number)) {
                    break;
                }
                failed.insert(function);
                // What is kept for the next time is kept once.
                const Held once;
                runFailing(call, function, number);
                const Held twice;
                EXPECT_EQ(twice.descriptors, before.descriptors);
                EXPECT_TRUE(once.blocks <= before.blocks || twice.blocks <= once.blocks);
            }
        }
    }
    // A played function that nobody sees would make nothing fail.
    for (const char* const function :
         {"socket", "send", "recv", "open64", "read", "popen", "system", "fcntl64", "pwrite64"}) {
        EXPECT_TRUE(failed.contains(function)) << function;
    }
}

// By the kernel's own limit, which doesn't hold for root.
TEST_F(Faults, NoProgramCanBeStarted) {
    if (fork() == 0) {
        [[maybe_unused]] const int result = setuid(65534);
        const rlimit none{0, 0};
        setrlimit(RLIMIT_NPROC, &none);
        const auto fails = [](const Call& call) {
            return !startsProgram(call) || matches(call.failed, call.run());
        };
        _exit(std::ranges::all_of(calls, fails) ? 0 : 1);
    }
    int status = -1;
    wait(&status);
    EXPECT_EQ(status, 0);
}

TEST_F(Faults, AScanAllocatesNothing) {
    for (const Call& call : calls) {
        if (call.function == "wifi_scan_all" || call.function == "wifi_scan_station") {
            EXPECT_FALSE(runFailing(call, "malloc", 1)) << call.function;
        }
    }
}

using FirstUse = Sandbox;

// How far apart the failing allocations are: the opening makes two thousand, too many for the
// emulated board.
constexpr int kAllocationStep = sizeof(void*) == 4 ? 20 : 1;

// Each time a new process opens a new database, of which a call fails on the way.
TEST_F(FirstUse, ADatabaseThatDoesNotOpenIsOpenedByTheNextCall) {
    struct Shared {
        bool happened;
        Held held;
    };
    auto& shared = *new (mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Shared;
    const auto statusOf = [&](const char* function, int number) {
        std::filesystem::remove_all("/mnt/vex-data");
        std::filesystem::create_directories("/mnt/vex-data/m7");
        if (fork() == 0) {
            TDL_logger()->flags = 0;
            fault = {function, number};
            int32_t value = -9;
            const int32_t first = within([&] { return DAL_CML_getDisplayOffTimeout(&value); });
            shared.happened = fault.happened;
            fault = {};
            const int32_t second = within([] { return DAL_CML_setDisplayOffTimeout(5); });
            shared.held = Held();
            _exit(value == 30 && second == 0 && (first == 0 || shared.happened) ? 0 : 1);
        }
        int status = -1;
        wait(&status);
        return status;
    };
    ASSERT_EQ(statusOf("", 0), 0);
    const Held normal = shared.held;
    for (const char* const function : functions) {
        const int step = std::strcmp(function, "malloc") == 0 ? kAllocationStep : 1;
        for (int number = 1;; number += step) {
            const std::string where = function + (" " + std::to_string(number));
            EXPECT_EQ(statusOf(function, number), 0) << where;
            if (!shared.happened) {
                break;
            }
            EXPECT_EQ(shared.held.descriptors, normal.descriptors) << where;
            EXPECT_LE(shared.held.blocks, normal.blocks) << where;
        }
    }
}

}  // namespace
