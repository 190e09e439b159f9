/** @file
 * The state of the device: release, storage, memory, processor load, up-time, and three display
 * settings as plain results.
 *
 * All functions run on the caller's thread and need no initialisation. None reports an error: a
 * failure shows in the value only, as stated for each function. The kernel's figures are read in
 * the kernel's notation, whatever locale the application has set. Only the display settings keep
 * descriptors open, those of the settings database. No program that the application starts inherits
 * a descriptor of the library.
 *
 * A function that cannot allocate memory throws std::bad_alloc. It leaks nothing, and later calls
 * work as usual. Only C++ can catch the exception: a C program is ended by abort().
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
 * The entries of "/etc/os-release" by key, without the double quotes around a value. For C++
 * applications that need other keys than those of the five functions below. Read only.
 *
 * The map is empty until the first call of one of those functions, which fills it. Each of them
 * also adds its own key, with an empty value, if the file does not have it. No entry is ever
 * removed.
 *
 * Declared only if the application's standard library lays out the map as the library's does: GCC's
 * library with its current ABI, without _GLIBCXX_DEBUG.
 *
 * Threads. The library serialises its own writes. The application may read the map whenever no such
 * write can happen: not during the first call of any of the five functions, and not during the
 * first call of one whose key the file does not have. After that the map does not change.
 */
extern std::map<std::string, std::string> os_release;
#endif

/** @file
 * @par Release information
 * Five functions return the value of one key of "/etc/os-release" each. The first call of any of
 * them reads the file; later changes of the file are not seen. If the file exists but cannot be
 * opened, for example because the process has too many open files, the text is empty and the next
 * call tries again. A value is everything after the first "=" of its line, unchanged except that
 * enclosing double quotes are removed. If a key occurs twice, the last line counts.
 *
 * The result is never null; it is empty if the file or the key is missing. The library owns the
 * text. Once the file has been read, every call returns the same pointer, and the text stays valid
 * and unchanged until the process has run the exit handlers that were registered after the library
 * was loaded. The five functions are thread-safe, but must not be called after that.
 */

/** @{ @name Release information */
/** Returns BUILD_MODE of "/etc/os-release"; never null, owned by the library. */
const char* CML_getBuildType(void);
/** Returns ID of "/etc/os-release"; never null, owned by the library. */
const char* CML_getProductID(void);
/** Returns BUILD_ID of "/etc/os-release"; never null, owned by the library. */
const char* CML_getBuildId(void);
/** Returns MACHINE of "/etc/os-release"; never null, owned by the library. */
const char* CML_getMachineName(void);
/** Returns VERSION of "/etc/os-release"; never null, owned by the library. */
const char* CML_getProductRelease(void);
/** @} */

/**
 * Returns release and version of the running kernel, as `uname -r` and `uname -v` print them.
 * Thread-safe.
 *
 * @param[out] kernelRelease receives a copy of the release, which the caller frees with free(), or
 *             null if there is no memory; not null. Not written if the kernel refuses.
 * @param[out] kernelVersion the same for the version.
 * @return always 0. To recognise a failure, set both pointers to null before the call.
 */
int32_t CML_getLinuxReleaseInformation(char** kernelRelease, char** kernelVersion);

/**
 * Reads size and use of the file system of "/mnt/vex-data", in blocks of 1024 bytes, as `df -k`
 * prints them. Runs the command at each call and blocks until it has ended. Its error messages go
 * to the standard error of the process. Thread-safe.
 *
 * Both values are 0 if the command fails or the file system is not on a device below "/dev/". They
 * are 0 also with df of busybox if the name of the device has more than 20 characters, since it
 * breaks the line after such a name. A size of 4 TiB or more is reported as 4294967295, with 0 in
 * use.
 *
 * Throws std::runtime_error("popen() failed!"), with both values 0, if no shell can be started.
 *
 * @param[out] totalBlocks receives the size; not null.
 * @param[out] usedBlocks receives how much of it is in use; not null.
 * @return always 0.
 */
int32_t CML_getStorageInfo(uint32_t* totalBlocks, uint32_t* usedBlocks);

/**
 * Reads the memory of the device and how much of it is unused, in units of 1024 bytes: "MemTotal"
 * and "MemFree" of "/proc/meminfo". Memory that the kernel uses as a cache is not free in this
 * sense. Thread-safe.
 *
 * A value that cannot be read, or is out of range, is left as the caller set it.
 *
 * @param[in,out] memTotal receives the memory of the device; not null.
 * @param[in,out] memFree receives how much of it is unused; not null.
 * @return always 0. To recognise a failure, set both to 0 before the call: memTotal is never 0.
 */
int32_t CML_getMemoryInformation(int32_t* memTotal, int32_t* memFree);

/**
 * Returns the load of the processors since the previous call of this function or of
 * CML_getCPUUsage().
 *
 * A load is the ratio of busy time, from 0 (idle) to 1 (busy). Time spent waiting or in interrupts
 * is neither busy nor idle. The precision is 64 bits, even where long double is wider. The first
 * call of a process has nothing to compare with and returns one element, 0.0.
 *
 * | Situation                                                   | Elements                       |
 * |-------------------------------------------------------------|--------------------------------|
 * | the kernel's counters cannot be read, and at the call after | those of the previous call     |
 * | a core has come or gone since the previous call             | those of the previous call     |
 * | a line's counters have not changed, as within a tick (10 ms)| NaN                            |
 * | one core has gone and another one has come                  | any value, also below 0,       |
 * |                                                             | above 1 or infinite            |
 * | counters went backwards, as with some kernels when a core   | any value, also below 0,       |
 * | comes back                                                  | above 1 or infinite            |
 *
 * So the caller discards an element that is not between 0 and 1, and waits for the next call.
 *
 * Not thread-safe: the application serialises the calls of both functions together with the use of
 * the array. A lock in the library could not protect the array.
 *
 * @param[out] count receives the number of elements, unless it is null.
 * @return an array, never null: element 0 is the load of all cores together. One element for each
 *         core online follows, in ascending order: with cores 0 and 2 online, element 2 is that of
 *         core 2. See "/sys/devices/system/cpu/online". The library owns the array. The next call
 *         of either function may move it.
 */
const long double* CML_getAllCPUUsage(int32_t* count);

/**
 * Returns the load of all cores together, element 0 of CML_getAllCPUUsage(). It calls that
 * function, so it ends the interval of both, and the same rules apply to its values and threads.
 */
long double CML_getCPUUsage(void);

/**
 * Returns the seconds since the system started, in steps of 10 ms, with a precision of 64 bits. 0.0
 * if they cannot be read. Thread-safe.
 */
long double CML_getUpTime(void);

/**
 * Does nothing: brightness, settings and files stay as they are. Kept for applications that call
 * it.
 */
void CML_restoreDisplayBrightness(void);

/** @file
 * @par Display settings
 * Three functions return settings of the display, as the getters of the same name in settings.h
 * deliver them: the stored value, or the default if none is stored or on failure, which is not
 * reported. They are thread-safe.
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
