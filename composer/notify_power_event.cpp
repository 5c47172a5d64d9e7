// SPDX-License-Identifier: Apache-2.0
#include "notify_power_event.h"

#include "event_restorer.h"
#include "privacy_indicator_client.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

int32_t NotifyPowerEvent(int32_t event) noexcept
{
    Composer::EventRestorer::GetInstance().UpdateEvent(event);
    return PrivacyIndicatorClient::GetInstance().NotifyPowerEvent(event);
}
