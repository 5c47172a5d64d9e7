// SPDX-License-Identifier: Apache-2.0
#include "event_restorer.h"

#include <optional> // For a device's ipc_skeleton.h, which does not include it.
#include <string>

#include "composer_power_event.h"
#include "ipc_skeleton.h"
#include "notify_power_event.h"
#include "privacy_indicator_client.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer {

namespace {

using Util::LogError;
using Util::LogInfo;

const auto TAG = Util::FileTag("PrivacyIndicator");

} // namespace

EventRestorer& EventRestorer::GetInstance()
{
    static EventRestorer instance;
    return instance;
}

void EventRestorer::UpdateEvent(int32_t newEvent) noexcept
{
    if (!ComposerPowerEvent::IsValidEvent(newEvent)) {
        LogError(TAG, "UpdateEvent", "error event: %{public}s", std::to_string(newEvent).c_str());
        return;
    }
    event = newEvent;
    uid = static_cast<int32_t>(IPCSkeleton::GetCallingUid());
}

void EventRestorer::NotifyPowerEventByCache() noexcept
{
    const int32_t sender = uid;
    LogInfo(TAG, "NotifyPowerEventByCache", "uid: %{public}s", std::to_string(sender).c_str());
    if (sender != POWER_EVENT_REPLAY_UID) {
        return;
    }
    const int32_t last = event;
    LogInfo(TAG, "NotifyPowerEventByCache", "To notify current event: %{public}s", std::to_string(last).c_str());
    // Not by the exported function, which would store this process as the sender.
    PrivacyIndicatorClient::GetInstance().NotifyPowerEvent(last);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer
