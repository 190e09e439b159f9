#pragma once

#include <unistd.h>

// Owns a file descriptor and closes it; a negative number stands for none.
class Descriptor {
  public:
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() {
        if (number >= 0) {
            close(number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return number >= 0; }
    int get() const { return number; }

  private:
    int number;
};
