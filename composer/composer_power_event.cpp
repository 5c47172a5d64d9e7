// SPDX-License-Identifier: Apache-2.0
#include "composer_power_event.h"

#include "notify_power_event.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer {

bool ComposerPowerEvent::IsValidEvent(int32_t event) { return static_cast<uint32_t>(event) < POWER_EVENT_COUNT; }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer
