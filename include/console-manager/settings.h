/*
 * The console's settings: read, write, reset and test each of the 49 settings.
 *
 * Where they live. All settings but one are rows of "/mnt/vex-data/m7/console-manager.db", on the
 * data mount; AutoTheme is in "/tmp/m7/console-manager.db" and lasts as long as that file. The
 * first call that needs a database makes its folder, opens it and creates what is missing in it; no
 * other call is needed before. It stays open until the process ends. Nothing is cached, so that a
 * change made by another process is seen at once.
 *
 * The family of a setting S:
 *
 *     DAL_CML_getS          delivers the stored value, or the default where none is stored
 *     DAL_CML_getSMalloc    strings only: the stored value in memory of its own, no default
 *     DAL_CML_setS          stores a value, in place of an earlier one
 *     DAL_CML_getSDefault   the default itself; touches no database and can't fail
 *     DAL_CML_deleteS       removes the stored value, so that the default holds again
 *     DAL_CML_deleteAllS    removes the stored values under all profile numbers
 *     DAL_CML_isSPresent    1 if a value is stored, 0 if not; a default doesn't count
 *
 * A profiled setting can have a value for each profile number; all these functions address number
 * 0, and the deleteAll forms every one. An unprofiled setting has one value.
 *
 * Results. 0 is success, anything else a failure of the data access library, passed on as it is:
 * its numbers are those of SQLite (5 the database is locked, 7 memory has run out, 13 the disk is
 * full ...). isSPresent answers 1 or 0, and 0 on a failure too. A set or delete that returned 0 is
 * on the disk.
 *
 * Getters deliver on every path: also when the database can't be opened *value, or the buffer,
 * holds the default afterwards, and only the result tells. No argument is checked for meaning: an
 * integer is stored as it is, a BOOL other than 0 and 1 too.
 *
 * Strings. buffer has room for size bytes, and never more is written, the terminator included; a
 * longer text is cut at a byte. valueInfo may be null; otherwise it receives the length in bytes,
 * without terminator, of the whole text, so that *valueInfo >= size tells of a cut. The allocating
 * getter stores a block from malloc in *value, which the caller gives back with free; for an absent
 * setting, or on a failure, it stores null and returns a failure. A set copies its value. A
 * getSDefault of a string returns a constant text, neither to be changed nor freed, never null.
 *
 * When a database can't be opened, the call fails, the getter delivers the default, a message goes
 * to the trace library, and the next call tries again: a mount that comes up later is picked up.
 *
 * Another process that is writing the same file is waited for, 10 seconds at most.
 *
 * Threads. Any function may be called from any thread at any time. A process shares one connection
 * to each file, and calls wait for each other there. A process that has used a setting must not go
 * on using settings in a child made by fork alone; the child has to exec.
 */
#ifndef CONSOLE_MANAGER_SETTINGS_H
#define CONSOLE_MANAGER_SETTINGS_H

#include <stddef.h>
#include <stdint.h>

#include "console-manager/bool.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Removes every value of every setting and every list, in both databases. Returns 0 if both could
 * be opened and 1 if not; the one that could be opened is cleared all the same. A failure of the
 * removal itself doesn't show in the result.
 */
int32_t DAL_CML_deleteAll(void);

/*
 * ---- Settings of one value ----
 *
 * A number, a truth value or a text, stored and delivered as it is.
 */

/* Revision of the user interface that the console shows. Integer, default 1, profiled. */
int32_t DAL_CML_getUserInterfaceRevision(int32_t* value);
int32_t DAL_CML_setUserInterfaceRevision(int32_t value);
int32_t DAL_CML_getUserInterfaceRevisionDefault(void);
int32_t DAL_CML_deleteUserInterfaceRevision(void);
int32_t DAL_CML_deleteAllUserInterfaceRevision(void);
int32_t DAL_CML_isUserInterfaceRevisionPresent(void);

/* Language of the user interface, as a short code. String, default "EN", unprofiled. */
int32_t DAL_CML_getLanguage(char* buffer, uint32_t* valueInfo, size_t size);
int32_t DAL_CML_getLanguageMalloc(char** value, uint32_t* valueInfo);
int32_t DAL_CML_setLanguage(const char* value);
const char* DAL_CML_getLanguageDefault(void);
int32_t DAL_CML_deleteLanguage(void);
int32_t DAL_CML_deleteAllLanguage(void);
int32_t DAL_CML_isLanguagePresent(void);

