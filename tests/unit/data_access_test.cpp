// What the settings don't reach in the stand-in of the data access library, by a connection of the
// test's own.
#include "contracts/data_access.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <functional>
#include <thread>
#include <utility>

#include "console-manager/settings.h"
#include "support/sandbox.h"
#include "support/sqlite_query.h"

static sqlite3* writer = nullptr;

// The clock advances while a thread waits, and the test can act then.
static std::atomic<int64_t> milliseconds = 0;
static std::function<void()> whileWaiting = [] {};

extern "C" int nanosleep(const timespec* time, timespec*) {
    milliseconds += 1 + time->tv_nsec / 1'000'000;
    whileWaiting();
    return 0;
}

// By how much each reading advances the clock. Not far: a condition variable really waits until the
// machine has been up for so long.
static thread_local int pace = 0;

extern "C" int clock_gettime(clockid_t, timespec* now) {
    milliseconds += pace;
    *now = {static_cast<time_t>(milliseconds / 1000), milliseconds % 1000 * 1'000'000};
    return 0;
}

namespace {

const std::string kFlatRows = "SELECT * FROM tbl_dal_key_dal_value";
const KeyPath kItem{{{"dal_key", "k"}}};
const KeyPath kNode{{{"home_screen_icons", "n"}}};
const KeyPath kWholeList{{{"home_screen_icons", nullptr}}};
const KeyPath kListItem{{{"home_screen_icons", "n"}, {"dal_key", "k"}}};

class DataAccess : public Sandbox {
  protected:
    void prepare() override {
        run("mkdir -p /mnt/vex-data/m7");
        sqlite3_open(kFile.c_str(), &writer);
        EXPECT_EQ(other("CREATE TABLE t (a); BEGIN EXCLUSIVE"), 0);
        run("chown 7 " + kFile + " 2>/dev/null || :");
    }
    // Opens the database of the settings after the writer has committed.
    void open() {
        whileWaiting = [] { other("COMMIT"); };
        ASSERT_EQ(DAL_CML_deleteAll(), 0) << "tables are made";
        whileWaiting = [] {};
        sqlite3_open(kFile.c_str(), &db);
        ASSERT_EQ(DAL_SetDBConfiguration(db), 0);
    }
    // Executes SQL as another program.
    static int other(const char* sql) {
        return sqlite3_exec(writer, sql, nullptr, nullptr, nullptr);
    }
    void TearDown() override {
        EXPECT_EQ(sqlite3_close(db), SQLITE_OK) << "something was left prepared";
        sqlite3_close(writer);
    }

    sqlite3* db = nullptr;
};

TEST_F(DataAccess, WhatIsNoItemOrOutOfLimitsFailsAndDelivers) {
    open();
    const KeyPath noKey{{{"dal_key", nullptr}}};
    const KeyPath threeLevels{{{"home_screen_icons", "n"}, {"dal_key", "k"}, {"dal_key", "k"}}};
    const KeyPath injected{{{"x; DROP TABLE tbl_home_screen_icons", "n"}, {"dal_key", "k"}}};
    const KeyPath* const paths[] = {nullptr, &noKey, &threeLevels, &injected, &kNode};
    for (const KeyPath* const path : paths) {
        char text[4] = "";
        uint32_t length = 0;
        EXPECT_NE(DAL_getTypeString(db, path, text, &length, sizeof text, "long"), 0);
        EXPECT_EQ(joined(text, length), "lon 4");
        EXPECT_NE(DAL_setTypeString(db, path, "v", 0), 0);
        char* block = text;
        EXPECT_EQ(DAL_getTypeStringMalloc(db, path, &block, nullptr), SQLITE_MISUSE);
        EXPECT_EQ(block, nullptr);
        EXPECT_NE(DAL_deleteProfiledItem(db, path, DAL_ALL_PROFILES), 0);
    }
    char* block = nullptr;
    EXPECT_EQ(DAL_getTypeStringMalloc(db, &kItem, &block, nullptr), SQLITE_NOTFOUND);
    EXPECT_EQ(DAL_getTypeInt(db, &kItem, nullptr, 1), 0);
    EXPECT_EQ(DAL_getTypeString(db, &kItem, nullptr, nullptr, 1, "v"), 0);
    EXPECT_EQ(DAL_setProfiledTypeString(db, &kItem, "v", 0, DAL_ALL_PROFILES), SQLITE_MISUSE);
    EXPECT_EQ(DAL_deleteProfiledNodeItem(db, &kWholeList, 0), SQLITE_MISUSE);
    EXPECT_EQ(DAL_deleteProfiledNodeItem(db, &kNode, DAL_ALL_PROFILES), SQLITE_MISUSE);
    EXPECT_EQ(DAL_deleteProfiledNodeItem(db, &kItem, 0), SQLITE_MISUSE);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 8, 0, 5, 7), SQLITE_RANGE);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 4, 0, 5, 7), SQLITE_RANGE);
    const std::string types = "SELECT type FROM pragma_table_info('tbl_dal_key_dal_value')";
    EXPECT_EQ(query(kFile, kFlatRows + "; " + types), "TEXT TEXT TEXT");
}

