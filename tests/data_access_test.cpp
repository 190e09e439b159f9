// The data access library on a connection of the test's own: what the settings don't reach.
#include "platform/data_access.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "sandbox.h"
#include "sqlite_query.h"

static sqlite3* writer = nullptr;

// Whoever waits makes the writer end its transaction.
extern "C" int sqlite3_sleep(int) {
    return sqlite3_exec(writer, "COMMIT", nullptr, nullptr, nullptr);
}

namespace {

const std::string kFile = "/mnt/test/items.db";
const KeyPath kItem{{{"dal_key", "k"}}};
const KeyPath kListItem{{{"list", "n"}, {"dal_key", "k"}}};
const KeyPath kNode{{{"list", "n"}}};
const KeyPath kList{{{"list", nullptr}}};

class DataAccess : public Sandbox {
  protected:
    void SetUp() override {
        Sandbox::SetUp();
        if (IsSkipped()) {
            return;
        }
        sqlite3* opened = nullptr;
        ASSERT_EQ(sqlite3_open(kFile.c_str(), &opened), SQLITE_OK);
        owner.reset(opened);
        db = opened;
        ASSERT_EQ(DAL_SetDBConfiguration(db), 0);
        ASSERT_EQ(DAL_CreateFlatKeyTable(db), 0);
        execute(
            "CREATE TABLE tbl_list (c_list TEXT, c_dal_profile_no TEXT, "
            "UNIQUE(c_list, c_dal_profile_no))");
        execute(
            "CREATE TABLE tbl_list_dal_key_dal_value (c_list TEXT, c_dal_key "
            "TEXT, c_dal_profile_no TEXT, c_dal_value TEXT, UNIQUE(c_list, c_dal_key, "
            "c_dal_profile_no), FOREIGN KEY(c_list, c_dal_profile_no) REFERENCES tbl_list "
            "(c_list, c_dal_profile_no) ON DELETE CASCADE)");
    }

    void execute(const char* sql) {
        ASSERT_EQ(DAL_ExecuteQuery(db, sql), 0) << sql << ": " << sqlite3_errmsg(db);
    }

    struct Close {
        void operator()(sqlite3* connection) const {
            EXPECT_EQ(sqlite3_close(connection), SQLITE_OK) << "something was left prepared";
        }
    };
    std::unique_ptr<sqlite3, Close> owner;
    sqlite3* db = nullptr;
};

TEST_F(DataAccess, TheChangeOfJournalWaitsForAWriter) {
    ASSERT_EQ(query(kFile, "PRAGMA journal_mode"), "wal");
    owner.reset();
    ASSERT_EQ(query(kFile, "PRAGMA journal_mode = DELETE"), "delete");
    ASSERT_EQ(sqlite3_open(kFile.c_str(), &writer), SQLITE_OK);
    const std::unique_ptr<sqlite3, Close> writerOwner(writer);
    sqlite3_exec(writer, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    ASSERT_EQ(sqlite3_open(kFile.c_str(), &db), SQLITE_OK);
    owner.reset(db);
    EXPECT_EQ(DAL_SetDBConfiguration(db), 0);
    EXPECT_EQ(query(kFile, "PRAGMA journal_mode"), "wal");
}

TEST_F(DataAccess, LimitsAreInclusive) {
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 5, 0, 5, 7), 0);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 7, 0, 5, 7), 0);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 8, 0, 5, 7), SQLITE_RANGE);
    EXPECT_EQ(DAL_setTypeIntLimits(db, &kItem, 4, 0, 5, 7), SQLITE_RANGE);
    int32_t value = 0;
    EXPECT_EQ(DAL_getTypeInt(db, &kItem, &value, 1), 0);
    EXPECT_EQ(value, 7);
}

