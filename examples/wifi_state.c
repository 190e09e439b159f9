/* Prints the state of a Wi-Fi link. usage: wifi-state [PORT] */
#include <console-manager/wifi.h>
#include <ctype.h>
#include <stdio.h>

int main(int argc, char** argv) {
    const char* const port = argc > 1 ? argv[1] : "wlan0";
    /* Most failures end the process: an application that can't accept that makes this call in a
       child process, like wifi_scan.c. */
    CML_WifiStatus status;
    if (CML_getWifiStatus(port, &status) == 0) {
        fprintf(stderr, "there is no port %s\n", port);
        return 1;
    }
    if (*status.ssid == '\0') {
        printf("not connected\n");
        return 0;
    }
    /* The name may contain any bytes, even control sequences of the terminal. */
    for (const char* c = status.ssid; *c != '\0'; ++c) {
        putchar(isprint((unsigned char)*c) ? *c : '?');
    }
    /* 0 stands for a signal that the kernel didn't send. */
    if (status.signalDbm != 0) {
        printf(": %d dBm", (int)status.signalDbm);
    }
    printf(": %lu packets received, %lu sent\n", (unsigned long)status.rxPackets,
           (unsigned long)status.txPackets);
    return 0;
}
