// SPDX-License-Identifier: Apache-2.0
// The client's part that follows the service's coming and going.
#include <new>
#include <string>
#include <vector>

#include "client_log.h"
#include "event_restorer.h"
#include "iservice_registry.h"
#include "privacy_event_values.h"
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

using Util::LogDebug;
using Util::LogError;
using Util::LogInfo;

void PrivacyIndicatorClient::SubscribePrivacyIndicatorAbility() noexcept
{
    constexpr const char* FUNCTION = "SubscribePrivacyIndicatorAbility";
    LogDebug(CLIENT_TAG, FUNCTION, "SubscribePrivacyIndicatorAbility");
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "saMgrProxy is null!");
        return;
    }
    const sptr<PrivacyIndicatorServiceListener> listener(new (std::nothrow) PrivacyIndicatorServiceListener());
    const int32_t result = manager->SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, listener);
    if (result != 0) {
        LogError(CLIENT_TAG, FUNCTION, "SubscribeSystemAbility for sa: %{public}s failed!, ret: %{public}s",
            std::to_string(PRIVACY_INDICATOR_SA_ID).c_str(), std::to_string(result).c_str());
    }
}

void PrivacyIndicatorClient::PrivacyIndicatorServiceListener::OnAddSystemAbility(
    int32_t systemAbilityId, const std::string& /* deviceId */) noexcept
{
    LogInfo(CLIENT_TAG, "OnAddSystemAbility", "OnAddSystemAbility: saId=%{public}s",
        std::to_string(systemAbilityId).c_str());
    if (systemAbilityId != PRIVACY_INDICATOR_SA_ID) {
        return;
    }
    Composer::EventRestorer::GetInstance().NotifyPowerEventByCache();
    PrivacyIndicatorClient& client = GetInstance();
    client.ReRegisterPrivacyIndicatorSwitchListener();
    client.ReRegisterPrivacyEventListener();
}

void PrivacyIndicatorClient::PrivacyIndicatorServiceListener::OnRemoveSystemAbility(
    int32_t systemAbilityId, const std::string& /* deviceId */) noexcept
{
    LogInfo(CLIENT_TAG, "OnRemoveSystemAbility", "OnRemoveSystemAbility: saId=%{public}s",
        std::to_string(systemAbilityId).c_str());
    if (systemAbilityId != PRIVACY_INDICATOR_SA_ID) {
        return;
    }
    PrivacyIndicatorClient& client = GetInstance();
    std::vector<Privacy::PrivacyEventRemindInfo> infos;
    for (const auto sensor : {PrivacySensorType::CAMERA, PrivacySensorType::MICROPHONE, PrivacySensorType::LOCATION}) {
        Indicator::IndicatorData data;
        data.privacySensorType = sensor;
        data.state = Indicator::IndicatorState::OFF;
        data.color = "#000000";
        client.DispatchOnIndicatorSwitchChanged(data);

        Privacy::PrivacyEventRemindInfo info;
        info.privacySensorType = static_cast<int32_t>(sensor);
        info.privacyAccessState = Privacy::ACCESS_STATE_OFF;
        infos.push_back(info);
    }
    client.DispatchOnPrivacyEventChanged(Privacy::SENSOR_STATE_CHANGE, infos);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
