// Checks the data access library that the loader finds against its contract, on a database of its
// own in TMPDIR. It needs nothing else from this project.
#include "contracts/data_access.h"

#include <algorithm>
#include <barrier>
#include <climits>
#include <filesystem>
#include <set>
#include <thread>

#include "support/sandbox.h"
#include "support/sqlite_query.h"

namespace {

const KeyPath kPlain{{{"dal_key", "k"}}};
const KeyPath kItem{{{"az_09", "n"}, {"dal_key", "k"}}};
const KeyPath kSecond{{{"az_09", "m"}, {"dal_key", "k"}}};
const KeyPath kNode{{{"az_09", "n"}}};
const KeyPath kWholeList{{{"az_09", nullptr}}};

thread_local uint32_t word = 0;  // of the caller, for the library

struct Gotten {
    int32_t value, result;
};

// The functions of a type and scope.
struct Access {
    const char* name;
    int32_t (*set)(sqlite3*, const KeyPath*, int32_t value);
    Gotten (*get)(sqlite3*, const KeyPath*, int32_t initial);
    int32_t (*isPresent)(sqlite3*, const KeyPath*);
    int32_t (*remove)(sqlite3*, const KeyPath*);
};

// clang-format off
#define MORE(...) __VA_OPT__(,) __VA_ARGS__
#define OF_EACH_TYPE(Scope, ...)                                                                       \
    [](auto db, auto key) { return DAL_is##Scope##Present(db, key MORE(__VA_ARGS__)); },               \
    [](auto db, auto key) { return DAL_delete##Scope##Item(db, key MORE(__VA_ARGS__)); }
#define NUMBER(Scope, Type, ...)                                                                       \
    {#Scope #Type, [](auto db, auto key, int32_t value) {                                              \
         return DAL_set##Scope##Type##Limits(db, key, value, 0, INT_MIN, INT_MAX MORE(__VA_ARGS__));   \
     }, [](auto db, auto key, int32_t initial) {                                                       \
         int32_t value = -9;                                                                           \
         const int32_t result = DAL_get##Scope##Type(db, key, &value, initial MORE(__VA_ARGS__));      \
         return Gotten{value, result};                                                                 \
     }, OF_EACH_TYPE(Scope, __VA_ARGS__)}
// Numbers as texts; the library keeps no pointer to them.
#define TEXT(Scope, ...)                                                                               \
    {#Scope "TypeString", [](auto db, auto key, int32_t value) {                                       \
         return DAL_set##Scope##TypeString(db, key, std::to_string(value).c_str(), 0 MORE(__VA_ARGS__)); \
     }, [](auto db, auto key, int32_t initial) {                                                       \
         char text[16] = "-9";                                                                         \
         const int32_t result = DAL_get##Scope##TypeString(db, key, text, &word, sizeof text,          \
                                                           std::to_string(initial).c_str() MORE(__VA_ARGS__)); \
         return Gotten{std::atoi(text), result};                                                       \
     }, OF_EACH_TYPE(Scope, __VA_ARGS__)}
const Access kAccesses[] = {NUMBER(, TypeBOOL), NUMBER(, TypeInt), TEXT(),
                            NUMBER(Profiled, TypeBOOL, 0), NUMBER(Profiled, TypeInt, 0), TEXT(Profiled, 0)};
// clang-format on
const Access& kPlainInt = kAccesses[1];
const Access& kInt = kAccesses[4];
constexpr int32_t kAbsent = -1;