TEST_F(DataAccess, ANullConnectionOrAStrangePathFailsAndDelivers) {
    ASSERT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
    const KeyPath noLevel{};
    const KeyPath noKey{{{"dal_key", nullptr}}};
    const KeyPath threeLevels{{{"list", "n"}, {"dal_key", "k"}, {"dal_key", "k"}}};
    const KeyPath twoLists{{{"list", "n"}, {"list", "n"}}};
    const KeyPath everyNode{{{"list", nullptr}, {"dal_key", "k"}}};
    const KeyPath injected{{{"list; DROP TABLE tbl_list", "n"}, {"dal_key", "k"}}};
    const KeyPath unknown{{{"lost", "n"}, {"dal_key", "k"}}};
    const struct {
        sqlite3* connection;
        const KeyPath* path;
    } cases[] = {{nullptr, &kItem},  {db, nullptr},   {db, &noLevel},   {db, &noKey},
                 {db, &threeLevels}, {db, &twoLists}, {db, &everyNode}, {db, &injected},
                 {db, &unknown},     {db, &kNode},    {db, &kList}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        int32_t number = 0;
        char text[4] = "";
        uint32_t length = 9;
        char unchanged = 0;
        char* copy = &unchanged;
        EXPECT_NE(DAL_getProfiledTypeInt(c.connection, c.path, &number, 3, 0), 0);
        EXPECT_EQ(number, 3);
        EXPECT_NE(DAL_getTypeString(c.connection, c.path, text, &length, sizeof text, "long"), 0);
        EXPECT_STREQ(text, "lon");
        EXPECT_EQ(length, 4u);
        EXPECT_NE(DAL_getTypeStringMalloc(c.connection, c.path, &copy, &length), 0);
        EXPECT_EQ(copy, nullptr);
        EXPECT_NE(DAL_setProfiledTypeBOOLLimits(c.connection, c.path, 1, 0, 0, 1, 0), 0);
        EXPECT_NE(DAL_deleteProfiledItem(c.connection, c.path, DAL_ALL_PROFILES), 0);
        EXPECT_EQ(DAL_isPresent(c.connection, c.path), 0);
    }
    EXPECT_NE(DAL_SetDBConfiguration(nullptr), 0);
    EXPECT_NE(DAL_CreateFlatKeyTable(nullptr), 0);
    EXPECT_NE(DAL_DeleteFlatKeyTable(nullptr), 0);
    EXPECT_NE(DAL_ExecuteQuery(nullptr, "BEGIN"), 0);
    EXPECT_NE(DAL_deleteProfiledNodeItem(nullptr, &kNode, 0), 0);
    EXPECT_EQ(DAL_isProfiledNodePresent(nullptr, &kNode, 0), 0);
    EXPECT_EQ(DAL_listProfiledNodeItems(nullptr, &kList, "list", 0), nullptr);
    EXPECT_EQ(DAL_listProfiledNodeItems(db, &kList, "other", 0), nullptr);
    EXPECT_NE(DAL_setProfiledTypeString(db, &kItem, "v", 0, DAL_ALL_PROFILES), 0);
    EXPECT_EQ(query(kFile, "SELECT * FROM tbl_list_dal_key_dal_value"), "n|k|0|v");
}

TEST_F(DataAccess, ACommitThatFailsLeavesNoTransaction) {
    ASSERT_EQ(DAL_setTypeString(db, &kItem, "old", 0), 0);
    execute("BEGIN TRANSACTION;");
    execute("PRAGMA defer_foreign_keys = ON");
    execute("INSERT INTO tbl_list_dal_key_dal_value VALUES ('no node', 'k', '0', 'v')");
    EXPECT_EQ(DAL_DeleteFlatKeyTable(db), 0);
    EXPECT_EQ(DAL_ExecuteQuery(db, "COMMIT;"), SQLITE_CONSTRAINT);
    EXPECT_EQ(query(kFile, "SELECT c_dal_value FROM tbl_dal_key_dal_value"), "old");
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "new", 0), 0);
    EXPECT_EQ(query(kFile, "SELECT c_dal_value FROM tbl_dal_key_dal_value"), "new");
}

TEST_F(DataAccess, TheCallersTransactionIsNotDisturbed) {
    execute(
        "CREATE TRIGGER refuse BEFORE INSERT ON tbl_list_dal_key_dal_value WHEN "
        "new.c_dal_value = 'bad' BEGIN SELECT raise(ABORT, 'no'); END");
    execute("BEGIN");
    EXPECT_EQ(DAL_setTypeString(db, &kItem, "within", 0), 0);
    EXPECT_NE(DAL_setProfiledTypeString(db, &kListItem, "bad", 0, 0), 0);
    EXPECT_EQ(DAL_isProfiledNodePresent(db, &kNode, 0), 0) << "the set failed as a whole";
    EXPECT_EQ(query(kFile, "SELECT * FROM tbl_dal_key_dal_value"), "") << "not committed yet";
    execute("COMMIT");
    EXPECT_EQ(query(kFile, "SELECT c_dal_value FROM tbl_dal_key_dal_value"), "within");
}

TEST_F(DataAccess, OtherThreadsWaitForTheEndOfATransaction) {
    for (int32_t round = 0; round < 100; ++round) {
        execute("BEGIN");
        std::atomic<bool> started = false;
        int32_t result = -1;
        std::thread other([&] {
            started = true;
            result = DAL_setTypeIntLimits(db, &kItem, round, 0, 0, 100);
        });
        while (!started) {
            std::this_thread::yield();
        }
        EXPECT_EQ(DAL_setProfiledTypeString(db, &kListItem, "v", 0, 0), 0);
        execute("ROLLBACK");
        other.join();
        int32_t stored = -1;
        EXPECT_EQ(DAL_getTypeInt(db, &kItem, &stored, -1), 0);
        ASSERT_EQ(stored, round) << "undone with the other thread's transaction";
        EXPECT_EQ(result, 0);
    }
}

}  // namespace