/* Whether a driver logs in with a password. BOOL, default 0, profiled. */
int32_t DAL_CML_getEnableDriverPasswordLogin(BOOL* value);
int32_t DAL_CML_setEnableDriverPasswordLogin(BOOL value);
BOOL DAL_CML_getEnableDriverPasswordLoginDefault(void);
int32_t DAL_CML_deleteEnableDriverPasswordLogin(void);
int32_t DAL_CML_deleteAllEnableDriverPasswordLogin(void);
int32_t DAL_CML_isEnableDriverPasswordLoginPresent(void);

/* Whether a driver enters a driver id. BOOL, default 0, profiled. */
int32_t DAL_CML_getEnableDriverIdEntry(BOOL* value);
int32_t DAL_CML_setEnableDriverIdEntry(BOOL value);
BOOL DAL_CML_getEnableDriverIdEntryDefault(void);
int32_t DAL_CML_deleteEnableDriverIdEntry(void);
int32_t DAL_CML_deleteAllEnableDriverIdEntry(void);
int32_t DAL_CML_isEnableDriverIdEntryPresent(void);

/* Whether a service id is entered. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getEnableServiceIdEntry(BOOL* value);
int32_t DAL_CML_setEnableServiceIdEntry(BOOL value);
BOOL DAL_CML_getEnableServiceIdEntryDefault(void);
int32_t DAL_CML_deleteEnableServiceIdEntry(void);
int32_t DAL_CML_deleteAllEnableServiceIdEntry(void);
int32_t DAL_CML_isEnableServiceIdEntryPresent(void);

/* Whether several messages may be chosen at once. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getAllowMultipleMessages(BOOL* value);
int32_t DAL_CML_setAllowMultipleMessages(BOOL value);
BOOL DAL_CML_getAllowMultipleMessagesDefault(void);
int32_t DAL_CML_deleteAllowMultipleMessages(void);
int32_t DAL_CML_deleteAllAllowMultipleMessages(void);
int32_t DAL_CML_isAllowMultipleMessagesPresent(void);

/* Whether an update from a USB stick asks for a password. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getUsbUpdateRequiresPassword(BOOL* value);
int32_t DAL_CML_setUsbUpdateRequiresPassword(BOOL value);
BOOL DAL_CML_getUsbUpdateRequiresPasswordDefault(void);
int32_t DAL_CML_deleteUsbUpdateRequiresPassword(void);
int32_t DAL_CML_deleteAllUsbUpdateRequiresPassword(void);
int32_t DAL_CML_isUsbUpdateRequiresPasswordPresent(void);

/* Whether the driver may change the brightness of the display. BOOL, default 0, profiled. */
int32_t DAL_CML_getAllowDriverToAdjustBrightness(BOOL* value);
int32_t DAL_CML_setAllowDriverToAdjustBrightness(BOOL value);
BOOL DAL_CML_getAllowDriverToAdjustBrightnessDefault(void);
int32_t DAL_CML_deleteAllowDriverToAdjustBrightness(void);
int32_t DAL_CML_deleteAllAllowDriverToAdjustBrightness(void);
int32_t DAL_CML_isAllowDriverToAdjustBrightnessPresent(void);

/* Whether a change of destination asks for a password. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getDestinationChangeRequiresPassword(BOOL* value);
int32_t DAL_CML_setDestinationChangeRequiresPassword(BOOL value);
BOOL DAL_CML_getDestinationChangeRequiresPasswordDefault(void);
int32_t DAL_CML_deleteDestinationChangeRequiresPassword(void);
int32_t DAL_CML_deleteAllDestinationChangeRequiresPassword(void);
int32_t DAL_CML_isDestinationChangeRequiresPasswordPresent(void);

/* Whether a change of information asks for a password. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getInformationChangeRequiresPassword(BOOL* value);
int32_t DAL_CML_setInformationChangeRequiresPassword(BOOL value);
BOOL DAL_CML_getInformationChangeRequiresPasswordDefault(void);
int32_t DAL_CML_deleteInformationChangeRequiresPassword(void);
int32_t DAL_CML_deleteAllInformationChangeRequiresPassword(void);
int32_t DAL_CML_isInformationChangeRequiresPasswordPresent(void);

/* Whether round trips are in use. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getRoundTripEnable(BOOL* value);
int32_t DAL_CML_setRoundTripEnable(BOOL value);
BOOL DAL_CML_getRoundTripEnableDefault(void);
int32_t DAL_CML_deleteRoundTripEnable(void);
int32_t DAL_CML_deleteAllRoundTripEnable(void);
int32_t DAL_CML_isRoundTripEnablePresent(void);

/*
 * Orientation of the round trip; the store gives neither value a meaning. BOOL, default 0,
 * unprofiled.
 */
