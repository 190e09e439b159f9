/** @file
 * The console's settings: reads, stores, removes and tests for each of them.
 *
 * Databases. All settings but one are rows of "/mnt/vex-data/m7/console-manager.db", on the data
 * mount; AutoTheme is in "/tmp/m7/console-manager.db" and lasts as long as that file. The first
 * call that needs a database makes its folder, opens it and creates what is missing in it. It stays
 * open until the process ends, also after dlclose(). Nothing is cached: a change made by another
 * process is seen at once.
 *
 * Mount the data volume before the first call of a process. If it is missing and its folder can be
 * made, that call makes a database beneath the mount point. The process keeps using that one, even
 * when the volume is mounted later and hides it.
 *
 * If a database can't be opened, the call fails, a getter delivers the default, a message goes to
 * the trace library (and mkdir's own to stderr), and the next call tries again. A read-only file or
 * mount can be read at best; a set fails.
 *
 * Each set and each delete is a change of its own, which usually waits for the disk: 100 items of a
 * list are 100 such waits. A file doesn't shrink: the room of removed values is used for later
 * ones.
 *
 * The family of a setting S:
 *
 *     DAL_CML_getS          delivers the stored value, or the default where none is stored
 *     DAL_CML_getSMalloc    strings only: allocates the stored value; no default
 *     DAL_CML_setS          stores a value, in place of an earlier one
 *     DAL_CML_getSDefault   returns the default; touches no database and can't fail
 *     DAL_CML_deleteS       removes the stored value, so that the default holds again
 *     DAL_CML_deleteAllS    removes the stored values under all profile numbers
 *     DAL_CML_isSPresent    returns 0 if no value is stored, else another number
 *
 * A profiled setting can have a value for each profile number. All these functions address number
 * 0, except the deleteAll forms, which address all. An unprofiled setting has one value.
 *
 * Results. 0 is success, anything else a failure, as the data access library returned it. That
 * library decides what its numbers mean, when a change is safe on the disk, and how long a call
 * waits for another process that is writing. For the one that is used on other machines than the
 * console, see the README of the stand-ins. With it, the presence functions return 0 also if the
 * database can't be read: a getter's result shows whether it can.
 *
 * Getters deliver on every path. Even if the database can't be opened, `*value` or buffer holds the
 * default afterwards; only the result shows the failure. No value is checked for meaning: an
 * integer is stored as it is, and so is a BOOL other than 0 and 1.
 *
 * Strings. buffer has room for size bytes, the terminator included. At most size bytes are written,
 * and the text is always terminated; with a size of 0 nothing is written. valueInfo points to a
 * word of the caller's, which the data access library uses in its own way. The allocating getter
 * stores a block from malloc in `*value`, which the caller frees. Preset `*value` to null: for an
 * absent setting and on failure it is up to the data access library. With the stand-in value,
 * buffer and valueInfo may be null. A set copies its value. The default of a string is a constant
 * text, never null.
 *
 * Threads. Any function may be called from any thread at any time. All threads of a process share
 * one connection to each file. A thread may be cancelled while the first call opens a database; in
 * other calls that is up to the data access library (with the stand-in the cancellation takes
 * effect after the call). Asynchronous cancellation isn't supported. A child made by fork must not
 * use settings if its parent has, unless it calls exec first.
 *
 * Files. A database is more than one file: SQLite keeps a part of it in "console-manager.db-wal" or
 * "console-manager.db-journal". "-shm" is the index of the first, and "-turn" of the stand-in is
 * empty. Never remove, replace or overwrite these files while an application uses them: its sets
 * are lost or fail, and the database may be damaged, until the application is started again.
 *
 * Backup. Copy "console-manager.db" with "-wal", or with "-journal", at a moment when nobody sets
 * anything; or let SQLite make the copy ("VACUUM INTO", or `.backup` of the program sqlite3).
 *
 * Restore. Stop all applications that use settings. Remove "console-manager.db-wal", "-shm" and
 * "-journal". Copy the backup to "console-manager.db" (with its own "-wal" or "-journal", if it has
 * one). Start the applications.
 *
 * Damage. If a file is damaged, calls fail and getters deliver defaults. Restore a backup; without
 * one, stop all applications and remove the file with its "-wal", "-shm" and "-journal". The next
 * call makes an empty database.
 *
 * Rights. Whoever may write to a database's folder decides which files its users open there, for
 * instance by links. In "/tmp/m7" that can be anybody who makes the folder first: where users of
 * different rights share a machine, let the most privileged make it when the system starts.
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

/**
 * Removes all values of all settings and lists, in both databases.
 *
 * @return 0 if both databases could be opened, otherwise 1; the one that could be opened is cleared
 *         in either case. A failure of the removal itself isn't reported: on a read-only file
 *         nothing is removed, and the result is 0.
 */
int32_t DAL_CML_deleteAll(void);

/** @file
 * @par Settings of one value
 * A number, a truth value or a text, stored and delivered as it is.
 */

/** @{ @name UserInterfaceRevision */
/**
 * Delivers the revision of the user interface that the console shows. Integer, default 1, profiled.
 */
int32_t DAL_CML_getUserInterfaceRevision(int32_t* value);
/** Stores the revision of the user interface that the console shows. */
int32_t DAL_CML_setUserInterfaceRevision(int32_t value);
/** Returns the default of UserInterfaceRevision, 1. */
int32_t DAL_CML_getUserInterfaceRevisionDefault(void);
/** Removes the stored UserInterfaceRevision: 1 holds again. */
int32_t DAL_CML_deleteUserInterfaceRevision(void);
/** Removes the stored UserInterfaceRevision of all profile numbers. */
int32_t DAL_CML_deleteAllUserInterfaceRevision(void);
/** Returns 0 if no UserInterfaceRevision is stored, else another number. */
int32_t DAL_CML_isUserInterfaceRevisionPresent(void);
/** @} */

/** @{ @name Language */
/** Delivers the language of the user interface, a short code. String, default "EN", unprofiled. */
int32_t DAL_CML_getLanguage(char* buffer, uint32_t* valueInfo, size_t size);
/** Delivers the stored Language in a block from malloc; there is no default. */
int32_t DAL_CML_getLanguageMalloc(char** value, uint32_t* valueInfo);
/** Stores the language of the user interface, a short code. */
int32_t DAL_CML_setLanguage(const char* value);
/** Returns the default of Language, "EN". */
const char* DAL_CML_getLanguageDefault(void);
/** Removes the stored Language: "EN" holds again. */
int32_t DAL_CML_deleteLanguage(void);
/** Removes the stored Language of all profile numbers. */
int32_t DAL_CML_deleteAllLanguage(void);
/** Returns 0 if no Language is stored, else another number. */
int32_t DAL_CML_isLanguagePresent(void);
/** @} */

/** @{ @name EnableDriverPasswordLogin */
/** Delivers whether a driver logs in with a password. BOOL, default 0, profiled. */
int32_t DAL_CML_getEnableDriverPasswordLogin(BOOL* value);
/** Stores whether a driver logs in with a password. */
int32_t DAL_CML_setEnableDriverPasswordLogin(BOOL value);
/** Returns the default of EnableDriverPasswordLogin, 0. */
BOOL DAL_CML_getEnableDriverPasswordLoginDefault(void);
/** Removes the stored EnableDriverPasswordLogin: 0 holds again. */
int32_t DAL_CML_deleteEnableDriverPasswordLogin(void);
/** Removes the stored EnableDriverPasswordLogin of all profile numbers. */
int32_t DAL_CML_deleteAllEnableDriverPasswordLogin(void);
/** Returns 0 if no EnableDriverPasswordLogin is stored, else another number. */
int32_t DAL_CML_isEnableDriverPasswordLoginPresent(void);
/** @} */

