/* Prints all network ports with their state. */
#include <console-manager/network.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
    char** const ports = CML_getNetworkPortsList(0);
    if (ports == NULL) {
        fprintf(stderr, "there are no ports\n");
        return 1;
    }
    for (char** port = ports; *port != NULL; ++port) {
        CML_NetworkPortStatus status;
        if (CML_getNetworkPortStatus(*port, &status) == 0) {
            /* removed since the list was made, or "bonding_masters" */
            printf("%-16snot a port\n", *port);
        } else {
            printf("%-16s%s\n", *port, status.running ? "up" : status.up ? "no link" : "down");
        }
        free(*port);
    }
    free(ports);
    return 0;
}
