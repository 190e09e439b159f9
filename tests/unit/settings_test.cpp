// The settings on real databases.
#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <thread>

#include "console-manager/settings.h"
#include "contracts/qor_core.h"
#include "support/sandbox.h"
#include "support/sqlite_query.h"

// The logging libraries, played. A record is told by its first word, and none by 0.
static std::array<TDL_LoggerRecord*, 2> loggers;  // what TDL_logger answers, in turns
static size_t asked = 0;
static std::string printed;

static int writesLeft = -1;  // until the process kills itself in the middle of one; -1 for never
static std::atomic<bool> synced = false;

TDL_LoggerRecord* TDL_logger(void) {
    return loggers[asked++ % 2];
}

void qor_logger_print3(TDL_LoggerRecord* logger, int level, int zero1, int zero2, int zero3,
                       int zero4, const char* format, va_list arguments) {
    char text[100];
    std::vsnprintf(text, sizeof text, format, arguments);
    const auto number = logger == nullptr ? 0 : logger->reserved;
    printed += testing::PrintToString(std::tuple(number, level, zero1, zero2, zero3, zero4)) + text;
}

// SQLite's writes and syncs.
extern "C" ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t offset) {
    static const auto next = reinterpret_cast<decltype(&pwrite64)>(dlsym(RTLD_NEXT, "pwrite64"));
    if (writesLeft > 0 && --writesLeft == 0) {
        next(file, bytes, size / 2, offset);
        kill(getpid(), SIGKILL);
    }
    return next(file, bytes, size, offset);
}

extern "C" int fdatasync(int) {
    synced = true;
    return 0;
}