int32_t DAL_CML_getRoundTripOrientation(BOOL* value);
int32_t DAL_CML_setRoundTripOrientation(BOOL value);
BOOL DAL_CML_getRoundTripOrientationDefault(void);
int32_t DAL_CML_deleteRoundTripOrientation(void);
int32_t DAL_CML_deleteAllRoundTripOrientation(void);
int32_t DAL_CML_isRoundTripOrientationPresent(void);

/* Whether destinations may be controlled from the console. BOOL, default 1, unprofiled. */
int32_t DAL_CML_getAllowControlOfDestinations(BOOL* value);
int32_t DAL_CML_setAllowControlOfDestinations(BOOL value);
BOOL DAL_CML_getAllowControlOfDestinationsDefault(void);
int32_t DAL_CML_deleteAllowControlOfDestinations(void);
int32_t DAL_CML_deleteAllAllowControlOfDestinations(void);
int32_t DAL_CML_isAllowControlOfDestinationsPresent(void);

/*
 * Time without input until the display counts as inactive; the store fixes no unit. Integer,
 * default 15, profiled.
 */
int32_t DAL_CML_getDisplayInactivityTimeout(int32_t* value);
int32_t DAL_CML_setDisplayInactivityTimeout(int32_t value);
int32_t DAL_CML_getDisplayInactivityTimeoutDefault(void);
int32_t DAL_CML_deleteDisplayInactivityTimeout(void);
int32_t DAL_CML_deleteAllDisplayInactivityTimeout(void);
int32_t DAL_CML_isDisplayInactivityTimeoutPresent(void);

/* Time until the display goes off; the store fixes no unit. Integer, default 30, profiled. */
int32_t DAL_CML_getDisplayOffTimeout(int32_t* value);
int32_t DAL_CML_setDisplayOffTimeout(int32_t value);
int32_t DAL_CML_getDisplayOffTimeoutDefault(void);
int32_t DAL_CML_deleteDisplayOffTimeout(void);
int32_t DAL_CML_deleteAllDisplayOffTimeout(void);
int32_t DAL_CML_isDisplayOffTimeoutPresent(void);

/* Time until maintenance mode ends; the store fixes no unit. Integer, default 0, profiled. */
int32_t DAL_CML_getMaintenanceTimeout(int32_t* value);
int32_t DAL_CML_setMaintenanceTimeout(int32_t value);
int32_t DAL_CML_getMaintenanceTimeoutDefault(void);
int32_t DAL_CML_deleteMaintenanceTimeout(void);
int32_t DAL_CML_deleteAllMaintenanceTimeout(void);
int32_t DAL_CML_isMaintenanceTimeoutPresent(void);

/* Whether the driver may use the Qor terminal. BOOL, default 1, profiled. */
int32_t DAL_CML_getDriverQorTerminalPermission(BOOL* value);
int32_t DAL_CML_setDriverQorTerminalPermission(BOOL value);
BOOL DAL_CML_getDriverQorTerminalPermissionDefault(void);
int32_t DAL_CML_deleteDriverQorTerminalPermission(void);
int32_t DAL_CML_deleteAllDriverQorTerminalPermission(void);
int32_t DAL_CML_isDriverQorTerminalPermissionPresent(void);

/*
 * Source of the driver's display; the store gives the numbers no meaning. Integer, default -1,
 * unprofiled.
 */
int32_t DAL_CML_getDriverDisplaySource(int32_t* value);
int32_t DAL_CML_setDriverDisplaySource(int32_t value);
int32_t DAL_CML_getDriverDisplaySourceDefault(void);
int32_t DAL_CML_deleteDriverDisplaySource(void);
int32_t DAL_CML_deleteAllDriverDisplaySource(void);
int32_t DAL_CML_isDriverDisplaySourcePresent(void);

/*
 * How the driver's display is rendered; the store gives the numbers no meaning. Integer, default
 * 0, unprofiled.
 */
int32_t DAL_CML_getDriverDisplayRenderMode(int32_t* value);
int32_t DAL_CML_setDriverDisplayRenderMode(int32_t value);
int32_t DAL_CML_getDriverDisplayRenderModeDefault(void);
int32_t DAL_CML_deleteDriverDisplayRenderMode(void);
int32_t DAL_CML_deleteAllDriverDisplayRenderMode(void);
int32_t DAL_CML_isDriverDisplayRenderModePresent(void);

