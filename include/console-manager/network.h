/** @file
 * The network ports of the device: their names, addresses, link state and traffic, and whether a
 * host answers.
 *
 * A port is a network interface, known by its kernel name, a NUL-terminated text. A port name must
 * not be null unless stated otherwise. An alternative name (altname) works for the link state only;
 * to all other functions it is the name of no port. Nothing is cached: each call asks the kernel.
 * The functions need no initialisation.
 *
 * Texts. A function that returns a text returns its own static buffer, always at the same address
 * and never null. On failure the text is empty. The library owns the buffer: the caller must not
 * write to it or free it. The next call of the same function, from any thread, overwrites the text.
 * Threads that use such a function must serialise the calls and copy each text before the next
 * call. Different functions do not affect each other. All functions without a text are thread-safe.
 *
 * Memory. A function that cannot allocate memory throws std::bad_alloc unless stated otherwise. It
 * leaks nothing, and later calls work as usual. Only C++ can catch the exception: a C program is
 * ended by abort().
 *
 * Processes. No program that the application starts inherits a descriptor of the library. Exit
 * handlers, and threads that still run while the process ends, may call all functions of this
 * header.
 */
#ifndef CONSOLE_MANAGER_NETWORK_H
#define CONSOLE_MANAGER_NETWORK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/**
 * Lists the ports in ascending strcmp order (eth10 before eth2). The loopback port and ports
 * without an address are listed, too.
 *
 * The list has every entry of "/sys/class/net". The bonding driver puts a plain file there,
 * "bonding_masters", which is listed unless onlyActive is set. CML_getNetworkPortStatus() returns 0
 * for it.
 *
 * Throws std::filesystem::filesystem_error if "/sys/class/net" cannot be read.
 *
 * @param onlyActive 0 for all ports; any other value for those for which
 *        CML_checkNetworkPortActive() returns 1.
 * @return an array of names with a null pointer at the end. The array and each name are blocks from
 *         malloc, which the caller frees. Null if there is nothing to list, and when memory runs
 *         out. If that happens while the standard library reads the directory, it ends the process.
 */
char** CML_getNetworkPortsList(int32_t onlyActive);

/**
 * Returns whether a port is up and running, that is enabled and with a usable link: the field
 * `running` of CML_NetworkPortStatus.
 *
 * @param port Its name, of which the first 15 bytes count.
 * @return 1 if so; 0 if not, if there is no such port, or if the kernel cannot be asked.
 */
int32_t CML_checkNetworkPortActive(const char* port);

/**
 * Returns the port's first IPv4 address in dotted form, at most 15 characters. The text is empty if
 * the port has none, if there is no such port, and on failure. An address with a label, such as
 * "eth0:1", is returned for the port name "eth0:1" and not for "eth0".
 */
const char* CML_getNetworkPortIPv4Address(const char* port);

/**
 * Returns the net mask of the port's first IPv4 address that has one; otherwise like
 * CML_getNetworkPortIPv4Address().
 */
const char* CML_getNetworkPortIPv4NetMask(const char* port);

/**
 * Returns the port's IPv4 gateway in dotted form. The text is empty if the port has none and on
 * failure. Blocks for at most 1 second, until the kernel replies.
 *
 * The gateway is that of the first IPv4 route in the main table that leaves through the port and
 * has a gateway. The kernel lists routes by destination. So the default route comes first, the one
 * with the lowest metric if there are several; only routes to 0.0.0.0 with a longer prefix precede
 * it, such as 0.0.0.0/1. Without a default route the gateway can be that of a route to some
 * network. Multipath routes, next-hop groups and IPv6 gateways do not count.
 *
 * Only the first datagram of the kernel's reply is read, and a gateway beyond it is missed. It
 * holds some 70 of the shortest routes, or 40 to 60 with gateway, metric, source address or MTU.
 * The routes of other tables take part of it if they precede the main table, which has number 254.
 * The kernel orders tables by their number modulo 256.
 */
const char* CML_getNetworkPortIPv4Gateway(const char* port);

/**
 * Returns the port's first IPv6 address as inet_ntop formats it, at most 45 characters. It is
 * link-local or global, whichever the kernel lists first. Otherwise like
 * CML_getNetworkPortIPv4Address().
 */
const char* CML_getNetworkPortIPv6Address(const char* port);

/** The link state of a port; the caller owns the record. */
typedef struct CML_NetworkPortStatus {
    uint32_t up;      /**< 1 if the port is enabled, else 0 */
    uint32_t running; /**< 1 if it is enabled and its link can carry traffic, else 0. A dormant port
                           has a link but 0 here: it still waits, for example for 802.1X. */
} CML_NetworkPortStatus;

/**
 * Reads the link state of a port.
 *
 * @param port Its name, of which the first 15 bytes count.
 * @param[out] status receives the state; not null.
 * @return 1 on success; 0, with zeros in the record, if there is no such port or the kernel cannot
 *         be asked.
 */
int32_t CML_getNetworkPortStatus(const char* port, CML_NetworkPortStatus* status);

/**
 * Returns the port's hardware address as the kernel formats it, such as "02:00:5e:10:00:01". The
 * text is empty if there is no such port, if it cannot be read, and for ports without an address,
 * such as tun and WireGuard. The address of a tunnel has 4 or 16 bytes instead of 6.
 */
const char* CML_getNetworkPortMACAddress(const char* port);

/**
 * Reads how many bytes a port has received and sent since the kernel created it. Taking the port
 * down and up does not reset the counters.
 *
 * @param port Its name.
 * @param[out] rxBytes receives the bytes received; not null.
 * @param[out] txBytes receives the bytes sent; not null. 0 in either stands for no traffic, for a
 *             counter that cannot be read, and for one above 2147483647 (2 GiB).
 */
void CML_getNetworkPortInfo(const char* port, int32_t* rxBytes, int32_t* txBytes);

/**
 * Checks whether a host answers an echo request, by the system's ping command. Blocks until the
 * command has ended. The process ignores SIGINT and SIGQUIT meanwhile, as during any system().
 *
 * Host and port reach the shell unquoted: never pass text that has not been checked. Names from
 * CML_getNetworkPortsList() are no exception, as the kernel accepts port names such as "x;reboot".
 *
 * How long the call takes depends on the command:
 * - ping of iputils sends a request each second until the host answers, the timeout is over, or an
 *   ICMP error arrives. The error comes at once from a router that knows no way to the host, and
 *   after 3 seconds if nobody on the link has the address. The result then is that the host does
 *   not answer, even if it would a second later.
 * - ping of busybox sends one request and waits 10 seconds for the answer, whatever the timeout.
 * - The lookup of a host name adds up to 10 seconds for each name server that does not answer.
 *
 * @param host Name or address, not null.
 * @param timeout How long to wait for an answer, in seconds, at least 1. With 0, ping of iputils
 *        sends one request and waits 10 seconds; with a negative number it fails at once.
 * @param port The port to send from; null or empty to leave that to the routing.
 * @return 0 if the host answered, so this is no truth value. Any other value if it did not or if
 *         ping could not be run: what system() returned, a wait status or -1. The result is always
 *         -1 while the process ignores SIGCHLD or has SA_NOCLDWAIT set for it, and at times if a
 *         SIGCHLD handler in another thread waits for all children.
 */
int32_t CML_getHostAvailable(const char* host, int32_t timeout, const char* port);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
