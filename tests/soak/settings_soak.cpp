// Runs the settings through the rare situations listed in the table at the end.
//
// Without arguments each is a short sample in memory, in which no time is judged. With
//     settings_soak FOLDER [MILLISECONDS]
// each runs until its bounds mean something, on the file system of FOLDER (not in /mnt or /tmp/m7),
// and every sync takes so many milliseconds longer.
#include <cmath>
#include <filesystem>

#include "console-manager/settings.h"
#include "soak/played_disk.h"
#include "soak/processes.h"

namespace {

template <int processes, int threads, auto work>
void forTenSeconds() {
    inProcess([] { DAL_CML_deleteAll(); });
    hold("SELECT 1", 1s, 10s);
    many(processes, threads, work);
}

// The calls whose times are judged.
const auto setTimeout = [](int i) { return shared.sets(DAL_CML_setDisplayOffTimeout, i); };
const auto deleteAll = [] { return shared.clears(DAL_CML_deleteAll); };
int32_t setIcon(const std::string& node, int i) {
    return shared.sets(DAL_CML_setHomeScreenIcon, node.c_str(), std::to_string(i).c_str());
}
int32_t deleteIcon(const std::string& node) {
    return shared.sets(DAL_CML_deleteHomeScreenIconsNode, node.c_str());
}
std::string icon(const std::string& node) {
    char text[16];
    uint32_t length = 0;
    shared.gets(DAL_CML_getHomeScreenIcon, node.c_str(), +text, &length, sizeof text);
    return text;
}

int32_t change(int i) {
    const std::string node = "n" + std::to_string(i % 5);
    return i % 16 == 15 ? deleteAll()
           : i % 4 == 3 ? deleteIcon(node)
           : i % 4 == 2 ? setTimeout(i)
                        : setIcon(node, i);
}

// All settings that are changed here.
std::string settings() {
    int32_t timeout = -9;
    DAL_CML_getDisplayOffTimeout(&timeout);
    std::string all = std::to_string(timeout);
    for (const std::string& node : take(DAL_CML_listHomeScreenIconsNodes())) {
        all += " " + node + "=" + icon(node);
    }
    return all;
}

std::string integrity() {
    return query(kFile, "PRAGMA integrity_check; PRAGMA foreign_key_check");
}

// The first process sets now and then, the others without pause.
void setBesideWriters(int process, int, int round) {
    if (process > 0) {
        const std::string node = std::to_string(round % 500);
        EXPECT_EQ(DAL_CML_setBrowserDestinationHideItem(node.c_str(), round), 0);
        ++shared.writes;
        return;
    }
    const size_t before = shared.writes;
    setTimeout(round);
    shared.overtaken += shared.writes - before;
    std::this_thread::sleep_for(100ms);
}

// Each thread uses a node of its own; a ninth process deletes everything.
void useNode(int process, int thread, int round) {
    if (process == 8) {
        shared.clearing = true;
        deleteAll();
        std::this_thread::sleep_for(100ms);
        return;
    }
    const std::string node = std::to_string(process * 8 + thread);
    setIcon(node, round);
    const std::string text = icon(node);
    shared.lost += text != std::to_string(round) && (!text.empty() || !shared.clearing);
    if (round % 8 == 7) {
        shared.lost += deleteIcon(node) == 0 && !icon(node).empty();
        shared.gets([] { return take(DAL_CML_listHomeScreenIconsNodes()).size() > 64; });
    }
}

void besideLockHolder() {
    inProcess(deleteAll);
    hold("BEGIN IMMEDIATE", 1s, 60s);
    many(1, 6, [](int, int thread, int round) {
        thread == 0 ? void(icon("n")) : thread == 1 ? void(deleteAll()) : void(setTimeout(round));
    });
}

void besideExclusiveHolder() {
    hold("PRAGMA journal_mode = DELETE; CREATE TABLE t (a); BEGIN EXCLUSIVE", 1s, 60s);
    many(1, 3, [](int, int, int round) { setTimeout(round); });
}

void onWriteAheadFile() {
    noSharedMappings = false;
    inProcess([] { EXPECT_EQ(setTimeout(7), 0); });
    noSharedMappings = true;
    inProcess([] { EXPECT_EQ(settings(), "7"); });
    forTenSeconds<4, 1, useNode>();
}

// Runs work in such a folder and returns what it does there.
Steps recorded(const Folder& folder, auto work) {
    const std::string path = "/mnt/vex-data/m7";
    for (const auto& old : std::filesystem::directory_iterator(path)) {
        std::filesystem::remove(old);
    }
    for (const auto& [name, content] : folder) {
        writeFile(path + "/" + name, content);
    }
    const size_t begin = record.count;
    record.folder = path;
    inProcess(work);
    record.folder = {};
    return {record.steps + begin, record.steps + record.count};
}

Steps recover(const Folder& folder, const Texts& allowed) {
    return recorded(folder, [&] {
        const std::string now = settings();
        EXPECT_TRUE(std::ranges::count(allowed, now) > 0)
            << now << ", not " << testing::PrintToString(allowed);
        record.folder = {};
        EXPECT_EQ(integrity(), "ok");
    });
}

void losePower() {
    record.count = record.used = 0;
    const Steps steps = recorded({}, [] {
        for (int i = 0; i < 64; ++i) {
            EXPECT_EQ(change(i), 0);
            note('!', kFile, i, settings());
        }
    });
    Random random(1);
    const size_t used = record.used;
    for (int point = 0; point < sampleOr(20, 1000); ++point) {
        record.count = steps.size();
        record.used = used;
        const Steps done = steps.first(random() % (steps.size() + 1));
        // As the last finished call has left them, or as the interrupted one would.
        Texts allowed = {"30"};
        for (size_t i = 0; i < steps.size() && allowed.size() < 2; ++i) {
            if (steps[i].kind == '!') {
                allowed.resize(i < done.size() ? 0 : 1);
                allowed.emplace_back(steps[i].data);
            }
        }
        const Folder found = afterPowerLoss({}, done, random);
        const Steps again = recover(found, allowed);
        recover(afterPowerLoss(found, again.first(random() % (again.size() + 1)), random), allowed);
    }
}

// Each killed process has a child that lives longer, with copies of its descriptors.
void killInside() {
    Random random(1);
    for (int round = 0; round < sampleOr(20, 300); ++round) {
        const pid_t process = start([] {
            setpgid(0, 0);
            setTimeout(0);
            if (fork() == 0) {
                pause();
            }
            for (int i = 0;; ++i) {
                change(i);
            }
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 30'000));
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
        inProcess([=] { EXPECT_EQ(setTimeout(round), 0); });
        EXPECT_EQ(query(kFile, "SELECT c_dal_value FROM tbl_dal_key_dal_value"),
                  std::to_string(round));
        EXPECT_EQ(integrity(), "ok");
        kill(-process, SIGKILL);
    }
}

// Stopped with its turn and SQLite's lock.
void besideStopped() {
    const pid_t process = start([] {
        deleteAll();
        stopsInSync = true;
        EXPECT_EQ(DAL_CML_setDisplayOffTimeout(7), 0);
    });
    waitpid(process, nullptr, WUNTRACED);
    inProcess([] {
        for (int i = 0; i < sampleOr(1, 5); ++i) {
            icon("n");
            setTimeout(i);
        }
    });
    EXPECT_EQ(kill(process, SIGCONT), 0) << "it has not ended";
}

// On a volume with small blocks, if it can be mounted. Another process fills each block that is
// freed.
void onFullVolume() {
    EXPECT_EQ(std::system("cd /mnt/test && truncate -s 4M volume && "
                          "(mkfs.ext4 -qb 1024 volume && mount volume /mnt/vex-data/m7) 2>&- || "
                          "mount -t tmpfs -o size=1M none /mnt/vex-data/m7"),
              0);
    inProcess([] { EXPECT_EQ(setTimeout(7), 0); });
    start([] {
        const int file = open("/mnt/vex-data/m7/full", O_WRONLY | O_CREAT, 0600);
        for (size_t size = 4096; !shared.clearing; size = size > 1 ? size / 2 : 4096) {
            while (write(file, record.data, size) > 0) {
            }
            shared.ready = true;
        }
        EXPECT_EQ(ftruncate(file, 0), 0);
        shared.over = true;
    });
    waitUntilReady();
    many(1, 1, [](int, int, int) {
        const bool isOver = shared.over;
        const int32_t result = DAL_CML_setDisplayOffTimeout(7);
        EXPECT_TRUE(result == 0 || (result == SQLITE_FULL && !isOver)) << result;
        EXPECT_EQ(settings(), "7");
    });
    for (int reader = 0; reader < 40; ++reader) {
        inProcess([] { EXPECT_EQ(settings(), "7"); });
    }
    shared.clearing = true;
    waitForAll();
    EXPECT_EQ(integrity(), "ok");
    EXPECT_EQ(std::system("umount /mnt/vex-data/m7"), 0);
}

void copyBackup() {
    inProcess([] { EXPECT_EQ(setTimeout(7), 0); });
    EXPECT_EQ(query(kFile, "VACUUM INTO '/mnt/test/backup'"), "");
    for (int round = 1; round < sampleOr(10, 100); ++round) {
        inProcess([=] {
            for (int i = 0; i < round; ++i) {
                EXPECT_EQ(change(i), 0);
            }
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        });
        std::filesystem::copy_file("/mnt/test/backup", kFile,
                                   std::filesystem::copy_options::overwrite_existing);
        inProcess([] { EXPECT_EQ(settings(), "7"); });
        EXPECT_EQ(integrity(), "ok");
    }
}

void fillLog() {
    inProcess(settings);
    std::filesystem::copy_file(kFile, "/mnt/test/main");
    const std::string tables = "SELECT count(*) FROM sqlite_master WHERE sql > ''";
    EXPECT_EQ(query("/mnt/test/main", tables), query(kFile, tables));
    inProcess([] {
        for (int i = 0; i < 10'000; ++i) {
            i % 2 == 0 ? setTimeout(i) : setIcon(std::to_string(i % 99), i);
        }
    });
    EXPECT_LE(std::filesystem::file_size(kFile + "-wal"), 512u * 1024);
}

struct Situation {
    const char* name;
    void (*run)();
    bool sharedMappings = true;
    // The longest time of a call, in milliseconds.
    float set = HUGE_VALF, get = HUGE_VALF, clear = HUGE_VALF;
    bool mayFail = false;  // after a wait of ten seconds

    friend void PrintTo(const Situation& row, std::ostream* out) { *out << row.name; }
};
// clang-format off
const Situation kSituations[] = {
    {"BesideOneWriter", forTenSeconds<2, 1, setBesideWriters>, true, 250},
    {"Crowd", forTenSeconds<8, 8, useNode>, true, 500, 250},
    {"CrowdWithRollbackJournal", forTenSeconds<8, 8, useNode>, false},
    {"CrowdWhileAllIsDeleted", forTenSeconds<9, 8, useNode>, true, 500, 250, 500},
    {"BesideLockHolder", besideLockHolder, true, 11'000, 250, 22'000, true},
    {"FirstUseBesideExclusiveHolder", besideExclusiveHolder, true, 12'000, 0, 0, true},
    {"NoSharedMappingsOfWriteAheadFile", onWriteAheadFile, false},
    {"PowerLossWithWriteAheadLog", losePower},
    {"PowerLossWithRollbackJournal", losePower, false},
    {"KilledWithWriteAheadLog", killInside, true, 250},
    {"KilledWithRollbackJournal", killInside, false, 250},
    {"ShortLog", fillLog},
    {"BesideStoppedProcess", besideStopped, true, 10'500, 1000, 10'500, true},
    {"FullVolume", onFullVolume},
    {"BackupCopiedAfterExit", copyBackup},
};
// clang-format on

struct Soak : Sandbox, testing::WithParamInterface<Situation> {
    void prepare() override {
        new (&shared) Shared();
        noSharedMappings = !GetParam().sharedMappings;
        run("mkdir -p /mnt/vex-data/m7");
        if (!scratch.empty()) {
            run("cd " + scratch +
                " && mkdir -p soak/mnt soak/tmp && "
                "mount --bind soak/mnt /mnt/vex-data/m7 && mount --bind soak/tmp /tmp/m7");
        }
    }
    void TearDown() override { run("rm -rf /mnt/vex-data/m7/* /tmp/m7/*"); }
};

TEST_P(Soak, Keeps) {
    GetParam().run();
    waitForAll();
    shared.sets.judge("sets", GetParam().set, GetParam().mayFail);
    shared.gets.judge("gets", GetParam().get, false);
    shared.clears.judge("clears", GetParam().clear, false);
    EXPECT_EQ(shared.lost, 0u);
    EXPECT_LE(shared.overtaken, 200 * shared.sets.count) << "writes of others beside sets";
    EXPECT_EQ(integrity(), "ok");
}

INSTANTIATE_TEST_SUITE_P(, Soak, testing::ValuesIn(kSituations), testing::PrintToStringParamName());

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    scratch = argc > 1 ? argv[1] : "";
    syncMicroseconds = argc > 2 ? 1000 * static_cast<unsigned>(std::atoi(argv[2])) : 0;
    return RUN_ALL_TESTS();
}