/* Whether hot keys may be selected. BOOL, default 0, profiled. */
int32_t DAL_CML_getQorHotKeySelectEnabled(BOOL* value);
int32_t DAL_CML_setQorHotKeySelectEnabled(BOOL value);
BOOL DAL_CML_getQorHotKeySelectEnabledDefault(void);
int32_t DAL_CML_deleteQorHotKeySelectEnabled(void);
int32_t DAL_CML_deleteAllQorHotKeySelectEnabled(void);
int32_t DAL_CML_isQorHotKeySelectEnabledPresent(void);

/*
 * Which of the two time formats is shown; the store gives neither value a meaning. BOOL, default
 * 1, unprofiled.
 */
int32_t DAL_CML_getTimeFormat(BOOL* value);
int32_t DAL_CML_setTimeFormat(BOOL value);
BOOL DAL_CML_getTimeFormatDefault(void);
int32_t DAL_CML_deleteTimeFormat(void);
int32_t DAL_CML_deleteAllTimeFormat(void);
int32_t DAL_CML_isTimeFormatPresent(void);

/* Whether the virtual Qor terminal is offered. BOOL, default 0, profiled. */
int32_t DAL_CML_getEnableVirtualQorTerminal(BOOL* value);
int32_t DAL_CML_setEnableVirtualQorTerminal(BOOL value);
BOOL DAL_CML_getEnableVirtualQorTerminalDefault(void);
int32_t DAL_CML_deleteEnableVirtualQorTerminal(void);
int32_t DAL_CML_deleteAllEnableVirtualQorTerminal(void);
int32_t DAL_CML_isEnableVirtualQorTerminalPresent(void);

/* Whether the sign test is locked to maintenance. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getSignTestMaintenanceLock(BOOL* value);
int32_t DAL_CML_setSignTestMaintenanceLock(BOOL value);
BOOL DAL_CML_getSignTestMaintenanceLockDefault(void);
int32_t DAL_CML_deleteSignTestMaintenanceLock(void);
int32_t DAL_CML_deleteAllSignTestMaintenanceLock(void);
int32_t DAL_CML_isSignTestMaintenanceLockPresent(void);

/* Whether the driver may reboot the console. BOOL, default 0, profiled. */
int32_t DAL_CML_getAllowDriverReboot(BOOL* value);
int32_t DAL_CML_setAllowDriverReboot(BOOL value);
BOOL DAL_CML_getAllowDriverRebootDefault(void);
int32_t DAL_CML_deleteAllowDriverReboot(void);
int32_t DAL_CML_deleteAllAllowDriverReboot(void);
int32_t DAL_CML_isAllowDriverRebootPresent(void);

/*
 * Order of the icons on the home screen; stored and delivered untouched. String, default the
 * empty string, profiled.
 */
int32_t DAL_CML_getHomeScreenIconOrder(char* buffer, uint32_t* valueInfo, size_t size);
int32_t DAL_CML_getHomeScreenIconOrderMalloc(char** value, uint32_t* valueInfo);
int32_t DAL_CML_setHomeScreenIconOrder(const char* value);
const char* DAL_CML_getHomeScreenIconOrderDefault(void);
int32_t DAL_CML_deleteHomeScreenIconOrder(void);
int32_t DAL_CML_deleteAllHomeScreenIconOrder(void);
int32_t DAL_CML_isHomeScreenIconOrderPresent(void);

/* Whether a custom splash screen is shown. BOOL, default 1, profiled. */
int32_t DAL_CML_getShowCustomSplash(BOOL* value);
int32_t DAL_CML_setShowCustomSplash(BOOL value);
BOOL DAL_CML_getShowCustomSplashDefault(void);
int32_t DAL_CML_deleteShowCustomSplash(void);
int32_t DAL_CML_deleteAllShowCustomSplash(void);
int32_t DAL_CML_isShowCustomSplashPresent(void);

/* Character encoding of messages to the driver. String, default "UTF-8", profiled. */
int32_t DAL_CML_getDriverMessageTextEncoding(char* buffer, uint32_t* valueInfo, size_t size);
int32_t DAL_CML_getDriverMessageTextEncodingMalloc(char** value, uint32_t* valueInfo);
int32_t DAL_CML_setDriverMessageTextEncoding(const char* value);
const char* DAL_CML_getDriverMessageTextEncodingDefault(void);
int32_t DAL_CML_deleteDriverMessageTextEncoding(void);
int32_t DAL_CML_deleteAllDriverMessageTextEncoding(void);
int32_t DAL_CML_isDriverMessageTextEncodingPresent(void);

