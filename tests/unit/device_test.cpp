// The texts of the release file; the other functions of the device are in the table of all calls.
#include "console-manager/device.h"

#include <algorithm>
#include <barrier>
#include <thread>

#include "support/sandbox.h"

namespace {

using Device = Sandbox;

TEST_F(Device, TakesReleaseTextsFromTheFileOnceForManyThreads) {
    std::string file = "BUILD_ID=a=b\n=nameless\nno separator\nBUILD_ID =\"c";
    std::map<std::string, std::string> entries = {
        {"", "nameless"}, {"BUILD_ID", "a=b"}, {"BUILD_ID ", "\"c"}};
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "N" + std::to_string(i);
        file.append("\n").append(name).append("=text");
        entries[name] = "text";
    }
    bindFile("/etc/os-release", file);
    const char* texts[4];
    std::barrier start(std::ssize(texts));
    {
        std::vector<std::jthread> threads;
        for (const char*& text : texts) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                text = CML_getBuildId();
            });
        }
    }
    EXPECT_EQ(os_release, entries);
    EXPECT_EQ(std::ranges::count(texts, CML_getBuildId()), 4) << "the same pointer";

    os_release.clear();
    bindFile("/etc/os-release", "");
    EXPECT_STREQ(CML_getProductRelease(), "");
    bindFile("/etc/os-release", "ID=late\n");
    EXPECT_STREQ(CML_getProductID(), "") << "it's looked for once";
}

TEST_F(Device, HasNoUsageBeforeTheSecondReading) {
    EXPECT_EQ(CML_getCPUUsage(), 0);
}

}  // namespace
