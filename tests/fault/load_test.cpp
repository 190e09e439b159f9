// Every exported function from many threads, and for a long time.
#include <barrier>
#include <fstream>
#include <limits>
#include <random>
#include <thread>

#include "support/calls.h"

namespace {

using Load = Calls;

TEST_F(Load, ThreadsDontDisturbEachOther) {
    constexpr size_t kThreads = 4;
    std::barrier start(kThreads);
    // Calls that share something are left to one thread; those of all settings at once are left
    // out.
    const auto work = [&](size_t thread) {
        start.arrive_and_wait();
        for (int round = 0; round < 3; ++round) {
            for (const Call& call : calls) {
                if (call.owner.empty() ||
                    std::hash<std::string>()(call.owner) % kThreads == thread) {
                    EXPECT_EQ(call.run(), call.good) << call.function;
                }
            }
        }
    };
    std::erase_if(calls, [](const Call& call) { return call.owner == "settings"; });
    std::vector<std::jthread> threads;
    for (size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back(work, thread);
    }
}

// The sanitizers' allocators keep what is given back, and tell of leaks by themselves.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kTolerance = std::numeric_limits<long>::max() / 2;
#else
constexpr long kTolerance = 16;
#endif

// In pages.
long residentMemory() {
    long all = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident;
}

TEST_F(Load, NothingGrowsInAHundredThousandCalls) {
    std::mt19937 random(1);
    const auto run = [&](int count) {
        while (count > 0) {
            const Call& call = calls[random() % calls.size()];
            // Those that start a program take a thousand times as long.
            if (startsProgram(call) && random() % 100 != 0) {
                continue;
            }
            ASSERT_EQ(call.run(), call.good) << call.function;
            --count;
        }
    };
    run(1000);
    const long memory = residentMemory();
    const int descriptors = openDescriptors();
    run(99'000);
    EXPECT_LE(residentMemory(), memory + kTolerance);
    EXPECT_EQ(openDescriptors(), descriptors);
}

}  // namespace
