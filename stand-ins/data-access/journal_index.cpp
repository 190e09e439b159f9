#include "stand-ins/data-access/journal_index.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

const sqlite3_io_methods* sqlites = nullptr;  // the same for all its files

// Makes the kernel store into each page, without a change, by a futex operation (an atomic OR with
// 0). If the volume is full, that fails with EFAULT where a store by the process would end it by
// SIGBUS. A page that has been stored into stays allocated.
bool allocate(volatile void* memory, int size) {
    constexpr int kOrZero = FUTEX_OP(FUTEX_OP_OR, 0, FUTEX_OP_CMP_EQ, 0);
    const long page = sysconf(_SC_PAGESIZE);
    for (long at = 0; at < size; at += page) {
        auto* const word = static_cast<volatile char*>(memory) + at;
        if (syscall(SYS_futex, word, FUTEX_WAKE_OP_PRIVATE, 0, nullptr, word, kOrZero) < 0 &&
            errno == EFAULT) {
            return false;
        }
    }
    return true;
}

int mapShared(sqlite3_file* file, int region, int size, int extend, volatile void** memory) {
    const int result = sqlites->xShmMap(file, region, size, extend, memory);
    if (result == SQLITE_IOERR_SHMSIZE && (errno == ENOSPC || errno == EDQUOT)) {
        return SQLITE_FULL;
    }
    if (result == SQLITE_OK && *memory != nullptr && !allocate(*memory, size)) {
        *memory = nullptr;
        return SQLITE_FULL;
    }
    return result;
}

// Returns what SQLite returns for an index that may only be read. SQLITE_READONLY_CANTINIT means
// that nobody maintains the index: nobody can write while it can't be allocated.
int mapOwn(sqlite3_file* file, int region, int size, int extend, volatile void** memory) {
    const int result = mapShared(file, region, size, extend, memory);
    if (result == SQLITE_FULL || (result == SQLITE_OK && *memory == nullptr)) {
        return SQLITE_READONLY_CANTINIT;
    }
    return result == SQLITE_OK ? SQLITE_READONLY : result;
}

}  // namespace

void guardIndex(sqlite3* connection, Index index) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file == nullptr || file->pMethods == nullptr || file->pMethods->iVersion < 2) {
        return;
    }
    static const std::array methods = [&] {
        sqlites = file->pMethods;
        std::array guarded = {*sqlites, *sqlites};
        guarded[0].xShmMap = mapShared;
        guarded[1].xShmMap = mapOwn;
        return guarded;
    }();
    if (file->pMethods == sqlites) {
        file->pMethods = &methods[index == Index::Shared ? 0 : 1];
    }
}
