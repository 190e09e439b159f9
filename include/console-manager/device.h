/** @file
 * What the console tells of itself: release, storage, memory, processor load, up-time, and three
 * display settings as plain results.
 *
 * All functions run on the caller's thread, need no initialisation and report nothing: a figure
 * that can't be read shows in the value alone, as each function says. The figures of the kernel are
 * read in its own notation, whatever locale the application has chosen. No descriptor stays open.
 *
 * A function that can't get the memory that it needs throws std::bad_alloc; nothing is left
 * allocated then, and the next call is as good as any. Only a caller in C++ can catch an exception:
 * in a C program it ends the process, by abort().
 */
#ifndef CONSOLE_MANAGER_DEVICE_H
#define CONSOLE_MANAGER_DEVICE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C++" {  // also where the application includes this header within extern "C"
#include <map>
#include <string>
}

extern "C" {
#endif
#pragma GCC visibility push(default)

#if defined(__GLIBCXX__) && _GLIBCXX_USE_CXX11_ABI && !defined(_GLIBCXX_DEBUG)
/**
 * The entries of "/etc/os-release" by key, without the double quotes that enclose a value. For C++
 * applications that want a key for which there is no function below; to be read, not changed.
 *
 * It is empty until the first call of one of those five functions, which fills it. Each of them
 * also enters the key that it stands for, with an empty value, if the file doesn't have it. No
 * entry is ever removed.
 *
 * Declared only if the application's standard library lays out the map as the library's does: GCC's
 * library with its current ABI, without _GLIBCXX_DEBUG.
 *
 * Threads. The library serialises its own writes, so that the five functions need no care. The
 * application may read the map while no such write can happen: not during the first call of any of
 * the five, nor during the first call of one whose key the file doesn't have. Once each of the five
 * that it uses has returned, the map doesn't change any more, and any thread may read it.
 */
extern std::map<std::string, std::string> os_release;
#endif

/** @file
 * @par Release information
 * Five functions give the value of one key of "/etc/os-release" each. The file is read once in the
 * life of a process, by the first call of any of these functions; a later change isn't seen. A
 * value is all that follows the first "=" of its line, as it stands, without the double quotes if
 * it both begins and ends with one. The last line of a key counts.
 *
 * The result is never null, and empty if the file or the key is missing. The library owns the text;
 * it stays valid and unchanged until the library is unloaded, and every call returns the same
 * pointer. Any thread may call them at any time.
 */

/** @{ @name Release information */
/** Returns BUILD_MODE of "/etc/os-release"; never null, and the library's. */
const char* CML_getBuildType(void);
/** Returns ID of "/etc/os-release"; never null, and the library's. */
const char* CML_getProductID(void);
/** Returns BUILD_ID of "/etc/os-release"; never null, and the library's. */
const char* CML_getBuildId(void);
/** Returns MACHINE of "/etc/os-release"; never null, and the library's. */
const char* CML_getMachineName(void);
/** Returns VERSION of "/etc/os-release"; never null, and the library's. */
const char* CML_getProductRelease(void);
/** @} */

/**
 * Release and version of the running kernel, as `uname -r` and `uname -v` print them.
 *
 * The caller owns both copies and gives each back with free(). A copy for which there is no memory
 * is stored as null. If the kernel refuses, neither is written. Any thread may call it at any time.
 *
 * @param[out] kernelRelease receives the address of a copy of the release; not null.
 * @param[out] kernelVersion the same for the version.
 * @return 0 in every case: a caller that needs to know presets both pointers to null.
 */
int32_t CML_getLinuxReleaseInformation(char** kernelRelease, char** kernelVersion);

/**
 * Size and use of the file system that holds "/mnt/vex-data", in blocks of 1024 bytes, as
 * `df -k` reports them.
 *
 * Both are 0 if the volume can't be measured or doesn't lie on a device below "/dev/". A size of
 * 4 TiB or more doesn't fit: the size is then 4294967295, and the use 0.
 *
 * If not even a shell can be started the function throws std::runtime_error with the text
 * "popen() failed!", with both values 0. No other function of this header throws for want of its
 * source.
 *
 * Runs the command anew at each call and blocks until it has ended. What it prints on its standard
 * error goes to that of the process. Any thread may call it at any time.
 *
 * @param[out] totalBlocks receives the size; not null.
 * @param[out] usedBlocks receives how much of it is in use; not null.
 * @return 0 in every case.
 */
int32_t CML_getStorageInfo(uint32_t* totalBlocks, uint32_t* usedBlocks);

/**
 * Memory of the device and how much of it is unused, in units of 1024 bytes: "MemTotal" and
 * "MemFree" of "/proc/meminfo". Memory that the kernel uses as a cache isn't free in this sense.
 *
 * A value that can't be read, or that doesn't fit 32 bits, is left as the caller set it. Any thread
 * may call it at any time.
 *
 * @param[in,out] memTotal receives the memory of the device; not null.
 * @param[in,out] memFree receives how much of it is unused; not null.
 * @return 0 in every case: a caller that needs to know presets both to 0, which can't occur in
 *         memTotal.
 */
int32_t CML_getMemoryInformation(int32_t* memTotal, int32_t* memFree);

/**
 * Load of the processors since the previous call of this function or of CML_getCPUUsage().
 *
 * Each load is the ratio of busy time, 0 for idle to 1 for fully busy, a 64-bit floating-point
 * number also where long double is wider. Time spent waiting or in interrupts counts neither as
 * busy nor as idle.
 *
 * The first call of a process has nothing to compare with and gives a single element, 0.0. The
 * figures of the previous call come back unchanged if the kernel's counters can't be read, at the
 * call after that, and when a core has gone or come since. An element is NaN if the counters of
 * its line haven't moved, as in two calls within one clock tick (10 ms as a rule).
 *
 * The two functions keep the previous reading without a lock, since a lock could not protect the
 * caller's use of the array: the application serialises the calls of both, together with the use of
 * the result.
 *
 * @param[out] count receives the number of elements, if it isn't null.
 * @return an array, never null: element 0 for all cores together, then one for each core that is
 *         online, in ascending order: with cores 0 and 2 online, element 2 is that of core 2. See
 *         "/sys/devices/system/cpu/online" for which are. The library owns the array; it is good
 *         until the next call of either function, which may move it.
 */
const long double* CML_getAllCPUUsage(int32_t* count);

/**
 * Load of all cores together, element 0 of CML_getAllCPUUsage(), which it calls: it ends the
 * interval of both, gives NaN where that does, and is serialised by the application in the same
 * way.
 */
long double CML_getCPUUsage(void);

/**
 * Seconds since the system started, with a resolution of 10 ms, as a 64-bit floating-point number.
 * 0.0 if the figure can't be read. Any thread may call it at any time.
 */
long double CML_getUpTime(void);

/**
 * Does nothing: the brightness of the display, its settings and its files stay as they are. Kept
 * for applications that call it.
 */
void CML_restoreDisplayBrightness(void);

/** @file
 * @par Display settings
 * Three settings of the display come as plain results. Each is what the getter of the same name in
 * settings.h delivers: the stored value, or the default where none is stored or the database can't
 * be used. A failure doesn't show. Any thread may call them at any time.
 */

/** @{ @name Display settings */
/** Returns whether the driver may change the brightness of the display, 0 if not; default 0. */
int32_t CML_getAllowDriverToAdjustBrightness(void);
/** Returns the time without input until the display counts as inactive; default 15. */
int32_t CML_getDisplayInactivityTimeout(void);
/** Returns the time until the display goes off; default 30. */
int32_t CML_getDisplayOffTimeout(void);
/** @} */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