/** @{ @name EnableDriverIdEntry */
/** Delivers whether a driver enters a driver id. BOOL, default 0, profiled. */
int32_t DAL_CML_getEnableDriverIdEntry(BOOL* value);
/** Stores whether a driver enters a driver id. */
int32_t DAL_CML_setEnableDriverIdEntry(BOOL value);
/** Returns the default of EnableDriverIdEntry, 0. */
BOOL DAL_CML_getEnableDriverIdEntryDefault(void);
/** Removes the stored EnableDriverIdEntry: 0 holds again. */
int32_t DAL_CML_deleteEnableDriverIdEntry(void);
/** Removes the stored EnableDriverIdEntry of all profile numbers. */
int32_t DAL_CML_deleteAllEnableDriverIdEntry(void);
/** Returns 0 if no EnableDriverIdEntry is stored, else another number. */
int32_t DAL_CML_isEnableDriverIdEntryPresent(void);
/** @} */

/** @{ @name EnableServiceIdEntry */
/** Delivers whether a service id is entered. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getEnableServiceIdEntry(BOOL* value);
/** Stores whether a service id is entered. */
int32_t DAL_CML_setEnableServiceIdEntry(BOOL value);
/** Returns the default of EnableServiceIdEntry, 0. */
BOOL DAL_CML_getEnableServiceIdEntryDefault(void);
/** Removes the stored EnableServiceIdEntry: 0 holds again. */
int32_t DAL_CML_deleteEnableServiceIdEntry(void);
/** Removes the stored EnableServiceIdEntry of all profile numbers. */
int32_t DAL_CML_deleteAllEnableServiceIdEntry(void);
/** Returns 0 if no EnableServiceIdEntry is stored, else another number. */
int32_t DAL_CML_isEnableServiceIdEntryPresent(void);
/** @} */

/** @{ @name AllowMultipleMessages */
/** Delivers whether several messages may be chosen at once. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getAllowMultipleMessages(BOOL* value);
/** Stores whether several messages may be chosen at once. */
int32_t DAL_CML_setAllowMultipleMessages(BOOL value);
/** Returns the default of AllowMultipleMessages, 0. */
BOOL DAL_CML_getAllowMultipleMessagesDefault(void);
/** Removes the stored AllowMultipleMessages: 0 holds again. */
int32_t DAL_CML_deleteAllowMultipleMessages(void);
/** Removes the stored AllowMultipleMessages of all profile numbers. */
int32_t DAL_CML_deleteAllAllowMultipleMessages(void);
/** Returns 0 if no AllowMultipleMessages is stored, else another number. */
int32_t DAL_CML_isAllowMultipleMessagesPresent(void);
/** @} */

/** @{ @name UsbUpdateRequiresPassword */
/** Delivers whether an update from a USB stick asks for a password. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getUsbUpdateRequiresPassword(BOOL* value);
/** Stores whether an update from a USB stick asks for a password. */
int32_t DAL_CML_setUsbUpdateRequiresPassword(BOOL value);
/** Returns the default of UsbUpdateRequiresPassword, 0. */
BOOL DAL_CML_getUsbUpdateRequiresPasswordDefault(void);
/** Removes the stored UsbUpdateRequiresPassword: 0 holds again. */
int32_t DAL_CML_deleteUsbUpdateRequiresPassword(void);
/** Removes the stored UsbUpdateRequiresPassword of all profile numbers. */
int32_t DAL_CML_deleteAllUsbUpdateRequiresPassword(void);
/** Returns 0 if no UsbUpdateRequiresPassword is stored, else another number. */
int32_t DAL_CML_isUsbUpdateRequiresPasswordPresent(void);
/** @} */

/** @{ @name AllowDriverToAdjustBrightness */
/**
 * Delivers whether the driver may change the brightness of the display. BOOL, default 0, profiled.
 */
int32_t DAL_CML_getAllowDriverToAdjustBrightness(BOOL* value);
/** Stores whether the driver may change the brightness of the display. */
int32_t DAL_CML_setAllowDriverToAdjustBrightness(BOOL value);
/** Returns the default of AllowDriverToAdjustBrightness, 0. */
BOOL DAL_CML_getAllowDriverToAdjustBrightnessDefault(void);
/** Removes the stored AllowDriverToAdjustBrightness: 0 holds again. */
int32_t DAL_CML_deleteAllowDriverToAdjustBrightness(void);
/** Removes the stored AllowDriverToAdjustBrightness of all profile numbers. */
int32_t DAL_CML_deleteAllAllowDriverToAdjustBrightness(void);
/** Returns 0 if no AllowDriverToAdjustBrightness is stored, else another number. */
int32_t DAL_CML_isAllowDriverToAdjustBrightnessPresent(void);
/** @} */

/** @{ @name DestinationChangeRequiresPassword */
/** Delivers whether a change of destination asks for a password. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getDestinationChangeRequiresPassword(BOOL* value);
/** Stores whether a change of destination asks for a password. */
int32_t DAL_CML_setDestinationChangeRequiresPassword(BOOL value);
/** Returns the default of DestinationChangeRequiresPassword, 0. */
BOOL DAL_CML_getDestinationChangeRequiresPasswordDefault(void);
/** Removes the stored DestinationChangeRequiresPassword: 0 holds again. */
int32_t DAL_CML_deleteDestinationChangeRequiresPassword(void);
/** Removes the stored DestinationChangeRequiresPassword of all profile numbers. */
int32_t DAL_CML_deleteAllDestinationChangeRequiresPassword(void);
/** Returns 0 if no DestinationChangeRequiresPassword is stored, else another number. */
int32_t DAL_CML_isDestinationChangeRequiresPasswordPresent(void);
/** @} */

/** @{ @name InformationChangeRequiresPassword */
/** Delivers whether a change of information asks for a password. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getInformationChangeRequiresPassword(BOOL* value);
/** Stores whether a change of information asks for a password. */
int32_t DAL_CML_setInformationChangeRequiresPassword(BOOL value);
/** Returns the default of InformationChangeRequiresPassword, 0. */
BOOL DAL_CML_getInformationChangeRequiresPasswordDefault(void);
/** Removes the stored InformationChangeRequiresPassword: 0 holds again. */
int32_t DAL_CML_deleteInformationChangeRequiresPassword(void);
/** Removes the stored InformationChangeRequiresPassword of all profile numbers. */
int32_t DAL_CML_deleteAllInformationChangeRequiresPassword(void);
/** Returns 0 if no InformationChangeRequiresPassword is stored, else another number. */
int32_t DAL_CML_isInformationChangeRequiresPasswordPresent(void);
/** @} */

/** @{ @name RoundTripEnable */
/** Delivers whether round trips are in use. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getRoundTripEnable(BOOL* value);
/** Stores whether round trips are in use. */
int32_t DAL_CML_setRoundTripEnable(BOOL value);
/** Returns the default of RoundTripEnable, 0. */
BOOL DAL_CML_getRoundTripEnableDefault(void);
/** Removes the stored RoundTripEnable: 0 holds again. */
int32_t DAL_CML_deleteRoundTripEnable(void);
/** Removes the stored RoundTripEnable of all profile numbers. */
int32_t DAL_CML_deleteAllRoundTripEnable(void);
/** Returns 0 if no RoundTripEnable is stored, else another number. */
int32_t DAL_CML_isRoundTripEnablePresent(void);
/** @} */

/** @{ @name RoundTripOrientation */
/**
 * Delivers the orientation of the round trip. The library gives neither value a meaning. BOOL,
 * default 0, unprofiled.
 */
