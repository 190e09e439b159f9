// What the library writes to stderr: discarded, or read from a child process.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <functional>
#include <string>

// Discards stderr while the library is called, because this program reports the failure itself.
class Quiet {
  public:
    Quiet() {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~Quiet() {
        dup2(kept, STDERR_FILENO);
        close(kept);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

  private:
    int kept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
};

// Does work that may end the process, or must not change it, in a child process. Returns what the
// child writes to stderr.
std::string saidByChild(const std::function<void()>& work);
