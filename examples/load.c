/* Prints the load of the processors over an interval. usage: load [SECONDS] */
#include <console-manager/device.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

int main(int argc, char** argv) {
    const unsigned seconds = argc > 1 ? (unsigned)strtoul(argv[1], NULL, 10) : 1;
    CML_getAllCPUUsage(NULL); /* the interval begins */
    sleep(seconds);
    int32_t count;
    const long double* const load = CML_getAllCPUUsage(&count);
    printf("all cores  %5.1Lf %%\n", 100 * load[0]);
    for (int32_t i = 1; i < count; ++i) {
        printf("online %-4d%5.1Lf %%\n", (int)i, 100 * load[i]);
    }
    return 0;
}
