// SPDX-License-Identifier: Apache-2.0
#ifndef COMPOSER_POWER_EVENT_H
#define COMPOSER_POWER_EVENT_H

#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer {

/** The rule for power events. */
class ComposerPowerEvent {
public:
    /** Whether `event` is 0 or 1. */
    static bool IsValidEvent(int32_t event);
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer

#endif // COMPOSER_POWER_EVENT_H
