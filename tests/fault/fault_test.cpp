// Runs every exported function while one of the calls that it makes fails.
#include "support/fault.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>

#include "console-manager/settings.h"
#include "contracts/data_access.h"
#include "support/calls.h"
#include "support/sqlite_query.h"

// The functions that can fail: these are replaced elsewhere, the others below.
// clang-format off
static std::vector<const char*> functions = {
    "recv", "malloc", "if_nametoindex", "mnl_socket_open", "mnl_socket_bind",
    "mnl_socket_sendto", "mnl_socket_recvfrom", "mnl_socket_setsockopt"};
// clang-format on

// System and library calls: one fails, the others reach the real function. The names are the
// symbols that the dynamic linker looks up. Arguments are passed on as whole words.
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

// The kernel never refuses to release a lock.
static bool givesUpLock(long command, long argument) {
    return command == F_SETLK && reinterpret_cast<const flock*>(argument)->l_type == F_UNLCK;
}

// The others may be run by SQLite itself, which would ignore the failure.
static bool isOfTransaction(long statement) {
    const char* const sql = sqlite3_sql(reinterpret_cast<sqlite3_stmt*>(statement));
    return sql != nullptr &&
           std::strstr("BEGIN IMMEDIATE COMMIT ROLLBACK TO dal SAVEPOINT dal RELEASE dal", sql);
}

// Nothing that the library opens may be left to programs that other threads start.
static bool closesOnExec(long mode) {
    EXPECT_TRUE(!inLibrary || std::strchr(reinterpret_cast<const char*>(mode), 'e') != nullptr);
    return true;
}

extern "C" int close(int descriptor) {
    static const auto next = reinterpret_cast<decltype(&close)>(dlsym(RTLD_NEXT, "close"));
    const bool isLibrarys = inLibrary && !fault.happened;
    const Within test(false);
    EXPECT_TRUE(!isLibrarys || fcntl(descriptor, F_GETFD) == FD_CLOEXEC);
    return next(descriptor);
}

// clang-format off
PLAYED(socket, -1, EMFILE);      PLAYED(send, -1, ENOBUFS);       PLAYED(getifaddrs, -1, ENOMEM);
PLAYED(uname, -1, EFAULT);       PLAYED(if_indextoname, 0, ENXIO); PLAYED_IF(closesOnExec(b), popen, 0, EMFILE);
PLAYED(fgets, 0, EIO);           PLAYED(system, -1, EAGAIN);       PLAYED(fdopendir, 0, ENOMEM);
PLAYED(open64, -1, EMFILE);      PLAYED(read, -1, EIO);           PLAYED_IF(!givesUpLock(b, c), fcntl64, -1, EIO);
PLAYED(fstat64, -1, EIO);        PLAYED(stat64, -1, EIO);         PLAYED(ftruncate64, -1, EIO);
PLAYED(pread64, -1, EIO);        PLAYED(pwrite64, -1, ENOSPC);    PLAYED(mmap64, -1 /* MAP_FAILED */, ENOMEM);
PLAYED(fdatasync, -1, EIO);      PLAYED(unlink, -1, EIO);         PLAYED_IF(isOfTransaction(a), sqlite3_step, SQLITE_NOMEM, 0);
#ifdef __arm__
PLAYED(__ioctl_time64, -1, EIO); PLAYED(openat64, -1, EMFILE);    PLAYED(__setsockopt64, -1, ENOPROTOOPT);
PLAYED(readdir64, 0, EIO);       PLAYED_IF(!givesUpLock(b, c), __fcntl_time64, -1, EIO);
#else
PLAYED(ioctl, -1, EIO);          PLAYED(openat, -1, EMFILE);      PLAYED(setsockopt, -1, ENOPROTOOPT);
PLAYED(readdir, 0, EIO);
#endif
// clang-format on

static long liveBlocks = 0;

#ifndef SANITIZED_MEMORY
// The sanitizer has its own allocator and finds leaks itself.
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

// What must not grow from call to call.
struct Held {
    long blocks = liveBlocks;
    int descriptors = openDescriptors();
};

// Returns how often the library calls the function during this call.
int countOf(const Call& call, const char* function) {
    fault = {function, 0};
    EXPECT_EQ(call.result(), call.good);
    return -std::exchange(fault, {}).call;
}

// Runs the call while the library's call of that number fails.
void runFailing(const Call& call, const char* function, int number) {
    fault = {function, number};
    const std::string result = call.result();
    fault = {};
    EXPECT_TRUE(result == call.good || std::ranges::count(call.failed, result) > 0) << result;
    EXPECT_EQ(call.result(), call.good) << "the next call";
    EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD);
}

// On the emulated board, which is slow, the first call fails and every 37th after it.
constexpr int kStride = sizeof(void*) == 4 ? 37 : 1;

