// The data access library on a connection of the test's own: what the settings don't reach.
#include "contracts/data_access.h"

#include <atomic>
#include <thread>

#include "console-manager/settings.h"
#include "support/sandbox.h"
#include "support/sqlite_query.h"

static sqlite3* writer = nullptr;

// Whoever waits makes the writer end its transaction.
extern "C" int sqlite3_sleep(int) {
    return sqlite3_exec(writer, "COMMIT", nullptr, nullptr, nullptr);
}

namespace {

const std::string kFlatRows = "SELECT * FROM tbl_dal_key_dal_value";
const KeyPath kItem{{{"dal_key", "k"}}};
const KeyPath kNode{{{"home_screen_icons", "n"}}};
const KeyPath kListItem{{{"home_screen_icons", "n"}, {"dal_key", "k"}}};

class DataAccess : public Sandbox {
  protected:
    void prepare() override {
        // The change of the journal has to wait for a writer.
        run("mkdir -p /mnt/vex-data/m7");
        sqlite3_open(kFile.c_str(), &writer);
        sqlite3_exec(writer, "CREATE TABLE t (a); BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        ASSERT_EQ(DAL_CML_deleteAll(), 0) << "makes the tables";
        sqlite3_close(writer);
        sqlite3_open(kFile.c_str(), &db);
        ASSERT_EQ(DAL_SetDBConfiguration(db), 0);
    }
    void TearDown() override {
        EXPECT_EQ(sqlite3_close(db), SQLITE_OK) << "something was left prepared";
    }

    sqlite3* db = nullptr;
};

TEST_F(DataAccess, WhatIsNoItemOrOutOfLimitsFailsAndDelivers) {
    const KeyPath noKey{{{"dal_key", nullptr}}};
    const KeyPath threeLevels{{{"home_screen_icons", "n"}, {"dal_key", "k"}, {"dal_key", "k"}}};
    const KeyPath injected{{{"x; DROP TABLE tbl_home_screen_icons", "n"}, {"dal_key", "k"}}};
    const KeyPath* const paths[] = {&kItem, nullptr, &noKey, &threeLevels, &injected, &kNode};
    for (const KeyPath* const path : paths) {
        sqlite3* const connection = path == &kItem ? nullptr : db;
        char text[4] = "";
        EXPECT_NE(DAL_getTypeString(connection, path, text, nullptr, sizeof text, "long"), 0);
        EXPECT_STREQ(text, "lon");
        EXPECT_NE(DAL_setTypeString(connection, path, "v", 0), 0);
        EXPECT_NE(DAL_deleteProfiledItem(connection, path, DAL_ALL_PROFILES), 0);
    }
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 8, 0, 5, 7), SQLITE_RANGE);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 4, 0, 5, 7), SQLITE_RANGE);
    EXPECT_EQ(query(kFile, kFlatRows), "");
}

TEST_F(DataAccess, TheCallersTransactionIsItsOwn) {
    EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN TRANSACTION;"), 0);
    EXPECT_EQ(DAL_ExecuteQuery(db, "PRAGMA defer_foreign_keys = ON"), 0);
    const char* const orphan =
        "INSERT INTO tbl_home_screen_icons_dal_key_dal_value VALUES ('no node', 'k', '0', 'v')";
    EXPECT_EQ(DAL_ExecuteQuery(db, orphan), 0);
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT;"), SQLITE_CONSTRAINT);
    query(kFile,
          "CREATE TRIGGER refuse BEFORE INSERT ON tbl_home_screen_icons_dal_key_dal_value BEGIN "
          "SELECT raise(ABORT, 'no'); END");
    EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN"), 0) << "none was left by the commit that failed";
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "within", 0), 0);
    EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), SQLITE_CONSTRAINT);
    EXPECT_EQ(DAL_isProfiledNodePresent(db, &kNode, 0), 0) << "the set failed as a whole";
    EXPECT_EQ(query(kFile, kFlatRows), "") << "not committed yet";
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT"), 0);
    EXPECT_EQ(query(kFile, kFlatRows), "k||within");
}

TEST_F(DataAccess, OtherThreadsWaitForTheEndOfATransaction) {
    for (int32_t round = 0; round < 100; ++round) {
        EXPECT_EQ(DAL_ExecuteQuery(db, "BEGIN"), 0);
        std::atomic<bool> started = false;
        std::thread other([&] {
            started = true;
            EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, round, 0, 0, 100), 0);
        });
        while (!started) {
            std::this_thread::yield();
        }
        EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
        EXPECT_EQ(DAL_ExecuteQuery(db, "ROLLBACK"), 0);
        other.join();
        ASSERT_EQ(query(kFile, kFlatRows), "k||" + std::to_string(round)) << "undone with it";
    }
}

}  // namespace
