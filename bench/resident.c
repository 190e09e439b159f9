/* Prints its memory map without the library and, after the word "loaded", with it and a setting. */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
    static const char* const kMap = "cat /proc/$PPID/smaps";
    int32_t (*get)(int32_t*);
    int32_t timeout;
    int status = argc == 2 ? system(kMap) : 1;
    puts("loaded");
    fflush(stdout);
    *(void**)&get = dlsym(dlopen(argv[argc - 1], RTLD_NOW), "DAL_CML_getDisplayOffTimeout");
    return status != 0 || get == NULL || get(&timeout) != 0 || system(kMap) != 0;
}