class EachCall : public Calls, public testing::WithParamInterface<Call> {
  protected:
    static void failEach(const Call& call) {
        for (const char* const function : functions) {
            // libstdc++ ends the process if it can't allocate an entry of a directory.
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
    const Call& call = GetParam();
    // Fills the caches.
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

INSTANTIATE_TEST_SUITE_P(Functions, EachCall, testing::ValuesIn(functionCalls()),
                         testing::PrintToStringParamName());

const KeyPath kTimeout{{{"dal_key", "display-off-timeout"}}};
const KeyPath kIcon{{{"home_screen_icons", "n"}, {"dal_key", "home-screen-icon"}}};
sqlite3* own = nullptr;

// In a transaction of the caller's, on a second connection.
int32_t changeWithin(const char* end) {
    DAL_ExecuteQuery(own, "BEGIN TRANSACTION;");
    const int32_t set = DAL_setProfiledTypeString(own, &kIcon, "9", 0, 0);
    const int32_t removed = DAL_deleteProfiledItem(own, &kTimeout, 0);
    EXPECT_TRUE(set == 0 || removed != 0) << "the rest is refused";
    return DAL_ExecuteQuery(own, end);
}

int32_t undoAndChange() {
    changeWithin("ROLLBACK;");
    return DAL_deleteProfiledItem(own, &kTimeout, 0);
}

// What is stored of the settings that tests change: the time-out, an icon, the number of nodes.
std::string stored() {
    const std::string value = "(SELECT coalesce(max(c_dal_value), '') FROM tbl_";
    return query(kFile, "SELECT " + value + "dal_key_dal_value), " + value +
                            "home_screen_icons_dal_key_dal_value), (SELECT count(*) FROM "
                            "tbl_home_screen_icons)");
}

// A change of the settings, and what is stored after it.
struct Change {
    const char* name;
    int32_t (*make)();
    const char* done;
};
const Change kChanges[] = {
    {"a set", [] { return DAL_CML_setDisplayOffTimeout(9); }, "9|1|1"},
    {"a set in a list", [] { return DAL_CML_setHomeScreenIcon("n", "9"); }, "1|9|1"},
    {"a delete of a node", [] { return DAL_CML_deleteHomeScreenIconsNode("n"); }, "1||0"},
    {"a transaction", [] { return changeWithin("COMMIT;"); }, "|9|1"},
    {"a change after a rollback", undoAndChange, "|1|1"},
    // Its result doesn't show a failure.
    {"a delete of all", [] { return DAL_CML_deleteAll() + SQLITE_FULL; }, "||0"},
};

void prepareChange() {
    EXPECT_EQ(DAL_CML_setDisplayOffTimeout(1) + DAL_CML_setHomeScreenIcon("n", "1"), 0);
    EXPECT_EQ(stored(), "1|1|1");
}

// Makes the change while that call fails. Returns false if there are fewer calls.
bool failChange(const Change& change, const Fault& failing) {
    SCOPED_TRACE(joined(change.name, failing.function, failing.call));
    fault = failing;
    const int32_t result = within(change.make);
    const bool happened = std::exchange(fault, {}).happened;
    const std::string now = stored();
    const bool fails = joined(failing.function) == "pwrite64" ? result == SQLITE_FULL : result != 0;
    EXPECT_TRUE(now == change.done || (fails && now == "1|1|1")) << result << ' ' << now;
    EXPECT_EQ(query(kFile, "BEGIN IMMEDIATE"), "") << "another program can write";
    std::thread(prepareChange).join();
    return happened;
}

// Returns what work returns in a child process.
bool inChild(const std::function<bool()>& work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const bool result = work();
        std::fflush(stdout);
        _exit(testing::Test::HasFailure() ? 2 : result ? 1 : 0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 2);
    return WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

TEST_F(Faults, AChangeIsMadeAsAWholeOrNotAtAllInTheFirstUseToo) {
    run("mkdir -p /mnt/vex-data/m7");
    inChild([] { return prepareChange(), false; });
    for (const char* const function : functions) {
        // SQLite tries for 10 s to get a lock.
        const bool persists = std::strstr(function, "fcntl") == nullptr;
        Fault failing{function, 1, persists};
        while (inChild([=] { return failChange(kChanges[0], failing); })) {
            failing.call += 3 * kStride;
        }
    }
    prepareChange();
    sqlite3_open(kFile.c_str(), &own);
    for (const Change& change : kChanges) {
        for (const char* const function : functions) {
            for (int number = 1; failChange(change, {function, number}); number += kStride) {
            }
        }
    }
}

TEST_F(Faults, TheJournalIsChosenAgainWhenThereIsMemory) {
    run("mkdir -p /mnt/vex-data/m7");
    fault = {"mmap64", 1};
    EXPECT_EQ(within(DAL_CML_setTheme, 1), SQLITE_NOMEM);
    fault = {};
    EXPECT_EQ(DAL_CML_setTheme(1), 0);
    EXPECT_EQ(query(kFile, "PRAGMA journal_mode"), "wal");
}

// A replacement that the library doesn't call would make nothing fail.
TEST_F(Faults, TheLibraryCallsTheReplacementsAndAScanAllocatesNothing) {
    const std::vector<Call> calls = functionCalls();
    for (const char* const function :
         {"socket", "send", "recv", "open64", "read", "popen", "system", "pwrite64"}) {
        const auto isCalled = [=](const Call& call) { return countOf(call, function) > 0; };
        EXPECT_TRUE(std::ranges::any_of(calls, isCalled)) << function;
    }
    for (const Call& call : calls) {
        const bool scans = call.name == "wifi_scan_all" || call.name == "wifi_scan_station";
        EXPECT_EQ(scans ? countOf(call, "malloc") : 0, 0) << call.name;
    }
}

}  // namespace
