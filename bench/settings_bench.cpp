// The settings accessors beside the bare SQLite work on the same row, under the same pragmas.
// The databases are those of the machine that it runs on: start it where they may be written.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>

#include "console-manager/settings.h"
#include "platform/data_access.h"

namespace {

constexpr const char* kRead =
    "SELECT c_dal_value FROM tbl_dal_key_dal_value WHERE c_dal_key = ? AND c_dal_profile_no = ?";
constexpr const char* kWrite =
    "INSERT INTO tbl_dal_key_dal_value (c_dal_key, c_dal_profile_no, c_dal_value) VALUES (?, ?, ?) "
    "ON CONFLICT DO UPDATE SET c_dal_value = excluded.c_dal_value";

// A connection of the benchmark's own with one prepared statement.
class Bare {
  public:
    explicit Bare(const char* sql) {
        DAL_CML_setDisplayOffTimeout(60);
        sqlite3_open("/mnt/vex-data/m7/console-manager.db", &db);
        DAL_SetDBConfiguration(db);
        sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    }
    ~Bare() {
        sqlite3_finalize(statement);
        sqlite3_close(db);
    }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;

    void bind() const {
        sqlite3_bind_text(statement, 1, "display-off-timeout", -1, SQLITE_STATIC);
        sqlite3_bind_text(statement, 2, "0", -1, SQLITE_STATIC);
    }

    sqlite3* db = nullptr;
    sqlite3_stmt* statement = nullptr;
};

void bareRead(benchmark::State& state) {
    const Bare bare(kRead);
    for (auto _ : state) {
        bare.bind();
        if (sqlite3_step(bare.statement) != SQLITE_ROW) {
            state.SkipWithError("no row");
            break;
        }
        benchmark::DoNotOptimize(
            std::atoi(reinterpret_cast<const char*>(sqlite3_column_text(bare.statement, 0))));
        sqlite3_reset(bare.statement);
    }
}
BENCHMARK(bareRead);

void getter(benchmark::State& state) {
    int32_t value = 0;
    for (auto _ : state) {
        if (DAL_CML_getDisplayOffTimeout(&value) != 0) {
            state.SkipWithError("get failed");
            break;
        }
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(getter);

void bareWrite(benchmark::State& state) {
    const Bare bare(kWrite);
    int value = 10;
    for (auto _ : state) {
        bare.bind();
        // A new value each time: SQLite writes nothing for one that is stored already.
        value = value == 99 ? 10 : value + 1;
        const char digits[] = {static_cast<char>('0' + value / 10),
                               static_cast<char>('0' + value % 10), '\0'};
        sqlite3_bind_text(bare.statement, 3, digits, 2, SQLITE_STATIC);
        if (sqlite3_step(bare.statement) != SQLITE_DONE) {
            state.SkipWithError("write failed");
            break;
        }
        sqlite3_reset(bare.statement);
    }
}
BENCHMARK(bareWrite)->UseRealTime();

void setter(benchmark::State& state) {
    int value = 10;
    for (auto _ : state) {
        value = value == 99 ? 10 : value + 1;
        if (DAL_CML_setDisplayOffTimeout(value) != 0) {
            state.SkipWithError("set failed");
            break;
        }
    }
}
BENCHMARK(setter)->UseRealTime();

}  // namespace
