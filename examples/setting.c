/* Prints the language of the user interface; with an argument, such as DE, sets it first. */
#include <console-manager/settings.h>
#include <stdio.h>

int main(int argc, char** argv) {
    if (argc > 1 && DAL_CML_setLanguage(argv[1]) != 0) {
        fprintf(stderr, "the language can't be stored\n");
        return 1;
    }
    char language[16];
    uint32_t info;
    const int32_t result = DAL_CML_getLanguage(language, &info, sizeof language);
    if (result != 0) {
        fprintf(stderr, "can't be read (error %d), so this is the default:\n", (int)result);
    }
    printf("%s\n", language);
    return 0;
}
