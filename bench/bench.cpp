// Prints the table. Started by bench/run, in namespaces of its own.
#include "bench/bench.h"

#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

namespace {

std::vector<std::string> table;

void add(const std::string& name, const Work& work, const Work& before, bool each) {
    const auto loop = [=](benchmark::State& state) {
        before();
        for ([[maybe_unused]] auto iteration : state) {
            if (each) {
                state.PauseTiming();
                before();
                state.ResumeTiming();
            }
            work();
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), loop)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(0.003)
        ->Repetitions(40)
        ->ComputeStatistics("least", [](const auto& all) { return std::ranges::min(all); })
        ->ReportAggregatesOnly();
}

// Prints the least time of all repetitions: what else runs on the machine only adds to it.
struct TableReporter : benchmark::BenchmarkReporter {
    std::map<std::string, double> times;

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "least") {
                times[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
        }
    }
    void Finalize() override {
        std::printf("%-52s %10s %10s %6s\n", "function", "call, us", "floor, us", "ratio");
        for (const std::string& name : table) {
            const double call = times[name];
            const double floor = times[name + "/floor"];
            std::printf("%-52s %10.3f", name.c_str(), call);
            floor > 0 ? std::printf(" %10.3f %6.2f\n", floor, call / floor) : std::puts("");
        }
    }
};

}  // namespace

void measure(const Subject& subject) {
    table.push_back(subject.function);
    add(subject.function, subject.call, subject.beforeCall, subject.each);
    if (subject.floor) {
        add(subject.function + "/floor", subject.floor, subject.beforeFloor, subject.each);
    }
}

void require(bool works, const char* what) {
    if (!works) {
        std::fprintf(stderr, "can't be measured: %s\n", what);
        std::exit(1);
    }
}

void freeList(char** list) {
    for (int i = 0; list[i] != nullptr; ++i) {
        std::free(list[i]);
    }
    std::free(list);
}

int main(int, char** argv) {
    // Settings are written and deleted here.
    require(mkdir("/mnt/vex-data", 0755) == 0, "settings that somebody uses; start bench/run");
    measureSettings();
    measureSystem();
    measureWifi();
    // So that call and floor see the same machine.
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {argv[0], interleaved.data(), nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
}
