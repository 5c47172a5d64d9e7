// SPDX-License-Identifier: Apache-2.0
#ifndef NOTIFY_POWER_EVENT_H
#define NOTIFY_POWER_EVENT_H

#include <cstdint>

#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer {

/** The valid power events are the numbers below this one. What each of them stands for is up to the service. */
inline constexpr uint32_t POWER_EVENT_COUNT = 2;

/** The user whose power events are sent to the service again when it comes back. */
inline constexpr int32_t POWER_EVENT_REPLAY_UID = 3036;

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer

/**
 * Reports a power event to the service. The event is also remembered together with the calling user, until the next
 * one: if the user is POWER_EVENT_REPLAY_UID, the client sends the event again when the service comes back. The calling
 * user is the one whose request this thread is serving, or else this process's own.
 *
 * Returns 0; -1 if the event is not valid, which changes nothing; or another failure's code, as PrivacyIndicatorClient
 * describes. Any thread may call it. It blocks as the operations of PrivacyIndicatorClient do.
 */
extern "C" PRIVACY_INDICATOR_EXPORT int32_t NotifyPowerEvent(int32_t event) noexcept;

#endif // NOTIFY_POWER_EVENT_H
