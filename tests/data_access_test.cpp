// The data access library on a connection of the test's own: what the settings don't reach.
#include "platform/data_access.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "sandbox.h"
#include "sqlite_query.h"

static sqlite3* writer = nullptr;

// Whoever waits makes the writer end its transaction.
extern "C" int sqlite3_sleep(int) {
    return sqlite3_exec(writer, "COMMIT", nullptr, nullptr, nullptr);
}

namespace {

const std::string kItems = "/mnt/test/items.db";
const std::string kFlatRows = "SELECT * FROM tbl_dal_key_dal_value";
const KeyPath kItem{{{"dal_key", "k"}}};
const KeyPath kListItem{{{"list", "n"}, {"dal_key", "k"}}};
const KeyPath kNode{{{"list", "n"}}};
const KeyPath kList{{{"list", nullptr}}};

class DataAccess : public Sandbox {
  protected:
    // The change of the journal has to wait for a writer.
    void SetUp() override {
        if (Sandbox::SetUp(); IsSkipped()) {
            return;
        }
        sqlite3_open(kItems.c_str(), &writer);
        sqlite3_open(kItems.c_str(), &db);
        const char* const tables =
            "CREATE TABLE tbl_list (c_list, c_dal_profile_no, UNIQUE(c_list, c_dal_profile_no));"
            "CREATE TABLE tbl_list_dal_key_dal_value (c_list, c_dal_key, c_dal_profile_no, "
            "c_dal_value, UNIQUE(c_list, c_dal_key, c_dal_profile_no), FOREIGN KEY(c_list, "
            "c_dal_profile_no) REFERENCES tbl_list (c_list, c_dal_profile_no)); BEGIN IMMEDIATE";
        ASSERT_EQ(sqlite3_exec(writer, tables, nullptr, nullptr, nullptr), SQLITE_OK);
        ASSERT_EQ(DAL_SetDBConfiguration(db), 0);
        ASSERT_EQ(sqlite3_close(writer), SQLITE_OK);
        ASSERT_EQ(query(kItems, "PRAGMA journal_mode"), "wal");
        ASSERT_EQ(DAL_CreateFlatKeyTable(db), 0);
    }

    void TearDown() override {
        EXPECT_EQ(sqlite3_close(db), SQLITE_OK) << "something was left prepared";
    }

    void execute(const char* sql) {
        ASSERT_EQ(DAL_ExecuteQuery(db, sql), 0) << sql << ": " << sqlite3_errmsg(db);
    }

    sqlite3* db = nullptr;
};

TEST_F(DataAccess, WhatIsNoItemOrOutOfLimitsFailsAndDelivers) {
    ASSERT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
    const KeyPath noLevel{};
    const KeyPath noKey{{{"dal_key", nullptr}}};
    const KeyPath threeLevels{{{"list", "n"}, {"dal_key", "k"}, {"dal_key", "k"}}};
    const KeyPath twoLists{{{"list", "n"}, {"list", "n"}}};
    const KeyPath everyNode{{{"list", nullptr}, {"dal_key", "k"}}};
    const KeyPath injected{{{"list; DROP TABLE tbl_list", "n"}, {"dal_key", "k"}}};
    const KeyPath unknown{{{"lost", "n"}, {"dal_key", "k"}}};
    const KeyPath* const paths[] = {&kItem,       nullptr,   &noLevel,   &noKey,
                                    &threeLevels, &twoLists, &everyNode, &injected,
                                    &unknown,     &kNode,    &kList};
    for (size_t i = 0; i < std::size(paths); ++i) {
        SCOPED_TRACE(i);
        const KeyPath* const path = paths[i];
        sqlite3* const connection = i == 0 ? nullptr : db;
        int32_t number = 0;
        char text[4] = "";
        uint32_t length = 9;
        char* copy = text;
        EXPECT_NE(DAL_getProfiledTypeInt(connection, path, &number, 3, 0), 0);
        EXPECT_NE(DAL_getTypeString(connection, path, text, &length, sizeof text, "long"), 0);
        EXPECT_EQ(text + std::to_string(length) + std::to_string(number), "lon43");
        EXPECT_NE(DAL_getTypeStringMalloc(connection, path, &copy, &length), 0);
        EXPECT_EQ(copy, nullptr);
        EXPECT_NE(DAL_setProfiledTypeBOOLLimits(connection, path, 1, 0, 0, 1, 0), 0);
        EXPECT_NE(DAL_deleteProfiledItem(connection, path, DAL_ALL_PROFILES), 0);
        EXPECT_EQ(DAL_isPresent(connection, path), 0);
    }
    EXPECT_NE(DAL_SetDBConfiguration(nullptr), 0);
    EXPECT_NE(DAL_ExecuteQuery(nullptr, "BEGIN"), 0);
    EXPECT_NE(DAL_deleteProfiledNodeItem(nullptr, &kNode, 0), 0);
    EXPECT_EQ(DAL_listProfiledNodeItems(db, &kList, "other", 0), nullptr);
    EXPECT_NE(DAL_setProfiledTypeString(db, &kItem, "v", 0, DAL_ALL_PROFILES), 0);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 8, 0, 5, 7), SQLITE_RANGE);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 4, 0, 5, 7), SQLITE_RANGE);
    EXPECT_EQ(query(kItems, "SELECT * FROM tbl_list_dal_key_dal_value"), "n|k|0|v");
    EXPECT_EQ(query(kItems, kFlatRows), "");
}

TEST_F(DataAccess, ACommitThatFailsLeavesNoTransaction) {
    ASSERT_EQ(DAL_setTypeString(db, &kItem, "old", 0), 0);
    execute("BEGIN TRANSACTION;");
    execute("PRAGMA defer_foreign_keys = ON");
    execute("INSERT INTO tbl_list_dal_key_dal_value VALUES ('no node', 'k', '0', 'v')");
    EXPECT_EQ(DAL_DeleteFlatKeyTable(db), 0);
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT;"), SQLITE_CONSTRAINT);
    EXPECT_EQ(query(kItems, kFlatRows), "k||old");
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "new", 0), 0);
    EXPECT_EQ(query(kItems, kFlatRows), "k||new");
}

TEST_F(DataAccess, TheCallersTransactionIsNotDisturbed) {
    execute(
        "CREATE TRIGGER refuse BEFORE INSERT ON tbl_list_dal_key_dal_value BEGIN "
        "SELECT raise(ABORT, 'no'); END");
    execute("BEGIN");
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "within", 0), 0);
    EXPECT_NE(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
    EXPECT_EQ(DAL_isProfiledNodePresent(db, &kNode, 0), 0) << "the set failed as a whole";
    EXPECT_EQ(query(kItems, kFlatRows), "") << "not committed yet";
    execute("COMMIT");
    EXPECT_EQ(query(kItems, kFlatRows), "k||within");
}

TEST_F(DataAccess, OtherThreadsWaitForTheEndOfATransaction) {
    for (int32_t round = 0; round < 100; ++round) {
        execute("BEGIN");
        std::atomic<bool> started = false;
        std::thread other([&] {
            started = true;
            EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, round, 0, 0, 100), 0);
        });
        while (!started) {
            std::this_thread::yield();
        }
        EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
        execute("ROLLBACK");
        other.join();
        ASSERT_EQ(query(kItems, kFlatRows), "k||" + std::to_string(round))
            << "undone with the other thread's transaction";
    }
}

}  // namespace