namespace {

const std::string kValues = "SELECT c_dal_value FROM tbl_dal_key_dal_value";

using SettingsTest = Sandbox;

// A number that a test shares with the processes that it starts.
std::atomic<int32_t>& shared =
    *new (mmap(nullptr, sizeof shared, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
        std::atomic<int32_t>;

// Runs work in processes of their own at once, which end with the statuses that it gives.
std::vector<int> statuses(size_t processes, auto work) {
    for (size_t process = 0; process < processes; ++process) {
        if (fork() == 0) {
            _exit(work(process));
        }
    }
    std::vector<int> all(processes, -1);
    for (int& status : all) {
        wait(&status);
    }
    return all;
}

TEST_F(SettingsTest, StoredTextThatHasNoMeaningReadsAsTheDefault) {
    const std::pair<std::string, int32_t> cases[] = {
        {"12", 12}, {"12x", 30}, {" 12", 30}, {"2147483648", 30}};
    ASSERT_EQ(DAL_CML_setDisplayOffTimeout(2), 0);
    for (const auto& [stored, expected] : cases) {
        query(kFile, "UPDATE tbl_dal_key_dal_value SET c_dal_value = '" + stored + "'");
        int32_t timeout = -9;
        EXPECT_EQ(DAL_CML_getDisplayOffTimeout(&timeout), 0);
        EXPECT_EQ(timeout, expected) << stored;
    }
}

TEST_F(SettingsTest, StringsAreCutAtTheBuffer) {
    ASSERT_EQ(DAL_CML_setLanguage("ABCDE"), 0);
    const std::pair<size_t, std::string> cases[] = {
        {0, "######"}, {1, {"\0#####", 6}}, {5, {"ABCD\0#", 6}}, {6, {"ABCDE\0", 6}}};
    uint32_t length = 0;
    for (const auto& [size, expected] : cases) {
        std::string buffer = "######";
        EXPECT_EQ(DAL_CML_getLanguage(buffer.data(), &length, size), 0);
        EXPECT_EQ(buffer, expected);
        EXPECT_EQ(length, 5u);
    }
    EXPECT_NE(DAL_CML_setLanguage(nullptr), 0);
    EXPECT_EQ(DAL_CML_deleteLanguage(), 0);
    EXPECT_EQ(DAL_CML_getLanguage(nullptr, &length, 8), 0);
    EXPECT_EQ(length, 2u) << "the default's";
}

TEST_F(SettingsTest, ListsHoldNodesWithTheirItemsUntilAllIsDeleted) {
    for (const char* id : {"b", "a b", "B", "", "\xc3\xa9"}) {
        EXPECT_EQ(DAL_CML_setHomeScreenIcon(id, "x"), 0);
    }
    EXPECT_EQ(take(DAL_CML_listHomeScreenIconsNodes()), (Texts{"", "B", "a b", "b", "\xc3\xa9"}));
    EXPECT_NE(DAL_CML_deleteHomeScreenIconsNode(nullptr), 0) << "and clears no list";
    EXPECT_EQ(DAL_CML_deleteHomeScreenIconsNode("b"), 0);
    EXPECT_EQ(query(kFile, "SELECT count(*) FROM tbl_home_screen_icons_dal_key_dal_value"), "4");

    EXPECT_EQ(DAL_CML_setTheme(1) + DAL_CML_setAutoTheme(2), 0);
    EXPECT_EQ(query(kFile, kValues) + query(kVolatileFile, kValues), "DARKAUTO");
    EXPECT_EQ(DAL_CML_deleteAll(), 0);
    EXPECT_EQ(query(kFile, kValues) + query(kVolatileFile, kValues), "");
    char** const empty = DAL_CML_listHomeScreenIconsNodes();
    EXPECT_NE(empty, nullptr);
    EXPECT_EQ(take(empty), Texts());
    EXPECT_EQ(DAL_CML_setTheme(1), 0);
    EXPECT_EQ(query(kFile, kValues), "DARK") << "no transaction is left open";
}

TEST_F(SettingsTest, AnUnusableDatabaseIsReportedAndTriedAgain) {
    TDL_LoggerRecord silent{1, ~2u};
    TDL_LoggerRecord enabled{2, 2u};
    // The loggers, and to which of them is printed.
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
            EXPECT_EQ(printed,
                      printedTo.empty() ? "" : "(" + printedTo + ", 2, 0, 0, 0, 0)" + message);
        }
        EXPECT_EQ(DAL_CML_listHomeScreenIconsNodes(), nullptr);
        EXPECT_EQ(DAL_CML_setAutoTheme(2), 0) << "the volatile one is its own";
        EXPECT_EQ(DAL_CML_deleteAll(), 1);
        EXPECT_EQ(DAL_CML_isAutoThemePresent(), 0) << "and is cleared alone";
        run("rm -r /mnt/vex-data");
    }
    EXPECT_EQ(DAL_CML_setLanguage("FR"), 0);
}

TEST_F(SettingsTest, AKillLosesNothingAcknowledged) {
    // From the making of the tables up to a checkpoint of the journal.
    for (int writes = 1; writes < 4000; writes += 1 + writes / 8) {
        const auto work = [writes](size_t) {
            writesLeft = writes;
            const std::string text(300, 'x');
            for (int32_t value = shared + 1;; ++value) {
                synced = false;
                if (DAL_CML_setDisplayOffTimeout(value) != 0 || !synced) {
                    return 1;
                }
                shared = value;
                DAL_CML_setHomeScreenIcon(std::to_string(value % 50).c_str(), text.c_str());
            }
        };
        ASSERT_EQ(statuses(1, work), std::vector{SIGKILL});
        ASSERT_EQ(query(kFile, "PRAGMA integrity_check; PRAGMA foreign_key_check"), "ok");
        // No row reads as 0. What was not acknowledged may be there, too.
        const int32_t stored = std::atoi(query(kFile, kValues).c_str());
        ASSERT_TRUE(stored == shared || stored == shared + 1) << stored << " " << shared;
        shared = stored;
    }
}

TEST_F(SettingsTest, ProcessesWaitForEachOther) {
    // All make the tables at once, and then write.
    const auto work = [](size_t process) {
        ++shared;
        while (shared < 4) {
            std::this_thread::yield();
        }
        int failures = 0;
        for (int i = 0; i < 200; ++i) {
            const std::string id = std::to_string(process) + "-" + std::to_string(i);
            failures += DAL_CML_setHomeScreenIcon(id.c_str(), "x") != 0;
        }
        return failures;
    };
    EXPECT_EQ(statuses(4, work), std::vector(4, 0));
    EXPECT_EQ(take(DAL_CML_listHomeScreenIconsNodes()).size(), 800u);
}

}  // namespace
