/* Prints the load of the processors over an interval. usage: load [SECONDS] */
#include <console-manager/device.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

static void print(const char* which, int number, long double load) {
    printf("%s %-3d", which, number);
    if (load >= 0 && load <= 1) {
        printf("%5.1Lf %%\n", 100 * load);
    } else {
        puts("  unknown"); /* no tick has passed, or the set of cores has changed */
    }
}

int main(int argc, char** argv) {
    const unsigned seconds = argc > 1 ? (unsigned)strtoul(argv[1], NULL, 10) : 1;
    CML_getAllCPUUsage(NULL); /* the interval begins */
    sleep(seconds);
    int32_t count;
    const long double* const load = CML_getAllCPUUsage(&count);
    print("cores", (int)count - 1, load[0]);
    for (int32_t i = 1; i < count; ++i) {
        print("online", (int)i, load[i]);
    }
    return 0;
}