int32_t DAL_CML_getRoundTripOrientation(BOOL* value);
/** Stores the orientation of the round trip. */
int32_t DAL_CML_setRoundTripOrientation(BOOL value);
/** Returns the default of RoundTripOrientation, 0. */
BOOL DAL_CML_getRoundTripOrientationDefault(void);
/** Removes the stored RoundTripOrientation: 0 holds again. */
int32_t DAL_CML_deleteRoundTripOrientation(void);
/** Removes the stored RoundTripOrientation of all profile numbers. */
int32_t DAL_CML_deleteAllRoundTripOrientation(void);
/** Returns 0 if no RoundTripOrientation is stored, else another number. */
int32_t DAL_CML_isRoundTripOrientationPresent(void);
/** @} */

/** @{ @name AllowControlOfDestinations */
/**
 * Delivers whether destinations may be controlled from the console. BOOL, default 1, unprofiled.
 */
int32_t DAL_CML_getAllowControlOfDestinations(BOOL* value);
/** Stores whether destinations may be controlled from the console. */
int32_t DAL_CML_setAllowControlOfDestinations(BOOL value);
/** Returns the default of AllowControlOfDestinations, 1. */
BOOL DAL_CML_getAllowControlOfDestinationsDefault(void);
/** Removes the stored AllowControlOfDestinations: 1 holds again. */
int32_t DAL_CML_deleteAllowControlOfDestinations(void);
/** Removes the stored AllowControlOfDestinations of all profile numbers. */
int32_t DAL_CML_deleteAllAllowControlOfDestinations(void);
/** Returns 0 if no AllowControlOfDestinations is stored, else another number. */
int32_t DAL_CML_isAllowControlOfDestinationsPresent(void);
/** @} */

/** @{ @name DisplayInactivityTimeout */
/**
 * Delivers the time without input until the display counts as inactive. No unit is fixed. Integer,
 * default 15, profiled.
 */
int32_t DAL_CML_getDisplayInactivityTimeout(int32_t* value);
/** Stores the time without input until the display counts as inactive. */
int32_t DAL_CML_setDisplayInactivityTimeout(int32_t value);
/** Returns the default of DisplayInactivityTimeout, 15. */
int32_t DAL_CML_getDisplayInactivityTimeoutDefault(void);
/** Removes the stored DisplayInactivityTimeout: 15 holds again. */
int32_t DAL_CML_deleteDisplayInactivityTimeout(void);
/** Removes the stored DisplayInactivityTimeout of all profile numbers. */
int32_t DAL_CML_deleteAllDisplayInactivityTimeout(void);
/** Returns 0 if no DisplayInactivityTimeout is stored, else another number. */
int32_t DAL_CML_isDisplayInactivityTimeoutPresent(void);
/** @} */

/** @{ @name DisplayOffTimeout */
/**
 * Delivers the time until the display goes off. No unit is fixed. Integer, default 30, profiled.
 */
int32_t DAL_CML_getDisplayOffTimeout(int32_t* value);
/** Stores the time until the display goes off. */
int32_t DAL_CML_setDisplayOffTimeout(int32_t value);
/** Returns the default of DisplayOffTimeout, 30. */
int32_t DAL_CML_getDisplayOffTimeoutDefault(void);
/** Removes the stored DisplayOffTimeout: 30 holds again. */
int32_t DAL_CML_deleteDisplayOffTimeout(void);
/** Removes the stored DisplayOffTimeout of all profile numbers. */
int32_t DAL_CML_deleteAllDisplayOffTimeout(void);
/** Returns 0 if no DisplayOffTimeout is stored, else another number. */
int32_t DAL_CML_isDisplayOffTimeoutPresent(void);
/** @} */

/** @{ @name MaintenanceTimeout */
/**
 * Delivers the time until maintenance mode ends. No unit is fixed. Integer, default 0, profiled.
 */
int32_t DAL_CML_getMaintenanceTimeout(int32_t* value);
/** Stores the time until maintenance mode ends. */
int32_t DAL_CML_setMaintenanceTimeout(int32_t value);
/** Returns the default of MaintenanceTimeout, 0. */
int32_t DAL_CML_getMaintenanceTimeoutDefault(void);
/** Removes the stored MaintenanceTimeout: 0 holds again. */
int32_t DAL_CML_deleteMaintenanceTimeout(void);
/** Removes the stored MaintenanceTimeout of all profile numbers. */
int32_t DAL_CML_deleteAllMaintenanceTimeout(void);
/** Returns 0 if no MaintenanceTimeout is stored, else another number. */
int32_t DAL_CML_isMaintenanceTimeoutPresent(void);
/** @} */

/** @{ @name DriverQorTerminalPermission */
/** Delivers whether the driver may use the Qor terminal. BOOL, default 1, profiled. */
int32_t DAL_CML_getDriverQorTerminalPermission(BOOL* value);
/** Stores whether the driver may use the Qor terminal. */
int32_t DAL_CML_setDriverQorTerminalPermission(BOOL value);
/** Returns the default of DriverQorTerminalPermission, 1. */
BOOL DAL_CML_getDriverQorTerminalPermissionDefault(void);
/** Removes the stored DriverQorTerminalPermission: 1 holds again. */
int32_t DAL_CML_deleteDriverQorTerminalPermission(void);
/** Removes the stored DriverQorTerminalPermission of all profile numbers. */
int32_t DAL_CML_deleteAllDriverQorTerminalPermission(void);
/** Returns 0 if no DriverQorTerminalPermission is stored, else another number. */
int32_t DAL_CML_isDriverQorTerminalPermissionPresent(void);
/** @} */

/** @{ @name DriverDisplaySource */
/**
 * Delivers the source of the driver's display. The library gives the numbers no meaning. Integer,
 * default -1, unprofiled.
 */
int32_t DAL_CML_getDriverDisplaySource(int32_t* value);
/** Stores the source of the driver's display. */
int32_t DAL_CML_setDriverDisplaySource(int32_t value);
/** Returns the default of DriverDisplaySource, -1. */
int32_t DAL_CML_getDriverDisplaySourceDefault(void);
/** Removes the stored DriverDisplaySource: -1 holds again. */
int32_t DAL_CML_deleteDriverDisplaySource(void);
/** Removes the stored DriverDisplaySource of all profile numbers. */
int32_t DAL_CML_deleteAllDriverDisplaySource(void);
/** Returns 0 if no DriverDisplaySource is stored, else another number. */
int32_t DAL_CML_isDriverDisplaySourcePresent(void);
/** @} */

/** @{ @name DriverDisplayRenderMode */
/**
 * Delivers how the driver's display is rendered. The library gives the numbers no meaning. Integer,
 * default 0, unprofiled.
 */
int32_t DAL_CML_getDriverDisplayRenderMode(int32_t* value);
/** Stores how the driver's display is rendered. */
int32_t DAL_CML_setDriverDisplayRenderMode(int32_t value);
/** Returns the default of DriverDisplayRenderMode, 0. */
int32_t DAL_CML_getDriverDisplayRenderModeDefault(void);
/** Removes the stored DriverDisplayRenderMode: 0 holds again. */
int32_t DAL_CML_deleteDriverDisplayRenderMode(void);
/** Removes the stored DriverDisplayRenderMode of all profile numbers. */
int32_t DAL_CML_deleteAllDriverDisplayRenderMode(void);
/** Returns 0 if no DriverDisplayRenderMode is stored, else another number. */
int32_t DAL_CML_isDriverDisplayRenderModePresent(void);
/** @} */

