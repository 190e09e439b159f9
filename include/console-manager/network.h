/** @file
 * The network ports of the device: which there are, their addresses, link state and traffic, and
 * whether a host answers.
 *
 * A port is a network interface, known by the kernel's name of it, a NUL-terminated text. A port
 * name may not be null except where that is said. Nothing is cached: each call asks the kernel, and
 * no call is needed before another.
 *
 * Texts. A function that returns a text returns a buffer of its own, which is never null: a failure
 * is the empty text. The library owns it; the caller neither writes nor frees it. It is good until
 * the next call of the same function, from any thread, so callers on several threads take turns and
 * copy the text before the next call. An IPv4 or IPv6 text is at the same address at every call;
 * that of the hardware address can move. Calls of different functions don't disturb each other.
 * Every function without a text of its own may be called from any thread at any time.
 *
 * Memory. A function that can't get the memory that it needs throws std::bad_alloc; nothing is left
 * allocated or open then, and the next call is as good as any. Only a caller in C++ can catch an
 * exception: in a C program it ends the process, by abort().
 */
#ifndef CONSOLE_MANAGER_NETWORK_H
#define CONSOLE_MANAGER_NETWORK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/**
 * Lists the ports, as "/sys/class/net" has them, in ascending strcmp order (eth10 before eth2). The
 * loopback port is one of them, and so is a port without an address.
 *
 * When "/sys/class/net" can't be read the function throws std::filesystem::filesystem_error;
 * nothing is left allocated then.
 *
 * @param onlyActive 0 for all; any other value for those only for which
 *        CML_checkNetworkPortActive() gives 1.
 * @return an array of names that a null pointer ends. Array and names are blocks from malloc; the
 *         caller frees each name and then the array. Null when there is nothing to list, and when
 *         memory runs out; if it does so within the standard library's walk through the folder, the
 *         process ends.
 */
char** CML_getNetworkPortsList(int32_t onlyActive);

/**
 * Tells whether a port is up and running, that is enabled and with a link.
 *
 * @param port Its name, of which the first 15 bytes count.
 * @return 1 if so; 0 if not, if there is no such port and if the kernel can't be asked.
 */
int32_t CML_checkNetworkPortActive(const char* port);

/**
 * Returns the port's first IPv4 address in dotted form, 15 characters at most; the empty text if it
 * has none, if there is no such port and on a failure. An address with a label of its own, such as
 * "eth0:1", is found under that label, as a port of that name, and not under the port's.
 */
const char* CML_getNetworkPortIPv4Address(const char* port);

/**
 * Returns the net mask of the port's first IPv4 address that has one, otherwise as
 * CML_getNetworkPortIPv4Address().
 */
const char* CML_getNetworkPortIPv4NetMask(const char* port);

/**
 * Returns the IPv4 gateway of the port in dotted form; the empty text if there is none, or if the
 * kernel doesn't answer within 1 second, which is the longest that the call takes.
 *
 * It is that of the first IPv4 route of the main table that leaves through the port and has one.
 * The kernel lists them by their destinations: first the default route, of several that of the
 * lowest metric; without one it can be a route to some network. A route over several gateways
 * (multipath, a group of next hops) has none in this sense, nor has one over an IPv6 gateway.
 *
 * Only the first datagram of the kernel's reply is looked at, 4096 bytes at most, which is some 70
 * routes, those of tables with lower numbers than the main one's (254) in front. A gateway behind
 * so many is missed.
 */
const char* CML_getNetworkPortIPv4Gateway(const char* port);

/**
 * Returns the port's first IPv6 address as inet_ntop writes it, 45 characters at most, link-local
 * or global, whichever the kernel lists first; otherwise as CML_getNetworkPortIPv4Address().
 */
const char* CML_getNetworkPortIPv6Address(const char* port);

/** The link state of a port; the caller owns the record. */
typedef struct CML_NetworkPortStatus {
    uint32_t up;      /**< 1 if the port is enabled, else 0 */
    uint32_t running; /**< 1 if it is enabled and has a link, else 0; never 1 without up */
} CML_NetworkPortStatus;

/**
 * Reads the link state of a port.
 *
 * @param port Its name, of which the first 15 bytes count.
 * @param[out] status receives the state; not null.
 * @return 1 if it could be read; 0, with zeros in the record, if there is no such port or the
 *         kernel can't be asked.
 */
int32_t CML_getNetworkPortStatus(const char* port, CML_NetworkPortStatus* status);

/**
 * Returns the port's hardware address as the kernel writes it, such as "02:00:5e:10:00:01"; the
 * empty text if there is no such port or it can't be read.
 */
const char* CML_getNetworkPortMACAddress(const char* port);

/**
 * Reads how many bytes the port has received and sent since the kernel made it; taking it down and
 * up doesn't begin anew.
 *
 * @param port Its name.
 * @param[out] rxBytes receives the bytes received; not null.
 * @param[out] txBytes receives the bytes sent; not null. A 0 in either can mean that there was no
 *             traffic, that the counter couldn't be read, or that it is beyond 2147483647 (2 GiB).
 */
void CML_getNetworkPortInfo(const char* port, int32_t* rxBytes, int32_t* txBytes);

/**
 * Asks a host for an echo, once a second until it answers or the time is over, by the system's ping
 * command. Blocks until that has ended; meanwhile the process ignores SIGINT and SIGQUIT, as it
 * does during each call of system().
 *
 * Host and port reach the shell as they stand: pass plain names only, never text from outside that
 * hasn't been checked.
 *
 * @param host Name or address, not null.
 * @param timeout The longest to wait for an answer, in seconds, 1 or more. The call can take longer
 *        by the look-up of a name, which a silent name server draws out to 10 seconds as a rule.
 *        With 0, iputils' ping asks once and waits for 10 seconds; a negative number fails at once.
 * @param port The port to send from; null or empty to leave that to the routing.
 * @return 0 if the host answered. Any other value means that it didn't, or that this can't be told:
 *         what system() gave, the wait status of the shell (that of exit status 127 if there was
 *         none) or -1. So this is no truth value. In a process that ignores SIGCHLD it is always
 *         -1.
 */
int32_t CML_getHostAvailable(const char* host, int32_t timeout, const char* port);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
