// The settings on real databases.
#include <algorithm>
#include <array>
#include <barrier>
#include <cctype>
#include <thread>

#include "contracts/qor_core.h"
#include "support/setting.h"
#include "support/sqlite_query.h"

// The logging libraries, played. A record is told by its first word, and none by 0.
static std::array<TDL_LoggerRecord*, 2> loggers;  // what TDL_logger answers, in turns
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

// In lower case, with a separator between words.
std::string spelled(const std::string& name, char separator) {
    std::string words;
    for (const char c : name) {
        words += std::isupper(c) && !words.empty() ? std::string(1, separator) : "";
        words += static_cast<char>(std::tolower(c));
    }
    return words;
}

// Of a list, which is the @.
const std::string kTables =
    "CREATE TABLE tbl_@ (c_@ TEXT, c_dal_profile_no TEXT, UNIQUE(c_@, c_dal_profile_no)) "
    "CREATE TABLE tbl_@_dal_key_dal_value (c_@ TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, "
    "c_dal_value TEXT, UNIQUE(c_@, c_dal_key, c_dal_profile_no), FOREIGN KEY(c_@, "
    "c_dal_profile_no) REFERENCES tbl_@ (c_@, c_dal_profile_no) ON DELETE CASCADE ON UPDATE "
    "CASCADE)";

using Settings = Sandbox;

class EachSetting : public Sandbox, public testing::WithParamInterface<Setting> {
  protected:
    void checkItem() const {
        EXPECT_EQ(setting.getDefault(), setting.initial);
        EXPECT_EQ(setting.get(), "ok " + setting.initial);
        const bool isEnumerated = !setting.words.empty();
        const Texts values = setting.getMalloc ? Texts{"a'b"}
                             : isEnumerated    ? Texts{"0", "1", "2", "3", "4", "-1"}
                                               : Texts{"-2147483648", "2147483647"};
        Texts stored = isEnumerated ? setting.words : values;
        stored.resize(values.size());
        for (size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(setting.set(values[i]), 0);
            EXPECT_EQ(rows(), (setting.isProfiled ? "0=" : "=") + stored[i]);
            EXPECT_EQ(setting.get(), "ok " + (stored[i].empty() ? setting.initial : values[i]));
        }
        EXPECT_EQ(setting.isPresent(), 1);
        EXPECT_TRUE(!setting.getMalloc || setting.getMalloc() == setting.get());
        inDatabase("UPDATE " + items + " SET c_dal_profile_no = '3'");
        EXPECT_EQ(setting.set("1") + setting.deleteItem(), 0);
        EXPECT_EQ(setting.isPresent(), 0);
        EXPECT_TRUE(!setting.getMalloc || setting.getMalloc() == "failed null");
        EXPECT_EQ(rows(), "3=" + stored.back());
        EXPECT_EQ(setting.set("1") + setting.deleteAll(), 0);
        EXPECT_EQ(rows(), "") << "every profile's, and the unprofiled";
    }

    void checkNodes() const {
        EXPECT_EQ(inDatabase("SELECT replace(sql, '" + list +
                             "', '@') FROM sqlite_master WHERE sql LIKE '%" + nodes + "%'"),
                  kTables);
        inDatabase("INSERT INTO " + nodes + " VALUES ('n', '3')");
        EXPECT_EQ(setting.list.isNodePresent("n"), 1) << "its item's delete leaves it";
        EXPECT_EQ(take(setting.list.nodes()), Texts{"n"});
        inDatabase(
            "WITH RECURSIVE i(n) AS (SELECT 1000 UNION ALL SELECT n + 1 FROM i WHERE n < 1999) "
            "INSERT INTO " +
            nodes + " SELECT n, '0' FROM i");
        EXPECT_EQ(take(setting.list.nodes()).size(), 1001u);
        EXPECT_EQ(setting.list.deleteNode("n") + setting.list.isNodePresent("n"), 0);
        EXPECT_EQ(inDatabase("SELECT * FROM " + nodes + " WHERE c_dal_profile_no != '0'"), "n|3");
        EXPECT_EQ(setting.list.deleteAllNodes(), 0);
        EXPECT_EQ(inDatabase("SELECT * FROM " + nodes), "");
    }

    std::string inDatabase(const std::string& sql) const { return query(database, sql); }

    // Profile and value.
    std::string rows() const {
        return inDatabase("SELECT c_dal_profile_no || '=' || c_dal_value FROM " + items +
                          " WHERE c_dal_key = '" + spelled(setting.name, '-') + "' ORDER BY 1");
    }

    Setting setting = GetParam();
    std::string database = setting.name == "AutoTheme" ? kVolatileFile : kFile;
    std::string list = spelled(setting.list.name, '_');
    std::string nodes = "tbl_" + list;
    std::string items = (list.empty() ? "tbl" : nodes) + "_dal_key_dal_value";
};

TEST_P(EachSetting, HasItsFunctionsAndItsRow) {
    checkItem();
    if (!list.empty()) {
        checkNodes();
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, EachSetting, testing::ValuesIn(kSettings),
                         [](const auto& of) { return of.param.name; });

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