/** @{ @name QorHotKeySelectEnabled */
/** Delivers whether hot keys may be selected. BOOL, default 0, profiled. */
int32_t DAL_CML_getQorHotKeySelectEnabled(BOOL* value);
/** Stores whether hot keys may be selected. */
int32_t DAL_CML_setQorHotKeySelectEnabled(BOOL value);
/** Returns the default of QorHotKeySelectEnabled, 0. */
BOOL DAL_CML_getQorHotKeySelectEnabledDefault(void);
/** Removes the stored QorHotKeySelectEnabled: 0 holds again. */
int32_t DAL_CML_deleteQorHotKeySelectEnabled(void);
/** Removes the stored QorHotKeySelectEnabled of all profile numbers. */
int32_t DAL_CML_deleteAllQorHotKeySelectEnabled(void);
/** Returns 0 if no QorHotKeySelectEnabled is stored, else another number. */
int32_t DAL_CML_isQorHotKeySelectEnabledPresent(void);
/** @} */

/** @{ @name TimeFormat */
/**
 * Delivers which of the two time formats is shown. The library gives neither value a meaning. BOOL,
 * default 1, unprofiled.
 */
int32_t DAL_CML_getTimeFormat(BOOL* value);
/** Stores which of the two time formats is shown. */
int32_t DAL_CML_setTimeFormat(BOOL value);
/** Returns the default of TimeFormat, 1. */
BOOL DAL_CML_getTimeFormatDefault(void);
/** Removes the stored TimeFormat: 1 holds again. */
int32_t DAL_CML_deleteTimeFormat(void);
/** Removes the stored TimeFormat of all profile numbers. */
int32_t DAL_CML_deleteAllTimeFormat(void);
/** Returns 0 if no TimeFormat is stored, else another number. */
int32_t DAL_CML_isTimeFormatPresent(void);
/** @} */

/** @{ @name EnableVirtualQorTerminal */
/** Delivers whether the virtual Qor terminal is offered. BOOL, default 0, profiled. */
int32_t DAL_CML_getEnableVirtualQorTerminal(BOOL* value);
/** Stores whether the virtual Qor terminal is offered. */
int32_t DAL_CML_setEnableVirtualQorTerminal(BOOL value);
/** Returns the default of EnableVirtualQorTerminal, 0. */
BOOL DAL_CML_getEnableVirtualQorTerminalDefault(void);
/** Removes the stored EnableVirtualQorTerminal: 0 holds again. */
int32_t DAL_CML_deleteEnableVirtualQorTerminal(void);
/** Removes the stored EnableVirtualQorTerminal of all profile numbers. */
int32_t DAL_CML_deleteAllEnableVirtualQorTerminal(void);
/** Returns 0 if no EnableVirtualQorTerminal is stored, else another number. */
int32_t DAL_CML_isEnableVirtualQorTerminalPresent(void);
/** @} */

/** @{ @name SignTestMaintenanceLock */
/** Delivers whether the sign test is locked to maintenance. BOOL, default 0, unprofiled. */
int32_t DAL_CML_getSignTestMaintenanceLock(BOOL* value);
/** Stores whether the sign test is locked to maintenance. */
int32_t DAL_CML_setSignTestMaintenanceLock(BOOL value);
/** Returns the default of SignTestMaintenanceLock, 0. */
BOOL DAL_CML_getSignTestMaintenanceLockDefault(void);
/** Removes the stored SignTestMaintenanceLock: 0 holds again. */
int32_t DAL_CML_deleteSignTestMaintenanceLock(void);
/** Removes the stored SignTestMaintenanceLock of all profile numbers. */
int32_t DAL_CML_deleteAllSignTestMaintenanceLock(void);
/** Returns 0 if no SignTestMaintenanceLock is stored, else another number. */
int32_t DAL_CML_isSignTestMaintenanceLockPresent(void);
/** @} */

/** @{ @name AllowDriverReboot */
/** Delivers whether the driver may reboot the console. BOOL, default 0, profiled. */
int32_t DAL_CML_getAllowDriverReboot(BOOL* value);
/** Stores whether the driver may reboot the console. */
int32_t DAL_CML_setAllowDriverReboot(BOOL value);
/** Returns the default of AllowDriverReboot, 0. */
BOOL DAL_CML_getAllowDriverRebootDefault(void);
/** Removes the stored AllowDriverReboot: 0 holds again. */
int32_t DAL_CML_deleteAllowDriverReboot(void);
/** Removes the stored AllowDriverReboot of all profile numbers. */
int32_t DAL_CML_deleteAllAllowDriverReboot(void);
/** Returns 0 if no AllowDriverReboot is stored, else another number. */
int32_t DAL_CML_isAllowDriverRebootPresent(void);
/** @} */

/** @{ @name HomeScreenIconOrder */
/**
 * Delivers the order of the icons on the home screen. The library does not interpret it. String,
 * default the empty string, profiled.
 */
int32_t DAL_CML_getHomeScreenIconOrder(char* buffer, uint32_t* valueInfo, size_t size);
/** Delivers the stored HomeScreenIconOrder in a block from malloc; there is no default. */
int32_t DAL_CML_getHomeScreenIconOrderMalloc(char** value, uint32_t* valueInfo);
/** Stores the order of the icons on the home screen. */
int32_t DAL_CML_setHomeScreenIconOrder(const char* value);
/** Returns the default of HomeScreenIconOrder, the empty string. */
const char* DAL_CML_getHomeScreenIconOrderDefault(void);
/** Removes the stored HomeScreenIconOrder: the empty string holds again. */
int32_t DAL_CML_deleteHomeScreenIconOrder(void);
/** Removes the stored HomeScreenIconOrder of all profile numbers. */
int32_t DAL_CML_deleteAllHomeScreenIconOrder(void);
/** Returns 0 if no HomeScreenIconOrder is stored, else another number. */
int32_t DAL_CML_isHomeScreenIconOrderPresent(void);
/** @} */

/** @{ @name ShowCustomSplash */
/** Delivers whether a custom splash screen is shown. BOOL, default 1, profiled. */
int32_t DAL_CML_getShowCustomSplash(BOOL* value);
/** Stores whether a custom splash screen is shown. */
int32_t DAL_CML_setShowCustomSplash(BOOL value);
/** Returns the default of ShowCustomSplash, 1. */
BOOL DAL_CML_getShowCustomSplashDefault(void);
/** Removes the stored ShowCustomSplash: 1 holds again. */
int32_t DAL_CML_deleteShowCustomSplash(void);
/** Removes the stored ShowCustomSplash of all profile numbers. */
int32_t DAL_CML_deleteAllShowCustomSplash(void);
/** Returns 0 if no ShowCustomSplash is stored, else another number. */
int32_t DAL_CML_isShowCustomSplashPresent(void);
/** @} */

/** @{ @name DriverMessageTextEncoding */
/** Delivers the character encoding of messages to the driver. String, default "UTF-8", profiled. */
int32_t DAL_CML_getDriverMessageTextEncoding(char* buffer, uint32_t* valueInfo, size_t size);
/** Delivers the stored DriverMessageTextEncoding in a block from malloc; there is no default. */
int32_t DAL_CML_getDriverMessageTextEncodingMalloc(char** value, uint32_t* valueInfo);
/** Stores the character encoding of messages to the driver. */
int32_t DAL_CML_setDriverMessageTextEncoding(const char* value);
/** Returns the default of DriverMessageTextEncoding, "UTF-8". */
const char* DAL_CML_getDriverMessageTextEncodingDefault(void);
/** Removes the stored DriverMessageTextEncoding: "UTF-8" holds again. */
int32_t DAL_CML_deleteDriverMessageTextEncoding(void);
/** Removes the stored DriverMessageTextEncoding of all profile numbers. */
int32_t DAL_CML_deleteAllDriverMessageTextEncoding(void);
/** Returns 0 if no DriverMessageTextEncoding is stored, else another number. */
int32_t DAL_CML_isDriverMessageTextEncodingPresent(void);
/** @} */

