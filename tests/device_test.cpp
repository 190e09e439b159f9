#include "console-manager/device.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <locale>
#include <stdexcept>
#include <thread>

#include "console-manager/settings.h"
#include "sandbox.h"

namespace {

// An application's choice, which must not change how the kernel's figures are read: 1.234,5.
class CommaForPoint : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class Device : public Sandbox {
  protected:
    Device() { std::locale::global(std::locale(std::locale::classic(), new CommaForPoint)); }
    void TearDown() override { EXPECT_EQ(openDescriptors(), descriptors); }

    int descriptors = openDescriptors();
};

// Covers a file with a socket, which nobody can open.
void makeUnreadable(const char* target) {
    ASSERT_EQ(mknod("/mnt/test/socket", S_IFSOCK | 0600, 0), 0);
    ASSERT_EQ(mount("/mnt/test/socket", target, "none", MS_BIND, nullptr), 0);
}

std::vector<const char*> releaseTexts() {
    return {CML_getBuildType(), CML_getProductID(), CML_getBuildId(), CML_getMachineName(),
            CML_getProductRelease()};
}

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
    EXPECT_TRUE(os_release.empty());
    const std::string large(10000, 'x');
    bindFile(
        "/etc/os-release",
        "BUILD_MODE=\"a b\"\nVERSION=\"\"\nMACHINE=\"\n=nameless\n\nno separator\nBUILD_ID=old\n"
        "BUILD_ID=a=b\nBUILD_ID =c\n#BUILD_ID=d\nhalf=\"e\nsingle='f'\n"
        "inner=\"\\\"g\"\"\nlate= \"h\"\nreturn=\"i\"\r\nlarge=" +
            large + "\nID=last");
    std::vector<const char*> texts[4];
    {
        std::vector<std::jthread> threads;
        for (auto& ofThread : texts) {
            threads.emplace_back([&ofThread] { ofThread = releaseTexts(); });
        }
    }
    EXPECT_EQ(Texts(texts[0].begin(), texts[0].end()), (Texts{"a b", "last", "a=b", "\"", ""}));
    const std::map<std::string, std::string> entries = {
        {"BUILD_MODE", "a b"}, {"VERSION", ""},       {"MACHINE", "\""},  {"", "nameless"},
        {"BUILD_ID", "a=b"},   {"BUILD_ID ", "c"},    {"#BUILD_ID", "d"}, {"half", "\"e"},
        {"single", "'f'"},     {"inner", R"(\"g")"},  {"late", " \"h\""}, {"large", large},
        {"ID", "last"},        {"return", "\"i\"\r"},
    };
    EXPECT_EQ(os_release, entries);
    bindFile("/etc/os-release", "ID=changed\n");
    for (const auto& ofThread : texts) {
        EXPECT_EQ(ofThread, releaseTexts()) << "the same pointers";
    }
}

TEST_F(Device, LooksForTheReleaseFileOnlyOnce) {
    makeUnreadable("/etc/os-release");
    EXPECT_STREQ(CML_getProductRelease(), "");
    bindFile("/etc/os-release", "VERSION=2\nID=late\n");
    EXPECT_STREQ(CML_getProductID(), "");
    EXPECT_EQ(os_release, (std::map<std::string, std::string>{{"ID", ""}, {"VERSION", ""}}));
}

TEST_F(Device, TellsTheRunningKernel) {
    char* release = nullptr;
    char* version = nullptr;
    EXPECT_EQ(CML_getLinuxReleaseInformation(&release, &version), 0);
    EXPECT_EQ(release + std::string("\n") + version + "\n", run("uname -r; uname -v"));
    free(release);
    free(version);
}

TEST_F(Device, TakesStorageFromTheFirstDeviceWithTwoNumbers) {
    const std::pair<std::string, std::pair<uint32_t, uint32_t>> cases[] = {
        {"Filesystem 1K-blocks Used\n/dev/data 1000 250 750 25% /mnt/vex-data\n", {1000, 250}},
        {"/dev/a 1 2\n/dev/b 3 4", {1, 2}},
        {"\n \n  /dev/\t4294967295 0\n", {4294967295, 0}},
        {"tmpfs 1 2\n/dev 3 4\n/DEV/a 5 6\nx/dev/a 7 8\n", {0, 0}},
        {"/dev/wrapped\n 1000 250 750 25% /mnt/vex-data\n", {0, 0}},
        {"/dev/a 5 x\n/dev/b\n", {5, 0}},
        {"/dev/a 5\n/dev/b 6 7\n", {6, 7}},
        {"/dev/a 5.000 1\n", {5, 0}},
        {"/dev/a 4294967296 1\n", {4294967295, 0}},
        {"/dev/" + std::string(300, 'x') + " 1000 250\n", {1000, 250}},
    };
    for (const auto& [output, expected] : cases) {
        putProgram("df", "test \"$*\" = '-k /mnt/vex-data' && printf '" + output + "'; exit 1");
        EXPECT_EQ(both(CML_getStorageInfo), expected) << output;
    }
}

TEST_F(Device, ThrowsWhenNoShellCanBeStarted) {
    uint32_t total = 7;
    uint32_t used = 7;
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit noDescriptors{0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &noDescriptors);
    try {
        CML_getStorageInfo(&total, &used);
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        setrlimit(RLIMIT_NOFILE, &before);
        EXPECT_STREQ(error.what(), "popen() failed!");
    }
    EXPECT_EQ(total + used, 0u);
}