/* Number of icons in the bar of the home screen. Integer, default 4, profiled. */
int32_t DAL_CML_getHomeScreenIconBarQty(int32_t* value);
int32_t DAL_CML_setHomeScreenIconBarQty(int32_t value);
int32_t DAL_CML_getHomeScreenIconBarQtyDefault(void);
int32_t DAL_CML_deleteHomeScreenIconBarQty(void);
int32_t DAL_CML_deleteAllHomeScreenIconBarQty(void);
int32_t DAL_CML_isHomeScreenIconBarQtyPresent(void);

/* Whether a remote action wakes the display. BOOL, default 1, profiled. */
int32_t DAL_CML_getWakeOnRemoteAction(BOOL* value);
int32_t DAL_CML_setWakeOnRemoteAction(BOOL value);
BOOL DAL_CML_getWakeOnRemoteActionDefault(void);
int32_t DAL_CML_deleteWakeOnRemoteAction(void);
int32_t DAL_CML_deleteAllWakeOnRemoteAction(void);
int32_t DAL_CML_isWakeOnRemoteActionPresent(void);

/* Whether codes are entered on a keypad. BOOL, default 0, profiled. */
int32_t DAL_CML_getUseCodeEntryKeypad(BOOL* value);
int32_t DAL_CML_setUseCodeEntryKeypad(BOOL value);
BOOL DAL_CML_getUseCodeEntryKeypadDefault(void);
int32_t DAL_CML_deleteUseCodeEntryKeypad(void);
int32_t DAL_CML_deleteAllUseCodeEntryKeypad(void);
int32_t DAL_CML_isUseCodeEntryKeypadPresent(void);

/* Whether the icon that toggles the theme is shown. BOOL, default 0, profiled. */
int32_t DAL_CML_getShowToggleThemeIcon(BOOL* value);
int32_t DAL_CML_setShowToggleThemeIcon(BOOL value);
BOOL DAL_CML_getShowToggleThemeIconDefault(void);
int32_t DAL_CML_deleteShowToggleThemeIcon(void);
int32_t DAL_CML_deleteAllShowToggleThemeIcon(void);
int32_t DAL_CML_isShowToggleThemeIconPresent(void);

/* Whether the home screen has controls to browse codes. BOOL, default 1, profiled. */
int32_t DAL_CML_getUseHomeCodeBrowseControls(BOOL* value);
int32_t DAL_CML_setUseHomeCodeBrowseControls(BOOL value);
BOOL DAL_CML_getUseHomeCodeBrowseControlsDefault(void);
int32_t DAL_CML_deleteUseHomeCodeBrowseControls(void);
int32_t DAL_CML_deleteAllUseHomeCodeBrowseControls(void);
int32_t DAL_CML_isUseHomeCodeBrowseControlsPresent(void);

/* Whether a touch makes a click. BOOL, default 1, profiled. */
int32_t DAL_CML_getTouchScreenClick(BOOL* value);
int32_t DAL_CML_setTouchScreenClick(BOOL value);
BOOL DAL_CML_getTouchScreenClickDefault(void);
int32_t DAL_CML_deleteTouchScreenClick(void);
int32_t DAL_CML_deleteAllTouchScreenClick(void);
int32_t DAL_CML_isTouchScreenClickPresent(void);

/* Whether the list of profiles is shown at first. BOOL, default 0, profiled. */
int32_t DAL_CML_getShowProfilesListByDefault(BOOL* value);
int32_t DAL_CML_setShowProfilesListByDefault(BOOL value);
BOOL DAL_CML_getShowProfilesListByDefaultDefault(void);
int32_t DAL_CML_deleteShowProfilesListByDefault(void);
int32_t DAL_CML_deleteAllShowProfilesListByDefault(void);
int32_t DAL_CML_isShowProfilesListByDefaultPresent(void);

/* Whether an update from a USB stick beeps. BOOL, default 1, profiled. */
int32_t DAL_CML_getBeepsOnUsbUpdate(BOOL* value);
int32_t DAL_CML_setBeepsOnUsbUpdate(BOOL value);
BOOL DAL_CML_getBeepsOnUsbUpdateDefault(void);
int32_t DAL_CML_deleteBeepsOnUsbUpdate(void);
int32_t DAL_CML_deleteAllBeepsOnUsbUpdate(void);
int32_t DAL_CML_isBeepsOnUsbUpdatePresent(void);

/* Whether the passenger count is shown. BOOL, default 0, profiled. */
int32_t DAL_CML_getShowPassengerCountTile(BOOL* value);
int32_t DAL_CML_setShowPassengerCountTile(BOOL value);
BOOL DAL_CML_getShowPassengerCountTileDefault(void);
int32_t DAL_CML_deleteShowPassengerCountTile(void);
int32_t DAL_CML_deleteAllShowPassengerCountTile(void);
int32_t DAL_CML_isShowPassengerCountTilePresent(void);

