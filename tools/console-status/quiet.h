// Discards stderr while the library is called, because this program reports the failure itself.
#pragma once

#include <fcntl.h>
#include <unistd.h>

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