/** @{ @name HomeScreenIconBarQty */
/** Delivers the number of icons in the bar of the home screen. Integer, default 4, profiled. */
int32_t DAL_CML_getHomeScreenIconBarQty(int32_t* value);
/** Stores the number of icons in the bar of the home screen. */
int32_t DAL_CML_setHomeScreenIconBarQty(int32_t value);
/** Returns the default of HomeScreenIconBarQty, 4. */
int32_t DAL_CML_getHomeScreenIconBarQtyDefault(void);
/** Removes the stored HomeScreenIconBarQty: 4 holds again. */
int32_t DAL_CML_deleteHomeScreenIconBarQty(void);
/** Removes the stored HomeScreenIconBarQty of all profile numbers. */
int32_t DAL_CML_deleteAllHomeScreenIconBarQty(void);
/** Returns 0 if no HomeScreenIconBarQty is stored, else another number. */
int32_t DAL_CML_isHomeScreenIconBarQtyPresent(void);
/** @} */

/** @{ @name WakeOnRemoteAction */
/** Delivers whether a remote action wakes the display. BOOL, default 1, profiled. */
int32_t DAL_CML_getWakeOnRemoteAction(BOOL* value);
/** Stores whether a remote action wakes the display. */
int32_t DAL_CML_setWakeOnRemoteAction(BOOL value);
/** Returns the default of WakeOnRemoteAction, 1. */
BOOL DAL_CML_getWakeOnRemoteActionDefault(void);
/** Removes the stored WakeOnRemoteAction: 1 holds again. */
int32_t DAL_CML_deleteWakeOnRemoteAction(void);
/** Removes the stored WakeOnRemoteAction of all profile numbers. */
int32_t DAL_CML_deleteAllWakeOnRemoteAction(void);
/** Returns 0 if no WakeOnRemoteAction is stored, else another number. */
int32_t DAL_CML_isWakeOnRemoteActionPresent(void);
/** @} */

/** @{ @name UseCodeEntryKeypad */
/** Delivers whether codes are entered on a keypad. BOOL, default 0, profiled. */
int32_t DAL_CML_getUseCodeEntryKeypad(BOOL* value);
/** Stores whether codes are entered on a keypad. */
int32_t DAL_CML_setUseCodeEntryKeypad(BOOL value);
/** Returns the default of UseCodeEntryKeypad, 0. */
BOOL DAL_CML_getUseCodeEntryKeypadDefault(void);
/** Removes the stored UseCodeEntryKeypad: 0 holds again. */
int32_t DAL_CML_deleteUseCodeEntryKeypad(void);
/** Removes the stored UseCodeEntryKeypad of all profile numbers. */
int32_t DAL_CML_deleteAllUseCodeEntryKeypad(void);
/** Returns 0 if no UseCodeEntryKeypad is stored, else another number. */
int32_t DAL_CML_isUseCodeEntryKeypadPresent(void);
/** @} */

/** @{ @name ShowToggleThemeIcon */
/** Delivers whether the icon that toggles the theme is shown. BOOL, default 0, profiled. */
int32_t DAL_CML_getShowToggleThemeIcon(BOOL* value);
/** Stores whether the icon that toggles the theme is shown. */
int32_t DAL_CML_setShowToggleThemeIcon(BOOL value);
/** Returns the default of ShowToggleThemeIcon, 0. */
BOOL DAL_CML_getShowToggleThemeIconDefault(void);
/** Removes the stored ShowToggleThemeIcon: 0 holds again. */
int32_t DAL_CML_deleteShowToggleThemeIcon(void);
/** Removes the stored ShowToggleThemeIcon of all profile numbers. */
int32_t DAL_CML_deleteAllShowToggleThemeIcon(void);
/** Returns 0 if no ShowToggleThemeIcon is stored, else another number. */
int32_t DAL_CML_isShowToggleThemeIconPresent(void);
/** @} */

/** @{ @name UseHomeCodeBrowseControls */
/** Delivers whether the home screen has controls to browse codes. BOOL, default 1, profiled. */
int32_t DAL_CML_getUseHomeCodeBrowseControls(BOOL* value);
/** Stores whether the home screen has controls to browse codes. */
int32_t DAL_CML_setUseHomeCodeBrowseControls(BOOL value);
/** Returns the default of UseHomeCodeBrowseControls, 1. */
BOOL DAL_CML_getUseHomeCodeBrowseControlsDefault(void);
/** Removes the stored UseHomeCodeBrowseControls: 1 holds again. */
int32_t DAL_CML_deleteUseHomeCodeBrowseControls(void);
/** Removes the stored UseHomeCodeBrowseControls of all profile numbers. */
int32_t DAL_CML_deleteAllUseHomeCodeBrowseControls(void);
/** Returns 0 if no UseHomeCodeBrowseControls is stored, else another number. */
int32_t DAL_CML_isUseHomeCodeBrowseControlsPresent(void);
/** @} */

/** @{ @name TouchScreenClick */
/** Delivers whether a touch makes a click. BOOL, default 1, profiled. */
int32_t DAL_CML_getTouchScreenClick(BOOL* value);
/** Stores whether a touch makes a click. */
int32_t DAL_CML_setTouchScreenClick(BOOL value);
/** Returns the default of TouchScreenClick, 1. */
BOOL DAL_CML_getTouchScreenClickDefault(void);
/** Removes the stored TouchScreenClick: 1 holds again. */
int32_t DAL_CML_deleteTouchScreenClick(void);
/** Removes the stored TouchScreenClick of all profile numbers. */
int32_t DAL_CML_deleteAllTouchScreenClick(void);
/** Returns 0 if no TouchScreenClick is stored, else another number. */
int32_t DAL_CML_isTouchScreenClickPresent(void);
/** @} */

/** @{ @name ShowProfilesListByDefault */
/** Delivers whether the list of profiles is shown at first. BOOL, default 0, profiled. */
int32_t DAL_CML_getShowProfilesListByDefault(BOOL* value);
/** Stores whether the list of profiles is shown at first. */
int32_t DAL_CML_setShowProfilesListByDefault(BOOL value);
/** Returns the default of ShowProfilesListByDefault, 0. */
BOOL DAL_CML_getShowProfilesListByDefaultDefault(void);
/** Removes the stored ShowProfilesListByDefault: 0 holds again. */
int32_t DAL_CML_deleteShowProfilesListByDefault(void);
/** Removes the stored ShowProfilesListByDefault of all profile numbers. */
int32_t DAL_CML_deleteAllShowProfilesListByDefault(void);
/** Returns 0 if no ShowProfilesListByDefault is stored, else another number. */
int32_t DAL_CML_isShowProfilesListByDefaultPresent(void);
/** @} */

/** @{ @name BeepsOnUsbUpdate */
/** Delivers whether an update from a USB stick beeps. BOOL, default 1, profiled. */
int32_t DAL_CML_getBeepsOnUsbUpdate(BOOL* value);
/** Stores whether an update from a USB stick beeps. */
int32_t DAL_CML_setBeepsOnUsbUpdate(BOOL value);
/** Returns the default of BeepsOnUsbUpdate, 1. */
BOOL DAL_CML_getBeepsOnUsbUpdateDefault(void);
/** Removes the stored BeepsOnUsbUpdate: 1 holds again. */
int32_t DAL_CML_deleteBeepsOnUsbUpdate(void);
/** Removes the stored BeepsOnUsbUpdate of all profile numbers. */
int32_t DAL_CML_deleteAllBeepsOnUsbUpdate(void);
/** Returns 0 if no BeepsOnUsbUpdate is stored, else another number. */
int32_t DAL_CML_isBeepsOnUsbUpdatePresent(void);
/** @} */

