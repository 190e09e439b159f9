/* Keeps a list, the favourites of the icons menu, and prints it.
   usage: list [set ID ICON | remove ID | clear] */
#include <console-manager/settings.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int32_t change(int count, char** words) {
    if (count == 3 && strcmp(words[0], "set") == 0) {
        return DAL_CML_setIconsMenuFavourite(words[1], words[2]);
    }
    if (count == 2 && strcmp(words[0], "remove") == 0) {
        return DAL_CML_deleteIconsMenuFavouritesNode(words[1]);
    }
    if (count == 1 && strcmp(words[0], "clear") == 0) {
        return DAL_CML_deleteAllIconsMenuFavouritesNodes();
    }
    return count != 0;
}

int main(int argc, char** argv) {
    if (change(argc - 1, argv + 1) != 0) {
        fprintf(stderr, "the list can't be changed\n");
        return 1;
    }
    char** const ids = DAL_CML_listIconsMenuFavouritesNodes();
    if (ids == NULL) {
        fprintf(stderr, "the list can't be read\n");
        return 1;
    }
    /* A null pointer ends the array. The caller frees each id, then the array. */
    for (char** id = ids; *id != NULL; ++id) {
        char* icon = NULL;
        uint32_t info;
        DAL_CML_getIconsMenuFavouriteMalloc(*id, &icon, &info);
        printf("%s: %s\n", *id, icon == NULL ? "none" : icon);
        free(icon);
        free(*id);
    }
    free(ids);
    return 0;
}