TEST_F(DataAccess, TheCallersTransactionIsItsOwn) {
    open();
    query(kFile,
          "CREATE TRIGGER refuse BEFORE INSERT ON tbl_home_screen_icons_dal_key_dal_value BEGIN "
          "SELECT raise(ABORT, 'no'); END; CREATE TRIGGER undo BEFORE UPDATE ON "
          "tbl_dal_key_dal_value BEGIN SELECT raise(ROLLBACK, 'no'); END");
    EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN EXCLUSIVE"), 0);
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "within", 0), 0);
    EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), SQLITE_CONSTRAINT);
    EXPECT_EQ(DAL_isProfiledNodePresent(db, &kNode, 0), 0) << "the set failed as a whole";
    EXPECT_EQ(query(kFile, kFlatRows), "") << "not committed yet";
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT"), 0);
    EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN"), 0);
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "undone", 0), SQLITE_CONSTRAINT);
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT"), SQLITE_CONSTRAINT);
    EXPECT_EQ(query(kFile, kFlatRows), "k||within");
}

TEST_F(DataAccess, ATransactionThatDoesNotBeginIsRefusedAsAWhole) {
    open();
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "v", 0), 0);
    EXPECT_EQ(other("BEGIN IMMEDIATE"), 0);
    const int64_t before = milliseconds;
    EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN TRANSACTION;"), SQLITE_BUSY);
    EXPECT_NEAR(static_cast<double>(milliseconds - before), 10'000, 100);
    const int64_t after = milliseconds;
    EXPECT_EQ(DAL_ExecuteQuery(db, "CREATE TABLE IF NOT EXISTS tbl_home_screen_icons (a);"), 0);
    EXPECT_EQ(DAL_CreateFlatKeyTable(db), 0);
    EXPECT_EQ(milliseconds, after) << "for what is there already";
    EXPECT_EQ(other("COMMIT"), 0);
    EXPECT_EQ(DAL_DeleteFlatKeyTable(db), SQLITE_BUSY);
    std::thread([&] { EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0); }).join();
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT;"), SQLITE_BUSY);
    EXPECT_EQ(query(kFile, kFlatRows), "k||v");
    EXPECT_EQ(query(kFile, "SELECT * FROM tbl_home_screen_icons_dal_key_dal_value"), "n|k|0|v");
    EXPECT_EQ(DAL_deleteItem(db, &kItem), 0) << "the refusal is over";
}

TEST_F(DataAccess, ThreadsThatOpenAtOnceWaitOnce) {
    const auto open = [] {
        const int64_t before = milliseconds;
        EXPECT_NE(DAL_CML_setTheme(1), 0);
        EXPECT_LT(milliseconds - before, 12'000);
    };
    testing::internal::CaptureStderr();
    std::thread waiting(open);
    open();
    waiting.join();
    std::thread(open).join();  // with a message of another thread
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("[2] Unable to initialise /mnt/"), 0u);
}

TEST_F(DataAccess, AJournalThatOthersReadIsChangedLater) {
    open();
    const std::string file = "/mnt/vex-data/m7/other.db";
    query(file, "CREATE TABLE t (a)");
    const int descriptors = openDescriptors();
    sqlite3 *reader = nullptr, *own = nullptr;
    sqlite3_open(file.c_str(), &reader);
    sqlite3_open(file.c_str(), &own);
    EXPECT_EQ(sqlite3_exec(reader, "BEGIN; SELECT * FROM t", nullptr, nullptr, nullptr), 0);
    close(STDIN_FILENO);  // so the file of the turns gets number 0
    const int64_t before = milliseconds;
    EXPECT_EQ(DAL_ExecuteQuery(own, "BEGIN") + DAL_ExecuteQuery(own, "ROLLBACK"), 0);
    EXPECT_EQ(DAL_SetDBConfiguration(own), 0);
    EXPECT_NEAR(static_cast<double>(milliseconds - before), 1000, 10);
    EXPECT_EQ(query(file, "PRAGMA journal_mode"), "delete");
    EXPECT_EQ(DAL_ExecuteQuery(own, "BEGIN") + DAL_ExecuteQuery(own, "DELETE FROM t"), 0);
    whileWaiting = [&] { sqlite3_close(std::exchange(reader, nullptr)); };
    EXPECT_EQ(DAL_ExecuteQuery(own, "COMMIT"), 0) << "when the reader is done";
    EXPECT_EQ(DAL_SetDBConfiguration(own), 0);
    EXPECT_EQ(query(file, "PRAGMA journal_mode"), "wal");
    run("! grep db-turn /proc/$PPID/maps");
    sqlite3_close(own);
    EXPECT_EQ(openDescriptors(), descriptors - 1) << "the standard input is closed";
}

