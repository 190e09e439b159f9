/* Lists the networks around a port. usage: wifi-scan [PORT]
   Most failures end the process that scans. Therefore a child scans, and sends the networks through
   a pipe. */
#include <console-manager/wifi.h>
#include <ctype.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

enum { MOST = 64 }; /* so many that a pipe takes all at once */

/* Runs in the child. Returns its exit status. */
static int scan(const char* port, int pipe) {
    wifi_bss_record records[MOST] = {0};
    wifi_data* const wifi = wifi_scan_init(port);
    if (wifi == NULL) {
        return 1;
    }
    const int32_t found = wifi_scan_all(wifi, records, MOST);
    wifi_scan_close(wifi);
    if (found == -1) {
        return 1;
    }
    const size_t size = (size_t)(found < MOST ? found : MOST) * sizeof records[0];
    return write(pipe, records, size) == (ssize_t)size ? 0 : 1;
}

static void print(const wifi_bss_record* network) {
    /* 0 stands for a signal that the kernel didn't send. */
    if (network->signal_mbm != 0) {
        printf("%6.1f dBm", network->signal_mbm / 100.0);
    } else {
        printf("%10s", "-");
    }
    printf("  %u MHz  ", (unsigned)network->frequency);
    /* The name may contain any bytes, even control sequences of the terminal. */
    for (const char* c = network->ssid; *c != '\0'; ++c) {
        putchar(isprint((unsigned char)*c) ? *c : '?');
    }
    printf("%s\n", network->status == CML_BSS_STATUS_ASSOCIATED ? "  (joined)" : "");
}

int main(int argc, char** argv) {
    int ends[2];
    /* exit() in the child would print again what is buffered here. */
    fflush(NULL);
    const pid_t child = pipe(ends) == 0 ? fork() : -1;
    if (child == -1) {
        perror("wifi-scan");
        return 1;
    }
    if (child == 0) {
        _exit(scan(argc > 1 ? argv[1] : "wlan0", ends[1]));
    }
    close(ends[1]);
    wifi_bss_record network;
    while (read(ends[0], &network, sizeof network) == (ssize_t)sizeof network) {
        print(&network);
    }
    int status;
    if (waitpid(child, &status, 0) != child || status != 0) {
        fprintf(stderr, "cannot scan\n");
        return 1;
    }
    return 0;
}
