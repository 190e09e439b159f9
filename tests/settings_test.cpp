// The settings on real databases.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "console-manager/settings.h"
#include "platform/qor_core.h"
#include "sandbox.h"
#include "sqlite_query.h"

namespace {

// The logging libraries, played. A record is told by its first word.
TDL_LoggerRecord* loggers[2];  // what TDL_logger answers, in turns
size_t asked = 0;
std::vector<std::string> printed;

int writesLeft = -1;  // until the process kills itself in the middle of one; -1 for never
std::atomic<bool> synced = false;

}  // namespace

TDL_LoggerRecord* TDL_logger(void) {
    return loggers[asked++ % 2];
}

void qor_logger_print3(TDL_LoggerRecord* logger, int level, int zero1, int zero2, int zero3,
                       int zero4, const char* format, va_list arguments) {
    char text[100];
    std::vsnprintf(text, sizeof text, format, arguments);
    std::string line = logger == nullptr ? "no logger" : std::to_string(logger->reserved);
    for (const int number : {level, zero1, zero2, zero3, zero4}) {
        line.append(" ").append(std::to_string(number));
    }
    printed.push_back(line + " " + format + ": " + text);
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

const std::string kFile = "/mnt/vex-data/m7/console-manager.db";
const std::string kVolatileFile = "/tmp/m7/console-manager.db";
const std::string kRows = "SELECT * FROM tbl_dal_key_dal_value ORDER BY 1, 2";

using SettingsTest = Sandbox;

std::vector<std::string> take(char** list) {
    std::vector<std::string> ids;
    for (char** id = list; id != nullptr && *id != nullptr; ++id) {
        ids.emplace_back(*id);
        free(*id);
    }
    free(list);
    return ids;
}

// Runs work in a process of its own, which ends with the status that work gives.
pid_t start(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    return child;
}

int statusOf(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

template <typename Value>
struct Shared {
    Shared()
        : value(new (mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Value()) {}
    ~Shared() { munmap(value, sizeof(Value)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    Value* operator->() const { return value; }
    Value* value;
};

TEST_F(SettingsTest, StoredTextThatIsNoNumberReadsAsTheDefault) {
    ASSERT_EQ(DAL_CML_setDisplayOffTimeout(1), 0);
    for (const auto& [stored, expected] : {std::pair("12", 12),
                                           {"-7", -7},
                                           {"", 30},
                                           {"12x", 30},
                                           {" 12", 30},
                                           {"2147483648", 30},
                                           {"ON", 30}}) {
        query(kFile,
              std::string("UPDATE tbl_dal_key_dal_value SET c_dal_value = '") + stored + "'");
        int32_t number = 0;
        EXPECT_EQ(DAL_CML_getDisplayOffTimeout(&number), 0);
        EXPECT_EQ(number, expected) << stored;
    }
}

TEST_F(SettingsTest, StringsAreCutAtTheBuffer) {
    const auto get = [](size_t size, uint32_t& length) {
        char buffer[16];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(DAL_CML_getLanguage(buffer, &length, size), 0);
        return std::string(buffer, sizeof buffer).substr(0, size + 1);
    };
    uint32_t length = 0;
    EXPECT_EQ(get(8, length), std::string("EN\0######", 9));
    EXPECT_EQ(length, 2u);
    ASSERT_EQ(DAL_CML_setLanguage("ABCDE"), 0);
    for (const auto& [size, expected] : {std::pair<size_t, std::string>{0, "#"},
                                         {1, std::string("\0#", 2)},
                                         {5, std::string("ABCD\0#", 6)},
                                         {6, std::string("ABCDE\0#", 7)}}) {
        EXPECT_EQ(get(size, length), expected);
        EXPECT_EQ(length, 5u);
    }
    char* copy = nullptr;
    EXPECT_EQ(DAL_CML_getLanguageMalloc(&copy, &length), 0);
    EXPECT_STREQ(copy, "ABCDE");
    EXPECT_EQ(length, 5u);
    free(copy);
    EXPECT_NE(DAL_CML_setLanguage(nullptr), 0);
    EXPECT_EQ(DAL_CML_deleteLanguage(), 0);
    EXPECT_NE(DAL_CML_getLanguageMalloc(&copy, nullptr), 0);
    EXPECT_EQ(copy, nullptr);
}

TEST_F(SettingsTest, WordsAreComparedWhole) {
    using Getter = int32_t (*)(int32_t*);
    struct Case {
        Getter get;
        const char* key;
        const char* profile;
        const char* stored;
        int32_t expected;
    };
    const Case cases[] = {
        {DAL_CML_getDateFormat, "date-format", "", "DDMMYY", 0},
        {DAL_CML_getDateFormat, "date-format", "", "DDMMYYY", 1},
        {DAL_CML_getDateFormat, "date-format", "", "YYYYMMDD", 3},
        {DAL_CML_getDateFormat, "date-format", "", "", 1},
        {DAL_CML_getDestinationClearControl, "destination-clear-control", "0", "DISABLE", 0},
        {DAL_CML_getDestinationClearControl, "destination-clear-control", "0", "disable", 1},
        {DAL_CML_getDestinationClearControl, "destination-clear-control", "0", "DISABLE ", 1},
        {DAL_CML_getTheme, "theme", "0", "AUTO", 2},
        {DAL_CML_getTheme, "theme", "0", "DARKX", 0},
    };
    ASSERT_EQ(DAL_CML_setTheme(2), 0);
    for (const Case& c : cases) {
        query(kFile, std::string("REPLACE INTO tbl_dal_key_dal_value VALUES ('") + c.key + "','" +
                         c.profile + "','" + c.stored + "')");
        int32_t number = -9;
        EXPECT_EQ(c.get(&number), 0);
        EXPECT_EQ(number, c.expected) << c.key << " " << c.stored;
    }
    EXPECT_EQ(DAL_CML_setDateFormat(4), 0);
    EXPECT_EQ(DAL_CML_isDateFormatPresent(), 1);
}

TEST_F(SettingsTest, ListsHoldNodesWithTheirItems) {
    for (const char* id : {"b", "a b", "B", "", "\xc3\xa9"}) {
        EXPECT_EQ(DAL_CML_setHomeScreenIcon(id, id), 0);
        EXPECT_EQ(DAL_CML_setHomeScreenIcon(id, "again"), 0);
    }
    EXPECT_EQ(DAL_CML_setBrowserDestinationHideItem("b", 0), 0);
    EXPECT_EQ(take(DAL_CML_listHomeScreenIconsNodes()),
              (std::vector<std::string>{"", "B", "a b", "b", "\xc3\xa9"}));
    EXPECT_EQ(query(kFile, "SELECT count(*) FROM tbl_home_screen_icons_dal_key_dal_value"), "5");

    EXPECT_EQ(DAL_CML_deleteHomeScreenIcon("B"), 0);
    EXPECT_EQ(DAL_CML_isHomeScreenIconPresent("B"), 0);
    EXPECT_EQ(DAL_CML_isHomeScreenIconsNodePresent("B"), 1) << "the node stays";
    EXPECT_EQ(DAL_CML_deleteHomeScreenIconsNode("b"), 0);
    EXPECT_EQ(DAL_CML_isHomeScreenIconsNodePresent("b"), 0);
    EXPECT_EQ(DAL_CML_isHomeScreenIconPresent("b"), 0) << "the item goes with its node";

    int32_t hidden = 9;
    EXPECT_EQ(DAL_CML_getBrowserDestinationHideItem("b", &hidden), 0);
    EXPECT_EQ(hidden, 0) << "another list's node of the same id";
    EXPECT_EQ(DAL_CML_getBrowserInformationHideItem("b", &hidden), 0);
    EXPECT_EQ(hidden, 1);

    EXPECT_NE(DAL_CML_deleteHomeScreenIconsNode(nullptr), 0);
    EXPECT_NE(DAL_CML_setHomeScreenIcon(nullptr, "x"), 0);
    EXPECT_NE(DAL_CML_deleteHomeScreenIcon(nullptr), 0);
    EXPECT_EQ(take(DAL_CML_listHomeScreenIconsNodes()).size(), 4u) << "no null id clears a list";
    query(kFile, "INSERT INTO tbl_home_screen_icons VALUES ('other', '7')");
    EXPECT_EQ(DAL_CML_deleteAllHomeScreenIconsNodes(), 0);
    char** const empty = DAL_CML_listHomeScreenIconsNodes();
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty[0], nullptr);
    free(empty);
    EXPECT_EQ(query(kFile, "SELECT * FROM tbl_home_screen_icons"), "");
}

TEST_F(SettingsTest, DeleteAllClearsBothFiles) {
    EXPECT_EQ(DAL_CML_setTheme(2), 0);
    EXPECT_FALSE(std::filesystem::exists(kVolatileFile)) << "opened by AutoTheme alone";
    EXPECT_EQ(DAL_CML_setAutoTheme(1), 0);
    EXPECT_EQ(query(kVolatileFile, kRows), "auto-theme|0|DARK");
    EXPECT_EQ(DAL_CML_setQorHotKeySelectListItem("1", "x"), 0);
    EXPECT_EQ(DAL_CML_deleteAll(), 0);
    EXPECT_EQ(query(kFile, kRows) + query(kVolatileFile, kRows) +
                  query(kFile, "SELECT * FROM tbl_qor_hot_key_select_list_dal_key_dal_value"),
              "");
    EXPECT_EQ(DAL_CML_setTheme(1), 0);
    EXPECT_EQ(DAL_CML_setAutoTheme(2), 0);
    EXPECT_EQ(query(kFile, kRows) + query(kVolatileFile, kRows), "theme|0|DARKauto-theme|0|AUTO");
    query(kFile, "DROP TABLE tbl_dal_key_dal_value; DROP TABLE tbl_qor_hot_key_select_list");
    EXPECT_EQ(DAL_CML_deleteAll(), 0) << "only the connections count";
}

TEST_F(SettingsTest, DeleteAllClearsTheOneFileWithoutTheOther) {
    EXPECT_EQ(DAL_CML_setTheme(2), 0);
    ASSERT_EQ(mkdir(kVolatileFile.c_str(), 0755), 0);
    EXPECT_EQ(DAL_CML_deleteAll(), 1);
    EXPECT_EQ(query(kFile, kRows), "");
}

TEST_F(SettingsTest, AnUnusableDatabaseIsReportedAndTriedAgain) {
    ASSERT_EQ(mkdir("/mnt/vex-data", 0755), 0);
    TDL_LoggerRecord silent{1, ~2u};
    TDL_LoggerRecord enabled{2, 2u};
    struct Logging {
        TDL_LoggerRecord* loggers[2];
        std::string printed;  // to which; empty for nothing
    };
    const Logging loggings[] = {{{nullptr, nullptr}, "no logger"},
                                {{nullptr, &enabled}, "2"},
                                {{&enabled, &silent}, "1"},
                                {{&silent, &silent}, ""}};
    struct Case {
        const char* situation;
        std::function<void()> make;
        std::function<void()> mend;
        std::string verb;
    };
    const Case cases[] = {
        {"no folder", [] { writeFile("/mnt/vex-data/m7", "in the way"); },
         [] { unlink("/mnt/vex-data/m7"); }, "open"},
        {"no database",
         [] {
             mkdir("/mnt/vex-data/m7", 0755);
             writeFile(kFile, std::string(8192, 'x'));
         },
         [] { unlink(kFile.c_str()); }, "initialise"},
        {"an index under the name of a table",
         [] { query(kFile, "CREATE TABLE t (a); CREATE INDEX tbl_home_screen_icons ON t (a)"); },
         [] { query(kFile, "DROP TABLE t"); }, "initialise"},
    };
    for (const Case& c : cases) {
        c.make();
        const int before = openDescriptors();
        for (const Logging& l : loggings) {
            std::copy_n(l.loggers, 2, loggers);
            asked = 0;
            printed.clear();
            int32_t number = 0;
            char buffer[8] = "";
            EXPECT_NE(DAL_CML_getDisplayOffTimeout(&number), 0);
            const std::string message = l.printed + " 2 0 0 0 0 Unable to " + c.verb +
                                        " %s: Unable to " + c.verb + " " + kFile;
            EXPECT_EQ(asked, l.printed.empty() ? 1u : 2u);
            EXPECT_EQ(printed,
                      l.printed.empty() ? std::vector<std::string>() : std::vector{message})
                << c.situation;
            EXPECT_NE(DAL_CML_getLanguage(buffer, nullptr, sizeof buffer), 0);
            EXPECT_NE(DAL_CML_setLanguage("FR"), 0);
            EXPECT_EQ(DAL_CML_isLanguagePresent(), 0);
            EXPECT_EQ(DAL_CML_listHomeScreenIconsNodes(), nullptr);
            EXPECT_EQ(number, 30);
            EXPECT_STREQ(buffer, "EN");
        }
        EXPECT_EQ(openDescriptors(), before) << c.situation;
        EXPECT_EQ(DAL_CML_setAutoTheme(2), 0) << "the volatile one is its own";
        EXPECT_EQ(DAL_CML_deleteAll(), 1);
        EXPECT_EQ(DAL_CML_isAutoThemePresent(), 0) << "and is cleared alone";
        c.mend();
    }
    EXPECT_EQ(DAL_CML_setLanguage("FR"), 0);
}

TEST_F(SettingsTest, AKillLosesNothingAcknowledged) {
    Shared<std::atomic<int32_t>> acknowledged;
    // From the making of the tables up to a checkpoint of the journal.
    for (int writes = 1; writes < 4000; writes += 1 + writes / 8) {
        const pid_t child = start([&] {
            writesLeft = writes;
            for (int32_t value = acknowledged->load() + 1;; ++value) {
                synced = false;
                if (DAL_CML_setDisplayOffTimeout(value) != 0 || !synced) {
                    return 1;
                }
                acknowledged->store(value);
                if (DAL_CML_setHomeScreenIcon(std::to_string(value % 50).c_str(),
                                              std::string(300, 'x').c_str()) != 0) {
                    return 2;
                }
            }
        });
        ASSERT_EQ(statusOf(child), -SIGKILL);
        ASSERT_EQ(query(kFile, "PRAGMA integrity_check"), "ok");
        ASSERT_EQ(query(kFile, "PRAGMA foreign_key_check"), "");
        const int32_t last = acknowledged->load();
        const std::string stored = query(kFile, "SELECT c_dal_value FROM tbl_dal_key_dal_value");
        if (stored == std::to_string(last + 1)) {
            acknowledged->store(last + 1);
        } else {
            EXPECT_TRUE(last == 0 || stored == std::to_string(last)) << stored << " " << last;
        }
    }
}

TEST_F(SettingsTest, ProcessesWaitForEachOther) {
    constexpr int kProcesses = 4;
    constexpr int kSets = 50;
    Shared<std::atomic<int>> ready;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(start([&, process] {
            const auto waitFor = [&](int arrivals) {
                ready->fetch_add(1);
                while (ready->load() < arrivals) {
                    std::this_thread::yield();
                }
            };
            // All make the tables at once, and all write at once.
            waitFor(kProcesses);
            int failures = DAL_CML_setTheme(1) != 0;
            waitFor(2 * kProcesses);
            for (int i = 0; i < kSets; ++i) {
                const std::string id = std::to_string(process) + "-" + std::to_string(i);
                failures += DAL_CML_setIconsMenuFavourite(id.c_str(), "x") != 0;
            }
            return failures;
        }));
    }
    for (const pid_t child : children) {
        EXPECT_EQ(statusOf(child), 0);
    }
    EXPECT_EQ(query(kFile, "SELECT count(*) FROM tbl_icons_menu_favourites_dal_key_dal_value"),
              std::to_string(kProcesses * kSets));
}

TEST_F(SettingsTest, ThreadsShareTheConnection) {
    putProgram("mkdir", "echo \"$*\" >>/mnt/test/mkdir; exec /bin/mkdir \"$@\"");
    std::vector<std::thread> threads;
    std::atomic<int> failures = 0;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&failures, thread] {
            const std::string id = std::to_string(thread);
            for (int i = 0; i < 25; ++i) {
                failures += DAL_CML_setQorHotKeySelectListItem(id.c_str(), id.c_str()) != 0;
                failures += DAL_CML_setTheme(i % 3) != 0;
                if (thread == 0) {
                    failures += DAL_CML_deleteAll() != 0;
                }
                char text[8];
                failures +=
                    DAL_CML_getQorHotKeySelectListItem(id.c_str(), text, nullptr, sizeof text) != 0;
                failures += std::string(text) != "" && text != id;
                failures += take(DAL_CML_listQorHotKeySelectListNodes()).size() > 4;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(readFile("/mnt/test/mkdir"), "-p /mnt/vex-data/m7/\n-p /tmp/m7/\n") << "opened once";
    EXPECT_EQ(DAL_CML_setTheme(1), 0);
    EXPECT_EQ(query(kFile, kRows), "theme|0|DARK");
    EXPECT_EQ(query(kFile, "PRAGMA foreign_key_check"), "");
}

TEST_F(SettingsTest, AFullDiskKeepsTheOldValue) {
    ASSERT_EQ(mkdir("/mnt/vex-data", 0755), 0);
    ASSERT_EQ(mount("tmpfs", "/mnt/vex-data", "tmpfs", 0, "size=1m"), 0);
    ASSERT_EQ(DAL_CML_setLanguage("OLD"), 0);
    const std::string filler = "/mnt/vex-data/filler";
    run("dd if=/dev/zero of=" + filler + " bs=4096 2>/dev/null; true");
    const std::string large(100'000, 'x');
    EXPECT_EQ(DAL_CML_setLanguage(large.c_str()), SQLITE_FULL);
    EXPECT_EQ(DAL_CML_setHomeScreenIcon("1", large.c_str()), SQLITE_FULL);
    char text[8];
    EXPECT_EQ(DAL_CML_getLanguage(text, nullptr, sizeof text), 0);
    EXPECT_STREQ(text, "OLD");
    EXPECT_EQ(DAL_CML_isHomeScreenIconsNodePresent("1"), 0) << "no node without its item";
    unlink(filler.c_str());
    EXPECT_EQ(DAL_CML_setLanguage(large.c_str()), 0);
    EXPECT_EQ(DAL_CML_setHomeScreenIcon("1", large.c_str()), 0);
    EXPECT_EQ(query(kFile, "PRAGMA integrity_check"), "ok");
}

}  // namespace