// A descriptor of the test has the locks that other processes would have.
TEST_F(DataAccess, ATurnIsWaitedForButOnceIfItNeverComes) {
    open();
    const int turns = ::open((kFile + "-turn").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(run("stat -c %a:%u " + kFile + "-turn"), run("stat -c %a:%u " + kFile));
    const auto lock = [=](short type, off_t place) {
        struct flock range = {type, SEEK_SET, place, 1, 0};
        return fcntl(turns, F_OFD_SETLK, &range);
    };
    const auto timeToSet = [&] {
        const int64_t before = milliseconds += 2;  // a look at the queue is valid for one
        EXPECT_EQ(DAL_setTypeString(db, &kItem, "v", 0), 0);
        return milliseconds - before;
    };
    EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN IMMEDIATE"), 0);
    std::thread([&] {
        pace = 10;
        EXPECT_EQ(DAL_deleteItem(db, &kItem), SQLITE_BUSY);
    }).join();
    EXPECT_EQ(lock(F_WRLCK, 0), -1) << "the transaction keeps its turn";
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT"), 0);
    for (const off_t place : {0, 1}) {
        EXPECT_EQ(lock(F_WRLCK, place), 0);
        int waited = 0;
        whileWaiting = [&] {
            EXPECT_EQ(lock(F_WRLCK, 1 - place), place == 0 ? -1 : 0) << "a waiter has the place";
            lock(F_UNLCK, 1 - place);
            waited += waited < 2 ? 1 : 1 + lock(F_UNLCK, place);
        };
        EXPECT_LT(timeToSet(), 10);
        EXPECT_EQ(waited, 3);
        whileWaiting = [] {};
        for (int again = 0; again < 2; ++again) {
            EXPECT_EQ(lock(F_WRLCK, place), 0);
            EXPECT_NEAR(static_cast<double>(timeToSet()), 5000, 10);
            EXPECT_EQ(timeToSet(), 0) << "it was waited for already";
            EXPECT_EQ(lock(F_UNLCK, place), 0);
            EXPECT_EQ(timeToSet(), 0);
        }
    }
    close(turns);
}

// The next one may get the same pthread_t.
TEST_F(DataAccess, AThreadsTransactionEndsWithIt) {
    open();
    for (int32_t round = 0; round < 100; ++round) {
        std::thread waiting;
        std::thread([&] {
            EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN DEFERRED"), 0);
            std::atomic<bool> started = false;
            waiting = std::thread([&] {
                started = true;
                EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, round, 0, 0, 100), 0);
            });
            while (!started) {
                std::this_thread::yield();
            }
            EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
        }).join();
        waiting.join();
        std::thread([&] { EXPECT_EQ(DAL_deleteProfiledItem(db, &kListItem, 0), 0); }).join();
        ASSERT_EQ(query(kFile, kFlatRows + "; SELECT * FROM tbl_home_screen_icons"),
                  "k||" + std::to_string(round));
    }
}

TEST_F(DataAccess, WithoutItsFilesNothingIsSet) {
    for (const char* const files : {"", "-wal"}) {
        open();
        run("mv " + kFile + files + " " + kFile + ".away");
        milliseconds += 2;  // a look at the files is valid for one
        EXPECT_EQ(DAL_setTypeString(db, &kItem, "v", 0), SQLITE_READONLY) << files;
        EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN"), SQLITE_READONLY) << files;
        EXPECT_EQ(DAL_ExecuteQuery(db, "ROLLBACK"), 0);
        run("mv " + kFile + ".away " + kFile + files);
        EXPECT_EQ(DAL_setTypeString(db, &kItem, "v", 0), 0) << files;
        sqlite3_close(std::exchange(db, nullptr));
    }
}

}  // namespace
