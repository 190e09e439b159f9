// Replaces file calls of the one program whose source includes this: they can be slowed down,
// refused and recorded, and stop the process. Also computes what a power loss leaves of a recorded
// folder.
#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <random>
#include <set>
#include <span>
#include <string>

static unsigned syncMicroseconds = 0;          // added to each sync
static std::atomic<bool> stopsInSync = false;  // the process, in its next sync
static bool noSharedMappings = false;

// A call on a file of the folder, whose own name is "": (c)reate, (w)rite, (t)runcate, (u)nlink,
// (s)ync; or a note of the program.
struct Step {
    char kind;
    char name[47];
    int64_t offset;
    std::string_view data;
};

// In memory shared by all processes.
static struct Record {
    std::string_view folder;  // while one of them is recorded
    size_t count, used;
    Step steps[1 << 16];
    char data[1 << 26];
}& record = *static_cast<Record*>(mmap(nullptr, sizeof(Record), PROT_READ | PROT_WRITE,
                                       MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));

static void note(char kind, std::string_view path, int64_t offset = 0, std::string_view data = {}) {
    // The first process that opens the database makes the index of the write-ahead journal again.
    if (record.folder.empty() || !path.starts_with(record.folder) || path.ends_with("-shm")) {
        return;
    }
    Step& step = record.steps[record.count++] = {kind, "", offset, {}};
    path.remove_prefix(std::min(path.size(), record.folder.size() + 1));
    path.copy(step.name, sizeof step.name - 1);
    step.data = {record.data + record.used, data.copy(record.data + record.used, data.size())};
    record.used += data.size();
}

static void note(char kind, int file, int64_t offset = 0, std::string_view data = {}) {
    if (!record.folder.empty()) {
        char path[200];
        const std::string link = "/proc/self/fd/" + std::to_string(file);
        const ssize_t size = readlink(link.c_str(), path, sizeof path);
        note(kind, std::string_view(path, static_cast<size_t>(size)), offset, data);
    }
}

static void beforeSync() {
    usleep(syncMicroseconds);
    stopsInSync.exchange(false) ? raise(SIGSTOP) : 0;
}

// The names are the symbols that the dynamic linker looks up.
#define PLAYED(name, Result, parameters, arguments, before, after)                                \
    extern "C" Result played_##name parameters __asm__(#name);                                    \
    Result played_##name parameters {                                                             \
        static const auto next = reinterpret_cast<Result(*) parameters>(dlsym(RTLD_NEXT, #name)); \
        before;                                                                                   \
        Result result = next arguments;                                                           \
        after;                                                                                    \
        return result;                                                                            \
    }
// clang-format off
PLAYED(fsync, int, (int file), (file), beforeSync(), note('s', file))
PLAYED(fdatasync, int, (int file), (file), beforeSync(), note('s', file))
PLAYED(pwrite64, ssize_t, (int file, const char* data, size_t size, off64_t offset), (file, data, size, offset),
       , note('w', file, offset, {data, size}))
PLAYED(ftruncate64, int, (int file, off64_t size), (file, size), , note('t', file, size))
PLAYED(unlink, int, (const char* path), (path), , note('u', path))
PLAYED(open64, int, (const char* path, int flags, unsigned mode), (path, flags, mode),
       const bool isNew = (flags & O_CREAT) != 0 && access(path, F_OK) != 0, if (isNew) note('c', path))
PLAYED(mmap64, void*, (void* at, size_t size, int access, int flags, int file, off64_t offset), (at, size, access, flags, file, offset),
       if (noSharedMappings && file >= 0 && (flags & MAP_SHARED) != 0) { errno = ENODEV; return MAP_FAILED; }, )
// clang-format on

using Random = std::mt19937;
using Steps = std::span<const Step>;
using Folder = std::map<std::string, std::string>;  // the files by their names

// Whether a later step has synced the file, or the folder if the step creates or removes the file.
inline bool isDurable(const Step& step, Steps later) {
    const bool isEntry = step.kind == 'c' || step.kind == 'u';
    const std::string_view name = isEntry ? "" : step.name;
    const auto end = std::ranges::find_if(
        later, [&](const Step& s) { return (s.kind == 's' || s.kind == 'c') && s.name == name; });
    return end != later.end() && end->kind == 's';  // otherwise another file of that name follows
}

// Of a write that isn't durable, each sector may be lost.
inline void writeSectors(std::string& file, const Step& step, bool isTorn, Random& random) {
    constexpr size_t kSector = 512;
    auto offset = static_cast<size_t>(step.offset);
    for (size_t done = 0, size = 0; done < step.data.size(); done += size, offset += size) {
        size = std::min(isTorn ? kSector - offset % kSector : ~size_t{0}, step.data.size() - done);
        if (!isTorn || random() % 2 == 0) {
            file.resize(std::max(file.size(), offset + size));
            file.replace(offset, size, step.data, done, size);
        }
    }
}

// One of the states in which the folder may be found if the power fails after these steps.
inline Folder afterPowerLoss(Folder folder, Steps steps, Random& random) {
    std::set<std::string> lost;  // created, but lost with the folder's entry
    for (const Step& step : steps) {
        const bool durable = isDurable(step, {&step + 1, steps.data() + steps.size()});
        const bool happens = durable || random() % 2 == 0;
        if (step.kind == 'c') {
            happens ? lost.erase(step.name) : lost.insert(step.name).second;
        }
        if (!happens || lost.contains(step.name)) {
            continue;
        }
        if (step.kind == 'c') {
            folder[step.name].clear();
        } else if (step.kind == 'u') {
            folder.erase(step.name);
        } else if (step.kind == 'w' && folder.contains(step.name)) {
            writeSectors(folder[step.name], step, !durable && random() % 2 == 0, random);
        } else if (step.kind == 't' && folder.contains(step.name)) {
            folder[step.name].resize(static_cast<size_t>(step.offset));
        }
    }
    return folder;
}
