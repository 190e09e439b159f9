/* Prints the state and the addresses of a network port. usage: port [NAME] */
#include <console-manager/network.h>
#include <stdio.h>

int main(int argc, char** argv) {
    const char* const port = argc > 1 ? argv[1] : "eth0";
    CML_NetworkPortStatus status;
    if (CML_getNetworkPortStatus(port, &status) == 0) {
        fprintf(stderr, "there is no port %s\n", port);
        return 1;
    }
    printf("state    %s\n", status.running ? "up" : status.up ? "no link" : "down");

    /* The texts are the library's, each good until the next call of its function: copy what you
       keep. Where there is no address they are empty. */
    printf("IPv4     %s\n", CML_getNetworkPortIPv4Address(port));
    printf("mask     %s\n", CML_getNetworkPortIPv4NetMask(port));
    printf("gateway  %s\n", CML_getNetworkPortIPv4Gateway(port));
    printf("IPv6     %s\n", CML_getNetworkPortIPv6Address(port));
    printf("MAC      %s\n", CML_getNetworkPortMACAddress(port));
    return 0;
}