class DataAccessContract : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        db = connect();
        // clang-format off
        execute("CREATE TABLE tbl_az_09 (c_az_09 TEXT, c_dal_profile_no TEXT, UNIQUE(c_az_09, c_dal_profile_no));");
        execute("CREATE TABLE tbl_az_09_dal_key_dal_value (c_az_09 TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, c_dal_value TEXT, "
                "UNIQUE(c_az_09, c_dal_key, c_dal_profile_no), FOREIGN KEY(c_az_09, c_dal_profile_no) REFERENCES tbl_az_09 "
                "(c_az_09, c_dal_profile_no) ON DELETE CASCADE ON UPDATE CASCADE);");
        // clang-format on
        EXPECT_EQ(DAL_CreateFlatKeyTable(db), 0);
    }
    void TearDown() override {
        sqlite3_close(db);
        std::filesystem::remove_all(folder);
    }

    sqlite3* connect() {
        sqlite3* connection = nullptr;
        EXPECT_EQ(sqlite3_open((folder + "/db").c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(DAL_SetDBConfiguration(connection), 0);
        return connection;
    }
    void execute(const char* sql) { EXPECT_EQ(DAL_ExecuteQuery(db, sql), 0) << sql; }
    void expectStored(const Access& access, const KeyPath& key, int32_t value) {
        const Gotten got = access.get(db, &key, 5);
        EXPECT_EQ(got.value, value == kAbsent ? 5 : value) << access.name;
        EXPECT_TRUE(got.result == 0 || value == kAbsent) << access.name;
        EXPECT_EQ(access.isPresent(db, &key) != 0, value != kAbsent) << access.name;
    }

    std::set<std::string> listed() {
        const Texts ids = take(DAL_listProfiledNodeItems(db, &kWholeList, "az_09", 0));
        return {ids.begin(), ids.end()};
    }

    std::string folder = testing::TempDir() + "data-access-XXXXXX";
    sqlite3* db = nullptr;
};

TEST_F(DataAccessContract, AnItemIsSetReplacedReadAndDeleted) {
    for (const Access& access : kAccesses) {
        for (const KeyPath& key : {kPlain, &access < kAccesses + 3 ? kPlain : kItem}) {
            expectStored(access, key, kAbsent);
            for (const int32_t value : {1, 0}) {
                EXPECT_EQ(access.set(db, &key, value), 0) << access.name;
                expectStored(access, key, value);
            }
            EXPECT_EQ(access.remove(db, &key), 0) << access.name;
            expectStored(access, key, kAbsent);
            EXPECT_EQ(access.set(db, &key, 1), 0) << access.name;
            EXPECT_EQ(DAL_deleteProfiledItem(db, &key, DAL_ALL_PROFILES), 0) << access.name;
            expectStored(access, key, kAbsent);
        }
    }
}

TEST_F(DataAccessContract, WithoutAConnectionAllFailsAndGettersDeliver) {
    for (const Access& access : kAccesses) {
        const Gotten got = access.get(nullptr, &kPlain, 5);
        EXPECT_TRUE(got.value == 5 && got.result != 0) << access.name;
        EXPECT_NE(access.set(nullptr, &kPlain, 1), 0) << access.name;
        EXPECT_NE(access.remove(nullptr, &kPlain), 0) << access.name;
        EXPECT_EQ(0, access.isPresent(nullptr, &kPlain)) << access.name;
    }
    char* text = nullptr;
    EXPECT_NE(DAL_getTypeStringMalloc(nullptr, &kPlain, &text, &word), 0);
    EXPECT_NE(DAL_getProfiledTypeStringMalloc(nullptr, &kPlain, &text, &word, 0), 0);
    EXPECT_NE(DAL_SetDBConfiguration(nullptr), 0);
    EXPECT_NE(DAL_CreateFlatKeyTable(nullptr), 0);
    EXPECT_NE(DAL_DeleteFlatKeyTable(nullptr), 0);
    EXPECT_NE(DAL_ExecuteQuery(nullptr, "BEGIN TRANSACTION;"), 0);
    EXPECT_NE(DAL_deleteProfiledNodeItem(nullptr, &kNode, 0), 0);
    EXPECT_EQ(DAL_isProfiledNodePresent(nullptr, &kNode, 0), 0);
    EXPECT_EQ(DAL_listProfiledNodeItems(nullptr, &kWholeList, "az_09", 0), nullptr);
}

TEST_F(DataAccessContract, NumbersAndTextsComeBackAsTheyWere) {
    for (const int32_t value : {INT_MIN, -2, INT_MAX}) {
        EXPECT_EQ(kPlainInt.set(db, &kPlain, value), 0);
        expectStored(kPlainInt, kPlain, value);
    }
    for (const std::string& value :
         {std::string(), std::string(5000, 'x'), std::string("'\xc3\xa9\" %s")}) {
        char* texts[2] = {};
        EXPECT_EQ(DAL_setTypeString(db, &kPlain, value.c_str(), 0), 0);
        EXPECT_EQ(DAL_setProfiledTypeString(db, &kItem, value.c_str(), 0, 0), 0);
        EXPECT_EQ(DAL_getTypeStringMalloc(db, &kPlain, &texts[0], &word), 0);
        EXPECT_EQ(DAL_getProfiledTypeStringMalloc(db, &kItem, &texts[1], &word, 0), 0);
        for (char* const text : texts) {
            EXPECT_EQ(text, value);
            free(text);
        }
        for (const size_t size : {1u, 5u, 65u}) {
            std::string buffer(100, '#');
            DAL_getTypeString(db, &kPlain, buffer.data(), &word, size, "default");
            EXPECT_LT(buffer.find('\0'), size);
            EXPECT_EQ(buffer.substr(size), std::string(100 - size, '#'));
            EXPECT_TRUE(value.size() >= size || buffer.c_str() == value);
        }
    }
}

TEST_F(DataAccessContract, ANodeComesWithItsFirstItemAndTakesItAlong) {
    EXPECT_EQ(DAL_isProfiledNodePresent(db, &kNode, 0), 0);
    EXPECT_EQ(kInt.set(db, &kItem, 1) + kInt.set(db, &kSecond, 0), 0);
    EXPECT_NE(DAL_isProfiledNodePresent(db, &kNode, 0), 0);
    EXPECT_EQ(listed(), (std::set<std::string>{"m", "n"}));
    EXPECT_EQ(DAL_deleteProfiledNodeItem(db, &kNode, 0), 0);
    EXPECT_EQ(DAL_isProfiledNodePresent(db, &kNode, 0), 0);
    expectStored(kInt, kItem, kAbsent);
    expectStored(kInt, kSecond, 0);
    execute("INSERT INTO tbl_az_09 VALUES ('of another profile', '5');");
    EXPECT_EQ(DAL_deleteProfiledNodeItem(db, &kWholeList, DAL_ALL_PROFILES), 0);
    EXPECT_EQ(query(folder + "/db", "SELECT * FROM tbl_az_09"), "");
    EXPECT_EQ(listed(), std::set<std::string>());
    expectStored(kInt, kSecond, kAbsent);
}

TEST_F(DataAccessContract, TheFlatKeyTableKeepsItsRowsUntilTheyAreDeletedInATransaction) {
    EXPECT_EQ(kPlainInt.set(db, &kPlain, 1) + kInt.set(db, &kItem, 1), 0);
    EXPECT_EQ(DAL_CreateFlatKeyTable(db), 0);
    expectStored(kPlainInt, kPlain, 1);
    sqlite3* const other = connect();
    execute("BEGIN TRANSACTION;");
    execute("DELETE FROM tbl_az_09;");
    EXPECT_EQ(DAL_DeleteFlatKeyTable(db), 0);
    EXPECT_EQ(kPlainInt.get(other, &kPlain, 5).value, 1) << "it isn't committed";
    execute("COMMIT;");
    EXPECT_EQ(kPlainInt.get(other, &kPlain, 5).value, 5) << "nothing is cached";
    expectStored(kInt, kItem, kAbsent);
    EXPECT_EQ(kPlainInt.set(db, &kPlain, 0), 0);
    expectStored(kPlainInt, kPlain, 0);
    EXPECT_NE(DAL_ExecuteQuery(db, "DELETE FROM tbl_of_nobody;"), 0);
    sqlite3_close(other);
}

TEST_F(DataAccessContract, ThreadsShareConnectionsAndHaveTheirOwn) {
    std::vector<sqlite3*> fresh(30);
    for (sqlite3*& connection : fresh) {
        sqlite3_open(":memory:", &connection);
    }
    std::barrier start(std::ssize(kAccesses));
    std::vector<std::jthread> threads;
    for (const Access& access : kAccesses) {
        threads.emplace_back([&] {
            const KeyPath key{{{"dal_key", access.name}}};
            for (size_t round = 0; round < fresh.size(); ++round) {
                const auto value = static_cast<int32_t>(round % 2);
                start.arrive_and_wait();
                EXPECT_EQ(0, access.isPresent(fresh[round], &key)) << access.name;
                EXPECT_EQ(access.set(db, &key, value), 0) << access.name;
                for (int again = 0; again < 10; ++again) {
                    sqlite3* own = nullptr;
                    sqlite3_open(":memory:", &own);
                    EXPECT_EQ(0, access.isPresent(own, &key)) << access.name;
                    sqlite3_close(own);
                    expectStored(access, key, value);
                }
            }
        });
    }
    threads.clear();
    std::ranges::for_each(fresh, sqlite3_close);
}

}  // namespace
