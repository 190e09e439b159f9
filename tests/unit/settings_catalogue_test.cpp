// Every setting by the names of its functions, against the table of the tests and the rows of the
// databases.
#include <cctype>

#include "support/setting.h"
#include "support/sqlite_query.h"

namespace {

// In lower case, with a separator between words.
std::string spelled(const std::string& name, char separator) {
    std::string words;
    for (const char c : name) {
        words += std::isupper(c) && !words.empty() ? std::string(1, separator) : "";
        words += static_cast<char>(std::tolower(c));
    }
    return words;
}

// Of each list, which is the @.
const std::string kTables =
    "CREATE TABLE tbl_@ (c_@ TEXT, c_dal_profile_no TEXT, UNIQUE(c_@, c_dal_profile_no)) "
    "CREATE TABLE tbl_@_dal_key_dal_value (c_@ TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, "
    "c_dal_value TEXT, UNIQUE(c_@, c_dal_key, c_dal_profile_no), FOREIGN KEY(c_@, "
    "c_dal_profile_no) REFERENCES tbl_@ (c_@, c_dal_profile_no) ON DELETE CASCADE ON UPDATE "
    "CASCADE)";

// With its place in the databases.
struct StoredSetting : Setting {
    std::string key = spelled(name, '-');
    std::string nodes = "tbl_" + spelled(list, '_');
    std::string items = (list.empty() ? "tbl" : nodes) + "_dal_key_dal_value";
    std::string database = name == "AutoTheme" ? kVolatileFile : kFile;

    // Profile and value.
    std::string rows() const {
        return query(database, "SELECT c_dal_profile_no || '=' || c_dal_value FROM " + items +
                                   " WHERE c_dal_key = '" + key + "' ORDER BY 1");
    }

    void checkItem() const {
        EXPECT_EQ(getDefault(plainly), initial);
        EXPECT_EQ(get(plainly), "ok " + initial);
        const Texts values = type == 's'   ? Texts{"a'b"}
                             : type == 'w' ? Texts{"0", "1", "2", "3", "4", "-1"}
                                           : Texts{"-2147483648", "2147483647"};
        Texts stored = type == 'w' ? words : values;
        stored.resize(values.size());
        for (size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(set(plainly, values[i]), 0);
            EXPECT_EQ(rows(), (scope == 'p' ? "0=" : "=") + stored[i]);
            EXPECT_EQ(get(plainly), "ok " + (stored[i].empty() ? initial : values[i]));
        }
        EXPECT_EQ(member(plainly, "is", "Present"), 1);
        EXPECT_TRUE(type != 's' || getMalloc(plainly) == get(plainly));
        query(database, "UPDATE " + items + " SET c_dal_profile_no = '3'");
        EXPECT_EQ(set(plainly, "1") + member(plainly, "delete", ""), 0);
        EXPECT_EQ(member(plainly, "is", "Present"), 0);
        EXPECT_TRUE(type != 's' || getMalloc(plainly) == "failed null");
        EXPECT_EQ(rows(), "3=" + stored.back());
        EXPECT_EQ(set(plainly, "1") + member(plainly, "deleteAll", ""), 0);
        EXPECT_EQ(rows(), "") << "every profile's, and the unprofiled";
    }

    void checkNodes() const {
        EXPECT_EQ(query(database, "SELECT replace(sql, '" + nodes.substr(4) + "', '@') FROM " +
                                      "sqlite_master WHERE sql LIKE '%" + nodes + "%'"),
                  kTables);
        query(database, "INSERT INTO " + nodes + " VALUES ('n', '3')");
        const std::string ids = "SELECT * FROM " + nodes + " ORDER BY 2";
        EXPECT_EQ(call(plainly, "is" + list + "NodePresent", "n"), 1)
            << "its item's delete leaves it";
        EXPECT_EQ(take(call<char**>(plainly, "list" + list + "Nodes")), Texts{"n"});
        EXPECT_EQ(call(plainly, "delete" + list + "Node", "n") +
                      call(plainly, "is" + list + "NodePresent", "n"),
                  0);
        EXPECT_EQ(query(database, ids), "n|3");
        EXPECT_EQ(call(plainly, "deleteAll" + list + "Nodes"), 0);
        EXPECT_EQ(query(database, ids), "");
    }
};

using Settings = Sandbox;

TEST_F(Settings, EachHasItsFunctionsAndItsRow) {
    for (const Kind& kind : kKinds) {
        for (const std::string& name : kind.names) {
            SCOPED_TRACE(name);
            const StoredSetting setting{{kind, name}};
            setting.checkItem();
            if (!kind.list.empty()) {
                setting.checkNodes();
            }
        }
    }
    EXPECT_EQ(called.size(), 320);
}

}  // namespace
