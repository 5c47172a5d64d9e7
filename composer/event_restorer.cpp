// SPDX-License-Identifier: Apache-2.0
#include "event_restorer.h"

#include <string>

#include "composer_power_event.h"
#include "ipc_skeleton.h"
#include "privacy_indicator_client.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer {

namespace {

using Util::LogError;
using Util::LogInfo;
using Tag = Util::OstLog::Tag;

const Tag TAG = Tag::Create("PrivacyIndicator", Tag::DEFAULT_COMPONENT_TAG, Tag::DEFAULT_SUB_SYSTEM_TAG);

constexpr int32_t POWER_EVENT_REPLAY_UID = 3036;

} // namespace

EventRestorer& EventRestorer::GetInstance()
{
    static EventRestorer instance;
    return instance;
}

void EventRestorer::UpdateEvent(int32_t newEvent)
{
    if (!ComposerPowerEvent::IsValidEvent(newEvent)) {
        LogError(TAG, "UpdateEvent", "error event: %{public}s", std::to_string(newEvent).c_str());
        return;
    }
    event = newEvent;
    uid = static_cast<int32_t>(IPCSkeleton::GetCallingUid());
}

void EventRestorer::NotifyPowerEventByCache()
{
    const int32_t sender = uid;
    LogInfo(TAG, "NotifyPowerEventByCache", "uid: %{public}s", std::to_string(sender).c_str());
    if (sender != POWER_EVENT_REPLAY_UID) {
        return;
    }
    const int32_t last = event;
    LogInfo(TAG, "NotifyPowerEventByCache", "To notify current event: %{public}s", std::to_string(last).c_str());
    // Not through the exported function: a replay must not put this process in the sender's place.
    PrivacyIndicatorClient::GetInstance().NotifyPowerEvent(last);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Composer
