/* Prints the state of a Wi-Fi link. usage: wifi-state [PORT] */
#include <console-manager/wifi.h>
#include <ctype.h>
#include <stdio.h>

int main(int argc, char** argv) {
    const char* const port = argc > 1 ? argv[1] : "wlan0";
    /* If the kernel can't be asked, this call prints a line and ends the process: an application
       that has to go on calls it in a child process. */
    CML_WifiStatus status;
    if (CML_getWifiStatus(port, &status) == 0) {
        fprintf(stderr, "there is no port %s\n", port);
        return 1;
    }
    if (*status.ssid == '\0') {
        printf("not connected\n");
        return 0;
    }
    /* The name may hold any bytes, some of which a terminal would obey. */
    for (const char* c = status.ssid; *c != '\0'; ++c) {
        putchar(isprint((unsigned char)*c) ? *c : '?');
    }
    printf(": %d dBm, %lu packets received, %lu sent\n", (int)status.signalDbm,
           (unsigned long)status.rxPackets, (unsigned long)status.txPackets);
    return 0;
}