/** @{ @name ShowPassengerCountTile */
/** Delivers whether the passenger count is shown. BOOL, default 0, profiled. */
int32_t DAL_CML_getShowPassengerCountTile(BOOL* value);
/** Stores whether the passenger count is shown. */
int32_t DAL_CML_setShowPassengerCountTile(BOOL value);
/** Returns the default of ShowPassengerCountTile, 0. */
BOOL DAL_CML_getShowPassengerCountTileDefault(void);
/** Removes the stored ShowPassengerCountTile: 0 holds again. */
int32_t DAL_CML_deleteShowPassengerCountTile(void);
/** Removes the stored ShowPassengerCountTile of all profile numbers. */
int32_t DAL_CML_deleteAllShowPassengerCountTile(void);
/** Returns 0 if no ShowPassengerCountTile is stored, else another number. */
int32_t DAL_CML_isShowPassengerCountTilePresent(void);
/** @} */

/** @{ @name ShowHomeScreenDateTime */
/** Delivers whether the home screen shows date and time. BOOL, default 1, profiled. */
int32_t DAL_CML_getShowHomeScreenDateTime(BOOL* value);
/** Stores whether the home screen shows date and time. */
int32_t DAL_CML_setShowHomeScreenDateTime(BOOL value);
/** Returns the default of ShowHomeScreenDateTime, 1. */
BOOL DAL_CML_getShowHomeScreenDateTimeDefault(void);
/** Removes the stored ShowHomeScreenDateTime: 1 holds again. */
int32_t DAL_CML_deleteShowHomeScreenDateTime(void);
/** Removes the stored ShowHomeScreenDateTime of all profile numbers. */
int32_t DAL_CML_deleteAllShowHomeScreenDateTime(void);
/** Returns 0 if no ShowHomeScreenDateTime is stored, else another number. */
int32_t DAL_CML_isShowHomeScreenDateTimePresent(void);
/** @} */

/** @file
 * @par Settings of one word
 * The database holds a word, the functions speak of its number. A getter gives the default number
 * for a stored text that is none of the words, compared as a whole and with regard to case. A set
 * with any other number stores the empty text, which reads as the default and counts as present.
 */

/** What the driver may do about the destination. */
enum CML_DestinationClearControl {
    CML_DESTINATION_CLEAR_CONTROL_DISABLE = 0, /**< never clear it */
    CML_DESTINATION_CLEAR_CONTROL_ENABLE = 1,  /**< clear it */
    CML_DESTINATION_CLEAR_CONTROL_PROMPT = 2   /**< clear it after a question */
};

/** @{ @name DestinationClearControl */
/**
 * Delivers whether the driver may clear the destination. A CML_DestinationClearControl, default
 * CML_DESTINATION_CLEAR_CONTROL_ENABLE, profiled.
 */
int32_t DAL_CML_getDestinationClearControl(int32_t* value);
/** Stores whether the driver may clear the destination. */
int32_t DAL_CML_setDestinationClearControl(int32_t value);
/** Returns the default of DestinationClearControl, CML_DESTINATION_CLEAR_CONTROL_ENABLE. */
int32_t DAL_CML_getDestinationClearControlDefault(void);
/** Removes the stored DestinationClearControl: CML_DESTINATION_CLEAR_CONTROL_ENABLE holds again. */
int32_t DAL_CML_deleteDestinationClearControl(void);
/** Removes the stored DestinationClearControl of all profile numbers. */
int32_t DAL_CML_deleteAllDestinationClearControl(void);
/** Returns 0 if no DestinationClearControl is stored, else another number. */
int32_t DAL_CML_isDestinationClearControlPresent(void);
/** @} */

/** The forms of a date. */
enum CML_DateFormat {
    CML_DATE_FORMAT_DDMMYY = 0,   /**< day, month, two digits of the year */
    CML_DATE_FORMAT_DDMMYYYY = 1, /**< day, month, year */
    CML_DATE_FORMAT_MMDDYYYY = 2, /**< month, day, year */
    CML_DATE_FORMAT_YYYYMMDD = 3  /**< year, month, day */
};

/** @{ @name DateFormat */
/**
 * Delivers the form in which dates are shown. A CML_DateFormat, default CML_DATE_FORMAT_DDMMYYYY,
 * unprofiled.
 */
int32_t DAL_CML_getDateFormat(int32_t* value);
/** Stores the form in which dates are shown. */
int32_t DAL_CML_setDateFormat(int32_t value);
/** Returns the default of DateFormat, CML_DATE_FORMAT_DDMMYYYY. */
int32_t DAL_CML_getDateFormatDefault(void);
/** Removes the stored DateFormat: CML_DATE_FORMAT_DDMMYYYY holds again. */
int32_t DAL_CML_deleteDateFormat(void);
/** Removes the stored DateFormat of all profile numbers. */
int32_t DAL_CML_deleteAllDateFormat(void);
/** Returns 0 if no DateFormat is stored, else another number. */
int32_t DAL_CML_isDateFormatPresent(void);
/** @} */

/** The ways to pick a destination. */
enum CML_DriverDestinationSelectionMode {
    CML_DRIVER_DESTINATION_SELECTION_MODE_ENTER_BY_NUMBER = 0, /**< its number is entered */
    CML_DRIVER_DESTINATION_SELECTION_MODE_BROWSE_FROM_LIST = 1 /**< it is picked from a list */
};

/** @{ @name DriverDestinationSelectionMode */
/**
 * Delivers how the driver picks a destination. A CML_DriverDestinationSelectionMode, default
 * CML_DRIVER_DESTINATION_SELECTION_MODE_ENTER_BY_NUMBER, unprofiled.
 */
int32_t DAL_CML_getDriverDestinationSelectionMode(int32_t* value);
/** Stores how the driver picks a destination. */
int32_t DAL_CML_setDriverDestinationSelectionMode(int32_t value);
/**
 * Returns the default of DriverDestinationSelectionMode,
 * CML_DRIVER_DESTINATION_SELECTION_MODE_ENTER_BY_NUMBER.
 */
int32_t DAL_CML_getDriverDestinationSelectionModeDefault(void);
/**
 * Removes the stored DriverDestinationSelectionMode:
 * CML_DRIVER_DESTINATION_SELECTION_MODE_ENTER_BY_NUMBER holds again.
 */
int32_t DAL_CML_deleteDriverDestinationSelectionMode(void);
/** Removes the stored DriverDestinationSelectionMode of all profile numbers. */
int32_t DAL_CML_deleteAllDriverDestinationSelectionMode(void);
/** Returns 0 if no DriverDestinationSelectionMode is stored, else another number. */
int32_t DAL_CML_isDriverDestinationSelectionModePresent(void);
/** @} */

/** The ways to pick information. */
enum CML_DriverInformationSelectionMode {
    CML_DRIVER_INFORMATION_SELECTION_MODE_ENTER_BY_NUMBER = 0, /**< its number is entered */
    CML_DRIVER_INFORMATION_SELECTION_MODE_BROWSE_FROM_LIST = 1 /**< it is picked from a list */
};

/** @{ @name DriverInformationSelectionMode */
/**
 * Delivers how the driver picks information. A CML_DriverInformationSelectionMode, default
 * CML_DRIVER_INFORMATION_SELECTION_MODE_ENTER_BY_NUMBER, unprofiled.
 */
