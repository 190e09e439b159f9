#include <cstdio>

int main() {
    std::puts("console-status");
    return 0;
}
