/*
 * Prints the process's memory map without the library and, behind a line "loaded", with it after
 * the first setting. Started by bench/run.
 */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>

static void printMap(void) {
    char piece[4096];
    FILE* const map = fopen("/proc/self/smaps", "re");
    if (map == NULL) {
        return;
    }
    while (fgets(piece, sizeof piece, map) != NULL) {
        fputs(piece, stdout);
    }
    fclose(map);
}

int main(int argc, char** argv) {
    printMap();
    puts("loaded");
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_LAZY) : NULL;
    int32_t (*get)(int32_t*) = NULL;
    if (library != NULL) {
        *(void**)&get = dlsym(library, "DAL_CML_getDisplayOffTimeout");
    }
    int32_t timeout;
    if (get == NULL || get(&timeout) != 0) {
        fprintf(stderr, "usage: resident LIBRARY, with /mnt/vex-data to write in\n");
        return 1;
    }
    printMap();
    return 0;
}
