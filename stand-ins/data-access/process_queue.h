#pragma once

#include <optional>
#include <string>

#include "stand-ins/data-access/wait.h"
#include "system/descriptor.h"

// A lock that processes get in the order in which they ask for it, by a file beside the database.
//
// The lock is that of the whole file; those of its bytes are places in front of it. Who comes to a
// queue takes the last place and moves up when the place before it gets free, so that nobody is
// overtaken, least of all by the one that has just left. To look at the places costs as much as the
// lock: a process that has looked may come again for a millisecond. The kernel frees the places of
// a process that ends. Only the locks count: the file stays empty.
class ProcessQueue {
  public:
    // For a database without a file the path is empty.
    explicit ProcessQueue(const std::string& databasePath)
        : database(databasePath), path(databasePath + "-turn") {}

    // False, and nothing is held, if the deadline comes first. True at once where there can't be
    // such locks: who comes is held up by nothing then. One thread at a time.
    bool enter(Clock::time_point now, Clock::time_point deadline);
    void leave();

    // The file, opened on first use; below 0 if it can't be. It is closed with the queue alone: a
    // process loses all its locks on a file with the first descriptor of it that it closes.
    int descriptor();

  private:
    bool isKept(Clock::time_point now);

    std::string database;
    std::string path;
    std::optional<Descriptor> file;
    Clock::time_point nextLook;
};
