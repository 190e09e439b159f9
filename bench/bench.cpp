// Prints the table. Exported functions are read from standard input, a name in each line; one that
// isn't in the table makes the program fail. Started by bench/run, in namespaces of its own.
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <set>
#include <sstream>
#include <vector>

#include "bench/measure.h"

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

// Of these the median counts. Call and floor take turns, so that both see the same machine.
constexpr int kRounds = 15;
constexpr Microseconds kRound(1000);

struct Result {
    double call;
    double floor;  // 0 for none
    std::string setting;
};

struct Row {
    std::string name;
    bool isHeading;
    std::vector<Result> results;  // one, or one for each setting
};

std::vector<Row> table;
std::set<std::string> measured;

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
    return values[values.size() / 2];
}

// In microseconds, of all repetitions.
double timeOf(const Work& work, const Work& before, int repetitions) {
    if (!before) {
        const auto start = Clock::now();
        for (int i = 0; i < repetitions; ++i) {
            work();
        }
        return Microseconds(Clock::now() - start).count();
    }
    Microseconds total(0);
    for (int i = 0; i < repetitions; ++i) {
        before();
        const auto start = Clock::now();
        work();
        total += Clock::now() - start;
    }
    return total.count();
}

Result timed(const Subject& subject) {
    // The first call may open what later ones find open.
    timeOf(subject.call, subject.beforeCall, 1);
    int repetitions = 1;
    while (timeOf(subject.call, subject.beforeCall, repetitions) < kRound.count()) {
        repetitions *= 2;
    }
    std::vector<double> calls;
    std::vector<double> floors;
    for (int round = 0; round < kRounds; ++round) {
        calls.push_back(timeOf(subject.call, subject.beforeCall, repetitions) / repetitions);
        floors.push_back(subject.floor
                             ? timeOf(subject.floor, subject.beforeFloor, repetitions) / repetitions
                             : 0);
    }
    return {median(calls), median(floors), subject.setting};
}

double medianOf(const Row& row, double Result::*figure) {
    std::vector<double> values;
    for (const Result& result : row.results) {
        values.push_back(result.*figure);
    }
    return median(values);
}

void print(const Row& row) {
    if (row.isHeading) {
        std::printf("\n%-46s %11s %11s %7s\n", row.name.c_str(), "call, us", "floor, us", "ratio");
        return;
    }
    const double call = medianOf(row, &Result::call);
    const double floor = medianOf(row, &Result::floor);
    std::printf("  %-44s %11.3f", row.name.c_str(), call);
    if (floor > 0) {
        std::printf(" %11.3f %7.2f", floor, call / floor);
    } else {
        std::printf(" %11s %7s", "-", "-");
    }
    if (row.results.size() > 1) {
        const auto [least, most] =
            std::ranges::minmax_element(row.results, {}, [](const Result& r) { return r.call; });
        std::printf("   %2zu: %.3f to %.3f, %s", row.results.size(), least->call, most->call,
                    most->setting.c_str());
    }
    std::puts("");
}

}  // namespace

void beginSubsystem(const std::string& name) {
    table.push_back({name, true, {}});
}

void measure(const Subject& subject) {
    std::istringstream words(subject.function);
    for (std::string word; words >> word;) {
        measured.insert(word);
    }
    const std::string& rowName = subject.row.empty() ? subject.function : subject.row;
    auto row = std::ranges::find(table, rowName, &Row::name);
    if (row == table.end()) {
        row = table.insert(row, {rowName, false, {}});
    }
    row->results.push_back(timed(subject));
}

void require(bool works, const char* what) {
    if (!works) {
        std::fprintf(stderr, "can't be measured: %s\n", what);
        std::exit(1);
    }
}

int main() {
    // Every setting is written and deleted here.
    require(mkdir("/mnt/vex-data", 0755) == 0, "settings that somebody uses; start bench/run");
    measureSettings();
    measureNetwork();
    measureDevice();
    measureDisplay();
    measureWifi();
    std::puts(
        "\nA row of several settings has their median, and behind it their number, the fastest,");
    std::puts("and the slowest with its setting.");
    std::ranges::for_each(table, print);

    std::set<std::string> missing{std::istream_iterator<std::string>(std::cin), {}};
    require(!missing.empty(), "without the names of the exported functions");
    for (const std::string& name : measured) {
        missing.erase(name);
    }
    for (const std::string& name : missing) {
        std::fprintf(stderr, "not in the table: %s\n", name.c_str());
    }
    return missing.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
