// The results of the exported functions, by the table of their calls.
#include <unistd.h>

#include <barrier>
#include <csignal>
#include <locale>
#include <thread>

#include "console-manager/device.h"
#include "console-manager/settings.h"
#include "support/calls.h"

namespace {

// An application's choice, which must not change how the kernel's figures are read.
class PointsBetweenThousands : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class EachCall : public Calls, public testing::WithParamInterface<Subject> {
  protected:
    EachCall() {
        std::locale::global(std::locale(std::locale::classic(), new PointsBetweenThousands));
    }
};

TEST_P(EachCall, GivesTheResultOfItsSituation) {
    for (const Call& call : GetParam().calls) {
        EXPECT_EQ(call.result(), call.good);
        for (const Situation& situation : call.situations) {
            replace(situation.file, situation.content);
            EXPECT_EQ(call.result(), situation.result) << situation.content;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Functions, EachCall, testing::ValuesIn(functionSubjects()),
                         testing::PrintToStringParamName());

using Threads = Calls;

constexpr size_t kThreads = 4;

// They begin together.
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
    std::vector<Subject> subjects = functionSubjects();
    std::ranges::copy(settingSubjects(), std::back_inserter(subjects));
    // The one that is of all settings is left out.
    std::erase_if(subjects, [](const Subject& subject) { return subject.owner == "settings"; });
    inThreads([&](size_t thread) {
        for (int round = 0; round < 3; ++round) {
            for (const Subject& subject : subjects) {
                // Calls that share something are left to one thread.
                const size_t owner = std::hash<std::string>()(subject.owner) % kThreads;
                for (const Call& call : subject.calls) {
                    EXPECT_TRUE((!subject.owner.empty() && owner != thread) ||
                                call.result() == call.good)
                        << subject.name << ' ' << call.name;
                }
            }
        }
    });
}

TEST_F(Threads, TakeTheSameReleaseTextsFromTheFile) {
    std::string file = "BUILD_ID=a=b\n=nameless\nno separator\nBUILD_ID =\"c";
    std::map<std::string, std::string> entries = {
        {"", "nameless"}, {"BUILD_ID", "a=b"}, {"BUILD_ID ", "\"c"}};
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "N" + std::to_string(i);
        file += "\n" + name + "=text";
        entries[name] = "text";
    }
    bindFile("/etc/os-release", file);
    std::vector<const char*> texts(kThreads);
    inThreads([&](size_t thread) { texts[thread] = CML_getBuildId(); });
    EXPECT_EQ(os_release, entries);
    EXPECT_EQ(texts, std::vector(kThreads, CML_getBuildId())) << "the same pointers";

    os_release.clear();
    bindFile("/etc/os-release", "");
    EXPECT_STREQ(CML_getProductRelease(), "");
    bindFile("/etc/os-release", "ID=late\n");
    EXPECT_STREQ(CML_getProductID(), "") << "it's looked for once";
}

TEST_F(Threads, CanWriteBehindTheLibrarysMessage) {
    run("mkdir /tmp/m7/console-manager.db");
    testing::internal::CaptureStderr();
    EXPECT_EQ(DAL_CML_isAutoThemePresent(), 0);
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("[2] Unable to open /tmp/m7/"));
    std::jthread([] { std::fflush(stderr); });
}

// The signal comes while the library waits for the second half, which waits for its delivery.
TEST_F(Calls, ASignalInTheMiddleOfANumberChangesNoFigure) {
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) {};
    sigaction(SIGUSR1, &interrupting, nullptr);
    const std::string id = std::to_string(getpid());
    const auto wait = [&](const std::string& line) {
        return "until grep -q '" + line + "' /proc/" + id + "/status; do :; done; ";
    };
    putProgram("df", "printf '/dev/a 10'; " + wait("^State:.S") + "kill -USR1 " + id + "; " +
                         wait("^ShdPnd:.0*$") + "echo 00 250");
    uint32_t total = 0;
    uint32_t used = 0;
    CML_getStorageInfo(&total, &used);
    EXPECT_EQ(joined(total, used), "1000 250");
}

TEST(Usage, IsNothingBeforeTheSecondReading) {
    EXPECT_EQ(CML_getCPUUsage(), 0);
}

}  // namespace
