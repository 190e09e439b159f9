/* The shortest program that uses the library: reads a setting and asks a port for its address. */
#include <console-manager/network.h>
#include <console-manager/settings.h>
#include <stdio.h>

int main(void) {
    int32_t timeout;
    if (DAL_CML_getDisplayOffTimeout(&timeout) != 0) {
        fprintf(stderr, "the settings can't be read; going on with the default\n");
    }
    printf("display off after %d, address %s\n", (int)timeout,
           CML_getNetworkPortIPv4Address("eth0"));
    return 0;
}
