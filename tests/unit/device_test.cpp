#include "console-manager/device.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <locale>
#include <thread>

#include "support/sandbox.h"

namespace {

// An application's choice, which must not change how the kernel's figures are read.
class CommaForPoint : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

class Device : public Sandbox {
  protected:
    Device() { std::locale::global(std::locale(std::locale::classic(), new CommaForPoint)); }
};

// The two numbers that a function delivers, in the place of others.
template <typename Number>
std::pair<Number, Number> both(int32_t (*ask)(Number*, Number*)) {
    std::pair<Number, Number> numbers{7, 8};
    EXPECT_EQ(ask(&numbers.first, &numbers.second), 0);
    return numbers;
}

std::vector<long double> usage() {
    int32_t count = -1;
    const long double* const figures = CML_getAllCPUUsage(&count);
    return {figures, figures + count};
}

}  // namespace

TEST_F(Device, TakesReleaseTextsFromTheFileOnceForManyThreads) {
    const std::string large(10000, 'x');
    bindFile("/etc/os-release",
             "BUILD_MODE=\"a b\"\nVERSION=\"\"\nMACHINE=\"\n=nameless\n\nno separator\n"
             "BUILD_ID=old\nBUILD_ID=a=b\nBUILD_ID =\"c\nlarge=" +
                 large + "\nID=last");
    const char* texts[4];
    {
        std::vector<std::jthread> threads;
        for (const char*& text : texts) {
            threads.emplace_back([&text] { text = CML_getBuildId(); });
        }
    }
    const std::map<std::string, std::string> entries = {
        {"BUILD_MODE", "a b"}, {"VERSION", ""},      {"MACHINE", "\""}, {"", "nameless"},
        {"BUILD_ID", "a=b"},   {"BUILD_ID ", "\"c"}, {"large", large},  {"ID", "last"}};
    EXPECT_EQ(os_release, entries);
    bindFile("/etc/os-release", "ID=changed\n");
    EXPECT_EQ((Texts{CML_getBuildType(), CML_getProductID(), CML_getBuildId(), CML_getMachineName(),
                     CML_getProductRelease()}),
              (Texts{"a b", "last", "a=b", "\"", ""}));
    EXPECT_EQ(std::ranges::count(texts, CML_getBuildId()), 4) << "the same pointer";

    os_release.clear();
    bindFile("/etc/os-release", "");
    EXPECT_STREQ(CML_getProductRelease(), "");
    bindFile("/etc/os-release", "ID=late\n");
    EXPECT_STREQ(CML_getProductID(), "") << "it's looked for once";
}

TEST_F(Device, TakesStorageFromTheFirstDeviceWithTwoNumbers) {
    const std::pair<std::string, std::pair<uint32_t, uint32_t>> cases[] = {
        {"Filesystem 1K-blocks Used\n/dev/data 1000 250 750 25% /mnt/vex-data\n", {1000, 250}},
        {"\n \n  /dev/\t4294967295 0\n/dev/b 3 4", {4294967295, 0}},
        {"tmpfs 1 2\n/dev 3 4\nx/dev/a 7 8\n", {0, 0}},
        {"/dev/a 5\n/dev/b 4294967296 7\n", {4294967295, 0}},
        {"/dev/" + std::string(300, 'x') + " 1000 250\n", {1000, 250}},
        {"/dev/a -2 +x\r\n/dev/b \n/dev/c", {4294967294, 0}},
    };
    for (const auto& [output, expected] : cases) {
        putProgram("df", "test \"$*\" = '-k /mnt/vex-data' && printf '" + output + "'; exit 1");
        EXPECT_EQ(both(CML_getStorageInfo), expected) << output;
    }
    // A signal that interrupts the reading in the middle of a number.
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) {};
    sigaction(SIGUSR1, &interrupting, nullptr);
    const std::string id = std::to_string(getpid());
    const auto wait = [&](const std::string& line) {
        return "until grep -q '" + line + "' /proc/" + id + "/status; do :; done; ";
    };
    putProgram("df", "printf '/dev/a 10'; " + wait("^State:.S") + "kill -USR1 " + id + "; " +
                         wait("^ShdPnd:.0*$") + "echo 00 250");
    EXPECT_EQ(both(CML_getStorageInfo), std::pair(1000u, 250u));
}