int32_t DAL_CML_getDriverInformationSelectionMode(int32_t* value);
/** Stores how the driver picks information. */
int32_t DAL_CML_setDriverInformationSelectionMode(int32_t value);
/**
 * Returns the default of DriverInformationSelectionMode,
 * CML_DRIVER_INFORMATION_SELECTION_MODE_ENTER_BY_NUMBER.
 */
int32_t DAL_CML_getDriverInformationSelectionModeDefault(void);
/**
 * Removes the stored DriverInformationSelectionMode:
 * CML_DRIVER_INFORMATION_SELECTION_MODE_ENTER_BY_NUMBER holds again.
 */
int32_t DAL_CML_deleteDriverInformationSelectionMode(void);
/** Removes the stored DriverInformationSelectionMode of all profile numbers. */
int32_t DAL_CML_deleteAllDriverInformationSelectionMode(void);
/** Returns 0 if no DriverInformationSelectionMode is stored, else another number. */
int32_t DAL_CML_isDriverInformationSelectionModePresent(void);
/** @} */

/** The themes of the user interface. */
enum CML_Theme {
    CML_THEME_LIGHT = 0, /**< dark on light */
    CML_THEME_DARK = 1,  /**< light on dark */
    CML_THEME_AUTO = 2   /**< light or dark, as the application chooses */
};

/** @{ @name Theme */
/** Delivers the theme of the user interface. A CML_Theme, default CML_THEME_LIGHT, profiled. */
int32_t DAL_CML_getTheme(int32_t* value);
/** Stores the theme of the user interface. */
int32_t DAL_CML_setTheme(int32_t value);
/** Returns the default of Theme, CML_THEME_LIGHT. */
int32_t DAL_CML_getThemeDefault(void);
/** Removes the stored Theme: CML_THEME_LIGHT holds again. */
int32_t DAL_CML_deleteTheme(void);
/** Removes the stored Theme of all profile numbers. */
int32_t DAL_CML_deleteAllTheme(void);
/** Returns 0 if no Theme is stored, else another number. */
int32_t DAL_CML_isThemePresent(void);
/** @} */

/** The themes for the time being. */
enum CML_AutoTheme {
    CML_AUTO_THEME_LIGHT = 0, /**< dark on light */
    CML_AUTO_THEME_DARK = 1,  /**< light on dark */
    CML_AUTO_THEME_AUTO = 2   /**< light or dark, as the application chooses */
};

/** @{ @name AutoTheme */
/**
 * Delivers the theme for the time being. The only setting in the volatile database, gone with the
 * next start. A CML_AutoTheme, default CML_AUTO_THEME_LIGHT, profiled.
 */
int32_t DAL_CML_getAutoTheme(int32_t* value);
/** Stores the theme for the time being. */
int32_t DAL_CML_setAutoTheme(int32_t value);
/** Returns the default of AutoTheme, CML_AUTO_THEME_LIGHT. */
int32_t DAL_CML_getAutoThemeDefault(void);
/** Removes the stored AutoTheme: CML_AUTO_THEME_LIGHT holds again. */
int32_t DAL_CML_deleteAutoTheme(void);
/** Removes the stored AutoTheme of all profile numbers. */
int32_t DAL_CML_deleteAllAutoTheme(void);
/** Returns 0 if no AutoTheme is stored, else another number. */
int32_t DAL_CML_isAutoThemePresent(void);
/** @} */

/** The icons of the hot key. */
enum CML_QorHotKeyIcon {
    CML_QOR_HOT_KEY_ICON_DEFAULT = 0,           /**< the usual one */
    CML_QOR_HOT_KEY_ICON_AUDIO_ANNOUNCEMENT = 1 /**< that of an audio announcement */
};

/** @{ @name QorHotKeyIcon */
/**
 * Delivers the icon of the hot key. A CML_QorHotKeyIcon, default CML_QOR_HOT_KEY_ICON_DEFAULT,
 * profiled.
 */
int32_t DAL_CML_getQorHotKeyIcon(int32_t* value);
/** Stores the icon of the hot key. */
int32_t DAL_CML_setQorHotKeyIcon(int32_t value);
/** Returns the default of QorHotKeyIcon, CML_QOR_HOT_KEY_ICON_DEFAULT. */
int32_t DAL_CML_getQorHotKeyIconDefault(void);
/** Removes the stored QorHotKeyIcon: CML_QOR_HOT_KEY_ICON_DEFAULT holds again. */
int32_t DAL_CML_deleteQorHotKeyIcon(void);
/** Removes the stored QorHotKeyIcon of all profile numbers. */
int32_t DAL_CML_deleteAllQorHotKeyIcon(void);
/** Returns 0 if no QorHotKeyIcon is stored, else another number. */
int32_t DAL_CML_isQorHotKeyIconPresent(void);
/** @} */

/** @file
 * @par Lists
 * A list is a map from node ids to one value each. A node id is a text of the caller's choice,
 * never null. For a list's item setting S the family is the one above with the node id as the first
 * argument; getSDefault has none, since all nodes share one default. deleteAllS removes the item of
 * one node under all profile numbers. The first set of its item creates a node. All lists are
 * profiled.
 *
 * For the nodes N of a list:
 *
 *     DAL_CML_deleteN       removes one node with its item
 *     DAL_CML_deleteAllNs   removes all nodes, under all profile numbers
 *     DAL_CML_isNPresent    returns 0 if there is no such node, else another number
 *     DAL_CML_listNs        returns the node ids
 *
 * A listing is an array of node ids in any order, ended by a null pointer; an empty list is that
 * pointer alone. Array and ids are blocks from malloc: the caller frees each id, then the array. A
 * listing is null on failure. Whether a node stays when its item alone is deleted is the data
 * access library's choice; with the stand-in it stays.
 */

/** @{ @name BrowserDestinationHideItem */
/**
 * Delivers whether a destination is hidden in the browser, by its node; the library gives the
 * numbers no meaning. Integer, default 1, profiled; list "browser_destination_hide_list".
 */
int32_t DAL_CML_getBrowserDestinationHideItem(const char* nodeId, int32_t* value);
/** Stores whether a destination is hidden in the browser, and its node if that is new. */
int32_t DAL_CML_setBrowserDestinationHideItem(const char* nodeId, int32_t value);
/** Returns the default of BrowserDestinationHideItem, 1. */
int32_t DAL_CML_getBrowserDestinationHideItemDefault(void);
/** Removes the BrowserDestinationHideItem of a node. */
int32_t DAL_CML_deleteBrowserDestinationHideItem(const char* nodeId);
/** Removes the BrowserDestinationHideItem of one node under all profile numbers. */
int32_t DAL_CML_deleteAllBrowserDestinationHideItem(const char* nodeId);
/** Returns 0 if no BrowserDestinationHideItem of the node is stored, else another number. */
int32_t DAL_CML_isBrowserDestinationHideItemPresent(const char* nodeId);
/** Removes a node of "browser_destination_hide_list" with its BrowserDestinationHideItem. */
int32_t DAL_CML_deleteBrowserDestinationHideListNode(const char* nodeId);
/** Removes all nodes of "browser_destination_hide_list", under all profile numbers. */
int32_t DAL_CML_deleteAllBrowserDestinationHideListNodes(void);
/** Returns 0 if "browser_destination_hide_list" has no such node, else another number. */
int32_t DAL_CML_isBrowserDestinationHideListNodePresent(const char* nodeId);
/** Lists the node ids of "browser_destination_hide_list". */
char** DAL_CML_listBrowserDestinationHideListNodes(void);
/** @} */