/* Whether the home screen shows date and time. BOOL, default 1, profiled. */
int32_t DAL_CML_getShowHomeScreenDateTime(BOOL* value);
int32_t DAL_CML_setShowHomeScreenDateTime(BOOL value);
BOOL DAL_CML_getShowHomeScreenDateTimeDefault(void);
int32_t DAL_CML_deleteShowHomeScreenDateTime(void);
int32_t DAL_CML_deleteAllShowHomeScreenDateTime(void);
int32_t DAL_CML_isShowHomeScreenDateTimePresent(void);

/*
 * ---- Settings of one word ----
 *
 * The database holds a word, the functions speak of its number. A getter gives the default number
 * for a stored text that is none of the words, compared as a whole and with regard to case. A set
 * with any other number stores the empty text, which reads as the default and counts as present.
 */

/* What the driver may do about the destination. */
enum CML_DestinationClearControl {
    CML_DESTINATION_CLEAR_CONTROL_DISABLE = 0, /* never clear it */
    CML_DESTINATION_CLEAR_CONTROL_ENABLE = 1,  /* clear it */
    CML_DESTINATION_CLEAR_CONTROL_PROMPT = 2   /* clear it after a question */
};

/*
 * Whether the driver may clear the destination. 0 "DISABLE", 1 "ENABLE", 2 "PROMPT". Default 1,
 * profiled.
 */
int32_t DAL_CML_getDestinationClearControl(int32_t* value);
int32_t DAL_CML_setDestinationClearControl(int32_t value);
int32_t DAL_CML_getDestinationClearControlDefault(void);
int32_t DAL_CML_deleteDestinationClearControl(void);
int32_t DAL_CML_deleteAllDestinationClearControl(void);
int32_t DAL_CML_isDestinationClearControlPresent(void);

/* The forms of a date. */
enum CML_DateFormat {
    CML_DATE_FORMAT_DDMMYY = 0,   /* day, month, two digits of the year */
    CML_DATE_FORMAT_DDMMYYYY = 1, /* day, month, year */
    CML_DATE_FORMAT_MMDDYYYY = 2, /* month, day, year */
    CML_DATE_FORMAT_YYYYMMDD = 3  /* year, month, day */
};

/*
 * Form in which dates are shown. 0 "DDMMYY", 1 "DDMMYYYY", 2 "MMDDYYYY", 3 "YYYYMMDD". Default 1,
 * unprofiled.
 */
int32_t DAL_CML_getDateFormat(int32_t* value);
int32_t DAL_CML_setDateFormat(int32_t value);
int32_t DAL_CML_getDateFormatDefault(void);
int32_t DAL_CML_deleteDateFormat(void);
int32_t DAL_CML_deleteAllDateFormat(void);
int32_t DAL_CML_isDateFormatPresent(void);

/* The ways to pick a destination. */
enum CML_DriverDestinationSelectionMode {
    CML_DRIVER_DESTINATION_SELECTION_MODE_ENTER_BY_NUMBER = 0, /* its number is entered */
    CML_DRIVER_DESTINATION_SELECTION_MODE_BROWSE_FROM_LIST = 1 /* it is picked from a list */
};

/*
 * How the driver picks a destination. 0 "ENTER_BY_NUMBER", 1 "BROWSE_FROM_LIST". Default 0,
 * unprofiled.
 */
int32_t DAL_CML_getDriverDestinationSelectionMode(int32_t* value);
int32_t DAL_CML_setDriverDestinationSelectionMode(int32_t value);
int32_t DAL_CML_getDriverDestinationSelectionModeDefault(void);
int32_t DAL_CML_deleteDriverDestinationSelectionMode(void);
int32_t DAL_CML_deleteAllDriverDestinationSelectionMode(void);
int32_t DAL_CML_isDriverDestinationSelectionModePresent(void);

/* The ways to pick information. */
enum CML_DriverInformationSelectionMode {
    CML_DRIVER_INFORMATION_SELECTION_MODE_ENTER_BY_NUMBER = 0, /* its number is entered */
    CML_DRIVER_INFORMATION_SELECTION_MODE_BROWSE_FROM_LIST = 1 /* it is picked from a list */
};

/*
 * How the driver picks information. 0 "ENTER_BY_NUMBER", 1 "BROWSE_FROM_LIST". Default 0,
 * unprofiled.
 */