TEST_F(Device, TakesMemoryAndUpTimeFromTheirFiles) {
    const std::pair<const char*, std::pair<int32_t, int32_t>> cases[] = {
        {"A: 1\n\nMemFree:\t512\nMemAvailable: 3 kB\n  MemTotal:   2048", {2048, 512}},
        {"MemTotal 1\nMemFree:x 2\nMemTotal:3\nmemtotal: 4\nXMemFree: 5\n", {7, 8}},
        {"MemTotal: 2147483647\nMemFree: 2147483648\n", {2147483647, 8}},
        {"MemTotal:\v+12kB\r\nMemFree: -2147483648\r\nMemTotal: +-1\n", {12, INT32_MIN}},
    };
    for (const auto& [content, expected] : cases) {
        bindFile("/proc/meminfo", content);
        EXPECT_EQ(both(CML_getMemoryInformation), expected) << content;
    }
    bindFile("/proc/uptime", "12345.67 54321.89\n");
    EXPECT_EQ(CML_getUpTime(), 12345.67);
}

TEST_F(Device, ComparesEachProcessorReadingWithTheOneBefore) {
    const std::pair<const char*, std::vector<long double>> steps[] = {
        {"cpu 100 0 50 850\ncpu0 1 1 1 1\ncpu1 0 0 0 0\nintr 1 2 3 4\n", {0}},
        {"cpu 150 0 100 950 9\ncpu0 1 1 1 9\ncpu1 1 2 3 0 7\nctxt 5\n", {0.5, 0, 1}},
        {"cpu 151 0 100 951\ncpu0 1 2 1 10\ncpu1 1 2 4 1", {0.5, 0.5, 0.5}},
        // One core fewer: the figures stay for one call.
        {"cpu 152 0 100 951\ncpu1 1 2 4 1\n", {0.5, 0.5, 0.5}},
        {"\n cpu +1.52e2 0 100.5 9525.e-1x\nno cpu 5\ncpux 2 2 4 2\n", {0.25, 0.5}},
        // No reading, and then none to compare with.
        {"intr 1 2 3 4\n", {0.25, 0.5}},
        {"cpu 10 10 10 10\ncpu0 0 0 0 0\n", {0.25, 0.5}},
        {"cpu 20 10\ncpu0 0 x 1 1\n", {0, NAN}},
    };
    const auto same = [](auto a, auto b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    for (const auto& [content, expected] : steps) {
        bindFile("/proc/stat", content);
        const std::vector<long double> figures = usage();
        EXPECT_TRUE(std::ranges::equal(figures, expected, same))
            << content << testing::PrintToString(figures);
    }
    bindFile("/proc/stat", "cpu 21 10 0 3\ncpu0 0 0 0 0\n");
    EXPECT_EQ(CML_getCPUUsage(), 0.25L);
}

TEST_F(Device, AgreesWithTheSystemsOwnPrograms) {
    run("ln -s / /mnt/vex-data");
    const double before = std::stod(run("cat /proc/uptime"));
    const long double between = CML_getUpTime();
    EXPECT_TRUE(before <= between && between <= std::stod(run("cat /proc/uptime"))) << between;

    char* release = nullptr;
    char* version = nullptr;
    EXPECT_EQ(CML_getLinuxReleaseInformation(&release, &version), 0);
    CML_getCPUUsage();
    EXPECT_EQ(std::ssize(usage()) - 1, sysconf(_SC_NPROCESSORS_ONLN));
    const auto line = [](auto value) { return "\n" + std::to_string(value); };
    // A system that lives in memory has no device.
    EXPECT_EQ(release + std::string("\n") + version + line(both(CML_getMemoryInformation).first) +
                  line(both(CML_getStorageInfo).first),
              run("uname -r; uname -v; free -k | awk '/^Mem:/ { print $2 }'; "
                  "df -k / | awk 'BEGIN { n = 0 } /^.dev./ { n = $2 } END { printf n }'"));
    free(release);
    free(version);
}
