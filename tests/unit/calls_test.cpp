// The exported functions in several threads and at the end of the process.
#include <dlfcn.h>
#include <unistd.h>

#include <barrier>
#include <cerrno>
#include <thread>

#include "console-manager/device.h"
#include "console-manager/network.h"
#include "console-manager/settings.h"
#include "support/calls.h"
#include "support/fault.h"

// The library reads one byte at a time, and a signal interrupts every other read.
extern "C" ssize_t read(int descriptor, void* buffer, size_t size) {
    static const auto next = reinterpret_cast<decltype(&read)>(dlsym(RTLD_NEXT, "read"));
    static thread_local bool interrupted = false;
    interrupted = inLibrary && !interrupted;
    errno = EINTR;
    return interrupted ? -1 : next(descriptor, buffer, inLibrary ? 1 : size);
}

namespace {

// Makes all calls, but those that share state in one of the threads only.
void callAll(size_t thread = 0, size_t threads = 1) {
    for (const Call& call : functionCalls()) {
        const bool isOwn = std::hash<std::string>()(call.owner) % threads == thread;
        // One call deletes all settings.
        if (call.owner != "settings" && (isOwn || call.owner.empty())) {
            EXPECT_EQ(call.result(), call.good) << call.name;
        }
    }
}

class ProcessEnd : public Calls {
    void prepare() override {
        // Before the library constructs anything, and so run after all of that is destroyed.
        std::atexit([] {
            callAll();
            testing::UnitTest::GetInstance()->Passed() ? void() : std::_Exit(1);
        });
        EXPECT_EQ(CML_getCPUUsage(), 0) << "no reading to compare with";
        Calls::prepare();
    }
};

TEST_F(ProcessEnd, CallsHaveTheirResults) {
    callAll();
}

using Threads = Calls;

constexpr size_t kThreads = 4;

// Starts the threads at the same time.
void inThreads(const std::function<void(size_t)>& work) {
    std::barrier start(kThreads);
    std::vector<std::jthread> threads;
    for (size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&start, &work, thread] {
            start.arrive_and_wait();
            work(thread);
        });
    }
}

TEST_F(Threads, DontDisturbEachOther) {
    inThreads([](size_t thread) {
        for (int round = 0; round < 3; ++round) {
            callAll(thread, kThreads);
        }
    });
}

TEST_F(Threads, OpenEachDatabaseOnce) {
    inThreads([](size_t) {
        pthread_cancel(pthread_self());  // in vain, because nothing may be left half-done
        EXPECT_EQ(DAL_CML_isThemePresent() + DAL_CML_isAutoThemePresent(), 0);
    });
    EXPECT_EQ(run("ls -l /proc/$PPID/fd | grep -c 'console-manager.db$'"), "2\n");
}

TEST_F(Threads, ReadTheReleaseTextsOnce) {
    std::string file = "BUILD_ID=a=b\n=nameless\nno separator\nBUILD =\"c";
    for (int i = 0; i < 3000; ++i) {
        file += "\nN" + std::to_string(i) + "=text";
    }
    bindFile("/etc/os-release", file);
    std::vector<const char*> texts(kThreads);
    inThreads([&](size_t thread) { texts[thread] = CML_getBuildId(); });
    EXPECT_EQ(texts, std::vector(kThreads, CML_getBuildId())) << "the same pointers";
    EXPECT_EQ(joined(os_release.size(), os_release[""], os_release["BUILD "]), "3003 nameless \"c");

    os_release.clear();
    run("mount -t tmpfs none /etc");
    EXPECT_STREQ(CML_getProductRelease(), "");
    writeFile("/etc/os-release", "ID=late\n");
    EXPECT_STREQ(CML_getProductID(), "") << "a missing file is looked for once";
    os_release.clear();
    run("ln -sf os-release /etc/os-release");
    EXPECT_STREQ(CML_getProductID(), "");
    run("rm /etc/os-release && echo ID=late >/etc/os-release");
    EXPECT_STREQ(CML_getProductID(), "late") << "one that cannot be opened is tried again";
}

}  // namespace
