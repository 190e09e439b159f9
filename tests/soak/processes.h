// Processes that use the settings, and what they share: the results and times of their calls.
#pragma once

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <span>
#include <thread>

#include "support/sandbox.h"
#include "support/sqlite_query.h"

using namespace std::chrono_literals;

inline std::string scratch;  // the folder of a whole run, empty for a sample

auto sampleOr(auto sample, auto whole) {
    return scratch.empty() ? sample : whole;
}

// The results and times of the calls of one kind, in all processes.
struct Tally {
    std::atomic<size_t> count, failed, refused;  // refused: failed without a wait
    float milliseconds[1 << 20];

    int32_t operator()(auto call, auto... arguments) {
        const auto begin = std::chrono::steady_clock::now();
        const int32_t result = call(arguments...);
        const std::chrono::duration<float, std::milli> taken =
            std::chrono::steady_clock::now() - begin;
        failed += result != 0;
        refused += result != 0 && taken < 9s;
        milliseconds[count++ % std::size(milliseconds)] = taken.count();
        return result;
    }

    void judge(const char* calls, float bound, bool mayFail) {
        const std::span all(milliseconds, std::min(count.load(), std::size(milliseconds)));
        if (!all.empty()) {
            std::ranges::sort(all);
            std::printf("    %s: %zu, %zu failed, median %.3f ms, longest %.3f ms\n", calls,
                        count.load(), failed.load(), all[all.size() / 2], all.back());
            EXPECT_EQ(mayFail ? refused : failed, 0u) << calls;
            EXPECT_LE(sampleOr(0.0f, all.back()), bound) << calls;
        }
    }
};

struct Shared {
    Tally sets, gets, clears;
    std::atomic<size_t> writes, overtaken, lost;
    std::atomic<bool> ready, clearing, over;
};
inline Shared& shared = *static_cast<Shared*>(
    mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

pid_t start(auto work) {
    std::fflush(stdout);
    const pid_t process = fork();
    if (process == 0) {
        alarm(sampleOr(100u, 600u));  // ends a process that hangs, which fails then
        work();
        std::fflush(stdout);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    return process;
}

inline void waitForAll() {
    for (int status = 0; wait(&status) > 0;) {
        EXPECT_EQ(status, 0) << "of a process";
    }
}

// Until a process that was started says so.
inline void waitUntilReady() {
    while (!shared.ready) {
        std::this_thread::yield();
    }
}

void inProcess(auto work) {
    int status = 0;
    waitpid(start(work), &status, 0);
    EXPECT_EQ(status, 0) << "of a process";
}

// Starts processes whose threads run work(process, thread, round) until it is over, and once more.
void many(int processes, int threads, auto work) {
    for (int process = 0; process < processes; ++process) {
        start([=] {
            std::vector<std::jthread> all;
            for (int thread = 0; thread < threads; ++thread) {
                all.emplace_back([=] {
                    bool last = false;
                    for (int round = 0; !last; ++round) {
                        last = shared.over;
                        work(process, thread, round);
                    }
                });
            }
        });
    }
}

// Starts another program that opens both files, executes sql and keeps its locks until it is over.
inline void hold(const char* sql, std::chrono::seconds sample, std::chrono::seconds whole) {
    start([&] {
        for (const std::string& path : {kFile, kVolatileFile}) {
            sqlite3* db = nullptr;
            sqlite3_open(path.c_str(), &db);
            EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        }
        shared.ready = true;
        std::this_thread::sleep_for(sampleOr(sample, whole));
        shared.over = true;
    });
    waitUntilReady();
}
