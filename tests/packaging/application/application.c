/* An application as somebody else's project has it: stores a setting and reads it. */
#include <console-manager/settings.h>
#include <stdio.h>

int main(void) {
    int32_t timeout = 0;
    DAL_CML_setDisplayOffTimeout(17);
    DAL_CML_getDisplayOffTimeout(&timeout);
    printf("%d\n", (int)timeout);
    return 0;
}