TEST_F(Device, TakesMemoryFromItsTwoLines) {
    const std::pair<const char*, std::pair<int32_t, int32_t>> cases[] = {
        {"MemTotal: 2048 kB\nMemFree: 512 kB\n", {2048, 512}},
        {"A: 1\n\nMemFree:\t512\nMemAvailable: 3 kB\n  MemTotal:   2048", {2048, 512}},
        {"MemTotal: 1\nMemFree: 2\nMemTotal: 3.000\n", {3, 2}},
        {"MemTotal 1\nMemFree:x 2\nMemTotal:3\nmemtotal: 4\nXMemFree: 5\n", {7, 8}},
        {"MemTotal: 2147483647\nMemFree: 2147483648\n", {2147483647, 8}},
    };
    for (const auto& [content, expected] : cases) {
        bindFile("/proc/meminfo", content);
        EXPECT_EQ(both(CML_getMemoryInformation), expected) << content;
    }
    makeUnreadable("/proc/meminfo");
    EXPECT_EQ(both(CML_getMemoryInformation), std::pair(7, 8));
}

TEST_F(Device, ComparesEachProcessorReadingWithTheOneBefore) {
    const double third = 1.0 / 3;
    const std::pair<const char*, std::vector<long double>> steps[] = {
        {"cpu 100 0 50 850\ncpu0 1 1 1 1\ncpu1 0 0 0 0\nintr 1 2 3 4\n", {0}},
        {"cpu 150 0 100 950 9\ncpu0 1 1 1 9\ncpu1 1 2 3 0 7\nctxt 5\n", {0.5, 0, 1}},
        {"cpu 150 0 100 950\ncpu0 1 1 1 9\ncpu1 1 2 3 0\n", {NAN, NAN, NAN}},
        {"cpu 151 0 100 952\ncpu0 1 2 1 11\ncpu1 1 2 4 2", {third, third, third}},
        // One core fewer: the figures stay for one call.
        {"cpu 152 0 100 952\ncpu1 1 2 4 2\n", {third, third, third}},
        {"\n cpu 152 0 100.5 952.5\nno cpu 5\ncpux 2 2 4 2\n", {0.5, 1}},
        // No reading twice, and then none to compare with.
        {"intr 1 2 3 4\n", {0.5, 1}},
        {"", {0.5, 1}},
        {"cpu 10 10 10 10\ncpu0 0 0 0 0\n", {0.5, 1}},
        {"cpu 2e1 10 0 0x10\ncpu0 0 x 1 1\n", {0, NAN}},
        {"cpu 20 10\ncpu0\n", {NAN, NAN}},
    };
    const auto same = [](auto a, auto b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    for (const auto& [content, expected] : steps) {
        bindFile("/proc/stat", content);
        const std::vector<long double> figures = usage();
        EXPECT_TRUE(std::ranges::equal(figures, expected, same))
            << content << testing::PrintToString(figures);
    }
    bindFile("/proc/stat", "cpu 21 10 0 3\ncpu0 0 0 0 0\n");
    EXPECT_EQ(CML_getCPUUsage(), 0.25L) << "the same interval";
    makeUnreadable("/proc/stat");
    EXPECT_EQ(CML_getCPUUsage(), 0.25L);
}

TEST_F(Device, TakesUpTimeFromTheFirstNumber) {
    bindFile("/proc/uptime", "12345.67 54321.89\n");
    EXPECT_EQ(CML_getUpTime(), 12345.67);
    bindFile("/proc/uptime", "x 1\n");
    EXPECT_EQ(CML_getUpTime(), 0);
    makeUnreadable("/proc/uptime");
    EXPECT_EQ(CML_getUpTime(), 0);
}

TEST_F(Device, AgreesWithTheSystemsOwnPrograms) {
    const auto figure = [](const char* command) { return std::stod(run(command)); };
    const auto [memory, unused] = both(CML_getMemoryInformation);
    EXPECT_EQ(memory, figure("free -k | grep ^Mem: | tr -s ' ' | cut -d' ' -f2"));
    EXPECT_TRUE(0 < unused && unused < memory) << unused;

    const double before = figure("cat /proc/uptime");
    const long double between = CML_getUpTime();
    EXPECT_TRUE(before <= between && between <= figure("cat /proc/uptime")) << between;

    CML_getCPUUsage();
    EXPECT_EQ(static_cast<double>(usage().size()), figure("nproc --all") + 1);

    run("ln -s / /mnt/vex-data");
    const auto [total, used] = both(CML_getStorageInfo);
    EXPECT_LE(used, total);
    // A system that lives in memory has no device, and no line here.
    EXPECT_EQ(total == 0 ? "" : std::to_string(total) + "\n",
              run("df -k / | grep ^/dev/ | tr -s ' ' | cut -d' ' -f2"));
}

TEST_F(Device, GivesDisplaySettingsAsResults) {
    const auto all = [] {
        return std::vector{CML_getAllowDriverToAdjustBrightness(),
                           CML_getDisplayInactivityTimeout(), CML_getDisplayOffTimeout()};
    };
    writeFile("/mnt/vex-data", "no room for a database");
    EXPECT_EQ(all(), (std::vector{0, 15, 30}));
    run("rm /mnt/vex-data");
    DAL_CML_setAllowDriverToAdjustBrightness(1);
    DAL_CML_setDisplayInactivityTimeout(-2);
    DAL_CML_setDisplayOffTimeout(2147483647);
    CML_restoreDisplayBrightness();
    EXPECT_EQ(all(), (std::vector{1, -2, 2147483647}));
    // The connection to the settings stays open until the process ends.
    descriptors = openDescriptors();
}
