// SPDX-License-Identifier: Apache-2.0
#ifndef NOTIFY_POWER_EVENT_H
#define NOTIFY_POWER_EVENT_H

#include <cstdint>

#include "privacy_indicator_export.h"

/**
 * Reports a power event, 0 or 1, to the service, and remembers it with its sender, so that the client can report it
 * again when the service comes back. 0; -1 for any other event, which changes nothing; or the service's code. Any
 * thread may call it; it blocks as the client's operations do.
 */
extern "C" PRIVACY_INDICATOR_EXPORT int32_t NotifyPowerEvent(int32_t event);

#endif // NOTIFY_POWER_EVENT_H