int32_t DAL_CML_getDriverInformationSelectionMode(int32_t* value);
int32_t DAL_CML_setDriverInformationSelectionMode(int32_t value);
int32_t DAL_CML_getDriverInformationSelectionModeDefault(void);
int32_t DAL_CML_deleteDriverInformationSelectionMode(void);
int32_t DAL_CML_deleteAllDriverInformationSelectionMode(void);
int32_t DAL_CML_isDriverInformationSelectionModePresent(void);

/* The themes of the user interface. */
enum CML_Theme {
    CML_THEME_LIGHT = 0, /* dark on light */
    CML_THEME_DARK = 1,  /* light on dark */
    CML_THEME_AUTO = 2   /* light or dark, as the application chooses */
};

/* Theme of the user interface. 0 "LIGHT", 1 "DARK", 2 "AUTO". Default 0, profiled. */
int32_t DAL_CML_getTheme(int32_t* value);
int32_t DAL_CML_setTheme(int32_t value);
int32_t DAL_CML_getThemeDefault(void);
int32_t DAL_CML_deleteTheme(void);
int32_t DAL_CML_deleteAllTheme(void);
int32_t DAL_CML_isThemePresent(void);

/* The themes for the time being. */
enum CML_AutoTheme {
    CML_AUTO_THEME_LIGHT = 0, /* dark on light */
    CML_AUTO_THEME_DARK = 1,  /* light on dark */
    CML_AUTO_THEME_AUTO = 2   /* light or dark, as the application chooses */
};

/*
 * Theme for the time being: the only setting in the volatile database, gone with the next start.
 * 0 "LIGHT", 1 "DARK", 2 "AUTO". Default 0, profiled.
 */
int32_t DAL_CML_getAutoTheme(int32_t* value);
int32_t DAL_CML_setAutoTheme(int32_t value);
int32_t DAL_CML_getAutoThemeDefault(void);
int32_t DAL_CML_deleteAutoTheme(void);
int32_t DAL_CML_deleteAllAutoTheme(void);
int32_t DAL_CML_isAutoThemePresent(void);

/* The icons of the hot key. */
enum CML_QorHotKeyIcon {
    CML_QOR_HOT_KEY_ICON_DEFAULT = 0,           /* the usual one */
    CML_QOR_HOT_KEY_ICON_AUDIO_ANNOUNCEMENT = 1 /* that of an audio announcement */
};

/* Icon of the hot key. 0 "DEFAULT", 1 "AUDIO_ANNOUNCEMENT". Default 0, profiled. */
int32_t DAL_CML_getQorHotKeyIcon(int32_t* value);
int32_t DAL_CML_setQorHotKeyIcon(int32_t value);
int32_t DAL_CML_getQorHotKeyIconDefault(void);
int32_t DAL_CML_deleteQorHotKeyIcon(void);
int32_t DAL_CML_deleteAllQorHotKeyIcon(void);
int32_t DAL_CML_isQorHotKeyIconPresent(void);

/*
 * ---- Lists ----
 *
 * A list is a map from node ids to one value each. A node id is a text of the caller's choice,
 * never null. For a list's item setting S the family is that of above with the node id in front
 * (but for getSDefault, since all nodes have one default); deleteAllS removes the item of that one
 * node under all profile numbers. A node comes into being with the first set of its item and stays
 * when the item alone is deleted. All lists are profiled.
 *
 * For the nodes N of a list:
 *
 *     DAL_CML_deleteN       removes one node with its item
 *     DAL_CML_deleteAllNs   removes all nodes, under all profile numbers
 *     DAL_CML_isNPresent    1 if there is such a node, 0 if not
 *     DAL_CML_listNs        the node ids in ascending strcmp order: an array that a null pointer
 *                           ends, for an empty list nothing but that. Array and ids are blocks from
 *                           malloc; the caller frees each id and then the array. Null on a failure.
 */

/*
 * Destinations hidden in the browser. Integer for each node, default 1; list
 * "browser_destination_hide_list".
 */
int32_t DAL_CML_getBrowserDestinationHideItem(const char* nodeId, int32_t* value);
int32_t DAL_CML_setBrowserDestinationHideItem(const char* nodeId, int32_t value);
int32_t DAL_CML_getBrowserDestinationHideItemDefault(void);
int32_t DAL_CML_deleteBrowserDestinationHideItem(const char* nodeId);
int32_t DAL_CML_deleteAllBrowserDestinationHideItem(const char* nodeId);
int32_t DAL_CML_isBrowserDestinationHideItemPresent(const char* nodeId);
int32_t DAL_CML_deleteBrowserDestinationHideListNode(const char* nodeId);
int32_t DAL_CML_deleteAllBrowserDestinationHideListNodes(void);
int32_t DAL_CML_isBrowserDestinationHideListNodePresent(const char* nodeId);
char** DAL_CML_listBrowserDestinationHideListNodes(void);

