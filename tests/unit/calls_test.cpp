// The results of the exported functions, by the table of their calls.
#include <barrier>
#include <locale>
#include <thread>

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
                         [](const auto& of) { return of.param.name; });

using Threads = Calls;

TEST_F(Threads, DontDisturbEachOther) {
    constexpr size_t kThreads = 4;
    std::barrier start(kThreads);
    // Calls that share something are left to one thread; the one of all settings is left out.
    std::vector<Subject> subjects = functionSubjects();
    std::ranges::copy(settingSubjects(), std::back_inserter(subjects));
    std::erase_if(subjects, [](const Subject& subject) { return subject.owner == "settings"; });
    const auto work = [&](size_t thread) {
        start.arrive_and_wait();
        for (int round = 0; round < 3; ++round) {
            for (const Subject& subject : subjects) {
                const size_t owner = std::hash<std::string>()(subject.owner) % kThreads;
                for (const Call& call : subject.calls) {
                    EXPECT_TRUE((!subject.owner.empty() && owner != thread) ||
                                call.result() == call.good)
                        << subject.name << ' ' << call.name;
                }
            }
        }
    };
    std::vector<std::jthread> threads;
    for (size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back(work, thread);
    }
}

}  // namespace
