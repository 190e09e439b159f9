// The settings on real databases.
#include <algorithm>
#include <array>
#include <barrier>
#include <thread>

#include "console-manager/settings.h"
#include "contracts/qor_core.h"
#include "support/sandbox.h"
#include "support/sqlite_query.h"

// The logging libraries, replaced. The first word of a record is its number; 0 is no record.
static std::array<TDL_LoggerRecord*, 2> loggers;  // what TDL_logger returns, in turn
static size_t asked = 0;
static std::string printed;

TDL_LoggerRecord* TDL_logger(void) {
    return loggers[asked++ % 2];
}

void qor_logger_print3(TDL_LoggerRecord* logger, int level, int zero1, int zero2, int zero3,
                       int zero4, const char* format, va_list arguments) {
    char text[100];
    std::vsnprintf(text, sizeof text, format, arguments);
    const auto number = logger == nullptr ? 0 : logger->reserved;
    printed += joined(number, level, zero1, zero2, zero3, zero4, text);
}

namespace {

using Settings = Sandbox;

TEST_F(Settings, AreOpenedOnceByThreadsThatComeTogether) {
    std::barrier start(8);
    const auto use = [&] {
        start.arrive_and_wait();
        EXPECT_EQ(DAL_CML_isThemePresent() + DAL_CML_isAutoThemePresent(), 0);
    };
    std::array<std::jthread, 8> threads;
    std::ranges::generate(threads, [&] { return std::jthread(use); });
    std::ranges::for_each(threads, &std::jthread::join);
    EXPECT_EQ(run("ls -l /proc/$PPID/fd | grep -c 'console-manager.db$'"), "2\n");
}

TEST_F(Settings, AreClearedWithoutTheVolatileDatabase) {
    run("mkdir " + kVolatileFile);
    EXPECT_EQ(DAL_CML_setTheme(1), 0);
    EXPECT_EQ(DAL_CML_deleteAll(), 1);
    EXPECT_EQ(DAL_CML_isThemePresent(), 0);
}

TEST_F(Settings, AnUnusableDatabaseIsReportedAndTriedAgain) {
    TDL_LoggerRecord silent{1, ~2u};
    TDL_LoggerRecord enabled{2, 2u};
    // The loggers, and the number of the one that is printed to.
    const std::pair<decltype(loggers), std::string> loggings[] = {
        {{&enabled, nullptr}, "0"}, {{nullptr, &silent}, "1"}, {{&silent, &enabled}, ""}};
    const std::pair<std::string, std::string> cases[] = {
        {"touch /mnt/vex-data/m7", "Unable to open " + kFile},
        {"mkdir /mnt/vex-data/m7 && seq 2000 >" + kFile, "Unable to initialise " + kFile}};
    for (const auto& [make, message] : cases) {
        run("mkdir /mnt/vex-data && " + make);
        for (const auto& [records, printedTo] : loggings) {
            loggers = records;
            asked = 0;
            printed.clear();
            EXPECT_NE(DAL_CML_setLanguage("FR"), 0);
            EXPECT_EQ(printed, printedTo.empty() ? "" : printedTo + " 2 0 0 0 0 " + message);
        }
        EXPECT_EQ(DAL_CML_listHomeScreenIconsNodes(), nullptr);
        EXPECT_EQ(DAL_CML_setAutoTheme(2), 0) << "the volatile one is its own";
        EXPECT_EQ(DAL_CML_deleteAll(), 1);
        EXPECT_EQ(DAL_CML_isAutoThemePresent(), 0) << "and is cleared alone";
        run("rm -r /mnt/vex-data");
    }
    EXPECT_EQ(DAL_CML_setLanguage("FR") + DAL_CML_deleteLanguage(), 0);
}

}  // namespace