/** @{ @name BrowserInformationHideItem */
/**
 * Delivers whether information is hidden in the browser, by its node; the library gives the numbers
 * no meaning. Integer, default 1, profiled; list "browser_information_hide_list".
 */
int32_t DAL_CML_getBrowserInformationHideItem(const char* nodeId, int32_t* value);
/** Stores whether information is hidden in the browser, and its node if that is new. */
int32_t DAL_CML_setBrowserInformationHideItem(const char* nodeId, int32_t value);
/** Returns the default of BrowserInformationHideItem, 1. */
int32_t DAL_CML_getBrowserInformationHideItemDefault(void);
/** Removes the BrowserInformationHideItem of a node. */
int32_t DAL_CML_deleteBrowserInformationHideItem(const char* nodeId);
/** Removes the BrowserInformationHideItem of one node under all profile numbers. */
int32_t DAL_CML_deleteAllBrowserInformationHideItem(const char* nodeId);
/** Returns 0 if no BrowserInformationHideItem of the node is stored, else another number. */
int32_t DAL_CML_isBrowserInformationHideItemPresent(const char* nodeId);
/** Removes a node of "browser_information_hide_list" with its BrowserInformationHideItem. */
int32_t DAL_CML_deleteBrowserInformationHideListNode(const char* nodeId);
/** Removes all nodes of "browser_information_hide_list", under all profile numbers. */
int32_t DAL_CML_deleteAllBrowserInformationHideListNodes(void);
/** Returns 0 if "browser_information_hide_list" has no such node, else another number. */
int32_t DAL_CML_isBrowserInformationHideListNodePresent(const char* nodeId);
/** Lists the node ids of "browser_information_hide_list". */
char** DAL_CML_listBrowserInformationHideListNodes(void);
/** @} */

/** @{ @name HomeScreenIcon */
/**
 * Delivers an icon of the home screen, by its node. String, default the empty string, profiled;
 * list "home_screen_icons".
 */
int32_t DAL_CML_getHomeScreenIcon(const char* nodeId, char* buffer, uint32_t* valueInfo,
                                  size_t size);
/** Delivers the stored HomeScreenIcon of a node in a block from malloc; there is no default. */
int32_t DAL_CML_getHomeScreenIconMalloc(const char* nodeId, char** value, uint32_t* valueInfo);
/** Stores an icon of the home screen, and its node if that is new. */
int32_t DAL_CML_setHomeScreenIcon(const char* nodeId, const char* value);
/** Returns the default of HomeScreenIcon, the empty string. */
const char* DAL_CML_getHomeScreenIconDefault(void);
/** Removes the HomeScreenIcon of a node. */
int32_t DAL_CML_deleteHomeScreenIcon(const char* nodeId);
/** Removes the HomeScreenIcon of one node under all profile numbers. */
int32_t DAL_CML_deleteAllHomeScreenIcon(const char* nodeId);
/** Returns 0 if no HomeScreenIcon of the node is stored, else another number. */
int32_t DAL_CML_isHomeScreenIconPresent(const char* nodeId);
/** Removes a node of "home_screen_icons" with its HomeScreenIcon. */
int32_t DAL_CML_deleteHomeScreenIconsNode(const char* nodeId);
/** Removes all nodes of "home_screen_icons", under all profile numbers. */
int32_t DAL_CML_deleteAllHomeScreenIconsNodes(void);
/** Returns 0 if "home_screen_icons" has no such node, else another number. */
int32_t DAL_CML_isHomeScreenIconsNodePresent(const char* nodeId);
/** Lists the node ids of "home_screen_icons". */
char** DAL_CML_listHomeScreenIconsNodes(void);
/** @} */

/** @{ @name QorHotKeySelectListItem */
/**
 * Delivers a hot key to select from, by its node. String, default the empty string, profiled; list
 * "qor_hot_key_select_list".
 */
int32_t DAL_CML_getQorHotKeySelectListItem(const char* nodeId, char* buffer, uint32_t* valueInfo,
                                           size_t size);
/**
 * Delivers the stored QorHotKeySelectListItem of a node in a block from malloc; there is no
 * default.
 */
int32_t DAL_CML_getQorHotKeySelectListItemMalloc(const char* nodeId, char** value,
                                                 uint32_t* valueInfo);
/** Stores a hot key to select from, and its node if that is new. */
int32_t DAL_CML_setQorHotKeySelectListItem(const char* nodeId, const char* value);
/** Returns the default of QorHotKeySelectListItem, the empty string. */
const char* DAL_CML_getQorHotKeySelectListItemDefault(void);
/** Removes the QorHotKeySelectListItem of a node. */
int32_t DAL_CML_deleteQorHotKeySelectListItem(const char* nodeId);
/** Removes the QorHotKeySelectListItem of one node under all profile numbers. */
int32_t DAL_CML_deleteAllQorHotKeySelectListItem(const char* nodeId);
/** Returns 0 if no QorHotKeySelectListItem of the node is stored, else another number. */
int32_t DAL_CML_isQorHotKeySelectListItemPresent(const char* nodeId);
/** Removes a node of "qor_hot_key_select_list" with its QorHotKeySelectListItem. */
int32_t DAL_CML_deleteQorHotKeySelectListNode(const char* nodeId);
/** Removes all nodes of "qor_hot_key_select_list", under all profile numbers. */
int32_t DAL_CML_deleteAllQorHotKeySelectListNodes(void);
/** Returns 0 if "qor_hot_key_select_list" has no such node, else another number. */
int32_t DAL_CML_isQorHotKeySelectListNodePresent(const char* nodeId);
/** Lists the node ids of "qor_hot_key_select_list". */
char** DAL_CML_listQorHotKeySelectListNodes(void);
/** @} */

/** @{ @name IconsMenuFavourite */
/**
 * Delivers a favourite of the icons menu, by its node. String, default the empty string, profiled;
 * list "icons_menu_favourites".
 */
int32_t DAL_CML_getIconsMenuFavourite(const char* nodeId, char* buffer, uint32_t* valueInfo,
                                      size_t size);
/**
 * Delivers the stored IconsMenuFavourite of a node in a block from malloc; there is no default.
 */
int32_t DAL_CML_getIconsMenuFavouriteMalloc(const char* nodeId, char** value, uint32_t* valueInfo);
/** Stores a favourite of the icons menu, and its node if that is new. */
int32_t DAL_CML_setIconsMenuFavourite(const char* nodeId, const char* value);
/** Returns the default of IconsMenuFavourite, the empty string. */
const char* DAL_CML_getIconsMenuFavouriteDefault(void);
/** Removes the IconsMenuFavourite of a node. */
int32_t DAL_CML_deleteIconsMenuFavourite(const char* nodeId);
/** Removes the IconsMenuFavourite of one node under all profile numbers. */
int32_t DAL_CML_deleteAllIconsMenuFavourite(const char* nodeId);
/** Returns 0 if no IconsMenuFavourite of the node is stored, else another number. */
int32_t DAL_CML_isIconsMenuFavouritePresent(const char* nodeId);
/** Removes a node of "icons_menu_favourites" with its IconsMenuFavourite. */
int32_t DAL_CML_deleteIconsMenuFavouritesNode(const char* nodeId);
/** Removes all nodes of "icons_menu_favourites", under all profile numbers. */
int32_t DAL_CML_deleteAllIconsMenuFavouritesNodes(void);
/** Returns 0 if "icons_menu_favourites" has no such node, else another number. */
int32_t DAL_CML_isIconsMenuFavouritesNodePresent(const char* nodeId);
/** Lists the node ids of "icons_menu_favourites". */
char** DAL_CML_listIconsMenuFavouritesNodes(void);
/** @} */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
