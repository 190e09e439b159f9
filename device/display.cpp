#include "console-manager/device.h"
#include "console-manager/settings.h"

// The getters store a value also on failure, so their results are ignored.

int32_t CML_getAllowDriverToAdjustBrightness(void) {
    BOOL value;
    DAL_CML_getAllowDriverToAdjustBrightness(&value);
    return value;
}

int32_t CML_getDisplayInactivityTimeout(void) {
    int32_t value;
    DAL_CML_getDisplayInactivityTimeout(&value);
    return value;
}

int32_t CML_getDisplayOffTimeout(void) {
    int32_t value;
    DAL_CML_getDisplayOffTimeout(&value);
    return value;
}

void CML_restoreDisplayBrightness(void) {}
