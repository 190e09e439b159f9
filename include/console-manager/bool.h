/** @file
 * The truth value of the settings.
 */
#ifndef CONSOLE_MANAGER_BOOL_H
#define CONSOLE_MANAGER_BOOL_H

#include <stdint.h>

/** A 32-bit word, 0 or 1 by convention, stored as given. */
typedef int32_t BOOL;

#endif
