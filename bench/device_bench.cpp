// The readers of the kernel's files beside a bare open, read and close of the same file, and the
// storage figures beside a bare run of the same command. Needs root, for a data mount of its own.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>

#include "console-manager/device.h"

namespace {

void bareRead(benchmark::State& state, const char* path) {
    char buffer[8192];
    for (auto _ : state) {
        const int file = open(path, O_RDONLY | O_CLOEXEC);
        while (read(file, buffer, sizeof buffer) > 0) {
        }
        close(file);
        benchmark::ClobberMemory();
    }
}

// An empty map makes the file be read again; emptying it isn't part of the reading.
void osRelease(benchmark::State& state) {
    for (auto _ : state) {
        os_release.clear();
        const auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(CML_getProductID());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
    }
}

void memory(benchmark::State& state) {
    int32_t total = 0;
    int32_t free = 0;
    for (auto _ : state) {
        CML_getMemoryInformation(&total, &free);
        benchmark::DoNotOptimize(total + free);
    }
}

void cpuUsage(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_getAllCPUUsage(nullptr));
    }
}

void upTime(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_getUpTime());
    }
}

void barePopen(benchmark::State& state) {
    char buffer[4096];
    for (auto _ : state) {
        FILE* const pipe = popen("df -k /mnt/vex-data", "r");
        while (std::fread(buffer, 1, sizeof buffer, pipe) > 0) {
        }
        pclose(pipe);
    }
}

void storage(benchmark::State& state) {
    uint32_t total = 0;
    uint32_t used = 0;
    for (auto _ : state) {
        CML_getStorageInfo(&total, &used);
        benchmark::DoNotOptimize(total + used);
    }
}

// Where the volume is missing, df fails at once and complains each time.
const bool prepared =
    unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
    mount("tmpfs", "/mnt", "tmpfs", 0, nullptr) == 0 && mkdir("/mnt/vex-data", 0755) == 0;

}  // namespace

BENCHMARK_CAPTURE(bareRead, osRelease, "/etc/os-release");
BENCHMARK(osRelease)->UseManualTime();
BENCHMARK_CAPTURE(bareRead, memory, "/proc/meminfo");
BENCHMARK(memory);
BENCHMARK_CAPTURE(bareRead, cpuUsage, "/proc/stat");
BENCHMARK(cpuUsage);
BENCHMARK_CAPTURE(bareRead, upTime, "/proc/uptime");
BENCHMARK(upTime);
BENCHMARK(barePopen)->UseRealTime();
BENCHMARK(storage)->UseRealTime();