/*
 * Information hidden in the browser. Integer for each node, default 1; list
 * "browser_information_hide_list".
 */
int32_t DAL_CML_getBrowserInformationHideItem(const char* nodeId, int32_t* value);
int32_t DAL_CML_setBrowserInformationHideItem(const char* nodeId, int32_t value);
int32_t DAL_CML_getBrowserInformationHideItemDefault(void);
int32_t DAL_CML_deleteBrowserInformationHideItem(const char* nodeId);
int32_t DAL_CML_deleteAllBrowserInformationHideItem(const char* nodeId);
int32_t DAL_CML_isBrowserInformationHideItemPresent(const char* nodeId);
int32_t DAL_CML_deleteBrowserInformationHideListNode(const char* nodeId);
int32_t DAL_CML_deleteAllBrowserInformationHideListNodes(void);
int32_t DAL_CML_isBrowserInformationHideListNodePresent(const char* nodeId);
char** DAL_CML_listBrowserInformationHideListNodes(void);

/*
 * Icons of the home screen. String for each node, default the empty string; list
 * "home_screen_icons".
 */
int32_t DAL_CML_getHomeScreenIcon(const char* nodeId, char* buffer, uint32_t* valueInfo,
                                  size_t size);
int32_t DAL_CML_getHomeScreenIconMalloc(const char* nodeId, char** value, uint32_t* valueInfo);
int32_t DAL_CML_setHomeScreenIcon(const char* nodeId, const char* value);
const char* DAL_CML_getHomeScreenIconDefault(void);
int32_t DAL_CML_deleteHomeScreenIcon(const char* nodeId);
int32_t DAL_CML_deleteAllHomeScreenIcon(const char* nodeId);
int32_t DAL_CML_isHomeScreenIconPresent(const char* nodeId);
int32_t DAL_CML_deleteHomeScreenIconsNode(const char* nodeId);
int32_t DAL_CML_deleteAllHomeScreenIconsNodes(void);
int32_t DAL_CML_isHomeScreenIconsNodePresent(const char* nodeId);
char** DAL_CML_listHomeScreenIconsNodes(void);

/*
 * Hot keys to select from. String for each node, default the empty string; list
 * "qor_hot_key_select_list".
 */
int32_t DAL_CML_getQorHotKeySelectListItem(const char* nodeId, char* buffer, uint32_t* valueInfo,
                                           size_t size);
int32_t DAL_CML_getQorHotKeySelectListItemMalloc(const char* nodeId, char** value,
                                                 uint32_t* valueInfo);
int32_t DAL_CML_setQorHotKeySelectListItem(const char* nodeId, const char* value);
const char* DAL_CML_getQorHotKeySelectListItemDefault(void);
int32_t DAL_CML_deleteQorHotKeySelectListItem(const char* nodeId);
int32_t DAL_CML_deleteAllQorHotKeySelectListItem(const char* nodeId);
int32_t DAL_CML_isQorHotKeySelectListItemPresent(const char* nodeId);
int32_t DAL_CML_deleteQorHotKeySelectListNode(const char* nodeId);
int32_t DAL_CML_deleteAllQorHotKeySelectListNodes(void);
int32_t DAL_CML_isQorHotKeySelectListNodePresent(const char* nodeId);
char** DAL_CML_listQorHotKeySelectListNodes(void);

/*
 * Favourites of the icons menu. String for each node, default the empty string; list
 * "icons_menu_favourites".
 */
int32_t DAL_CML_getIconsMenuFavourite(const char* nodeId, char* buffer, uint32_t* valueInfo,
                                      size_t size);
int32_t DAL_CML_getIconsMenuFavouriteMalloc(const char* nodeId, char** value, uint32_t* valueInfo);
int32_t DAL_CML_setIconsMenuFavourite(const char* nodeId, const char* value);
const char* DAL_CML_getIconsMenuFavouriteDefault(void);
int32_t DAL_CML_deleteIconsMenuFavourite(const char* nodeId);
int32_t DAL_CML_deleteAllIconsMenuFavourite(const char* nodeId);
int32_t DAL_CML_isIconsMenuFavouritePresent(const char* nodeId);
int32_t DAL_CML_deleteIconsMenuFavouritesNode(const char* nodeId);
int32_t DAL_CML_deleteAllIconsMenuFavouritesNodes(void);
int32_t DAL_CML_isIconsMenuFavouritesNodePresent(const char* nodeId);
char** DAL_CML_listIconsMenuFavouritesNodes(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
