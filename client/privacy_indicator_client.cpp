// SPDX-License-Identifier: Apache-2.0
// The client itself, its connection to the service, and the requests that are not about listeners.
#include "privacy_indicator_client.h"

#include <new>
#include <utility>

#include "call_service.h"
#include "client_log.h"
#include "composer_power_event.h"
#include "iremote_broker.h"
#include "iservice_registry.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

using Util::LogError;
using Util::LogInfo;
using Util::LogWarn;

PrivacyIndicatorClient& PrivacyIndicatorClient::GetInstance() noexcept
{
    static PrivacyIndicatorClient instance;
    return instance;
}

PrivacyIndicatorClient::PrivacyIndicatorClient()
{
    privacyEventCallback = [this](
                               const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) {
        DispatchOnPrivacyEventChanged(dataType, infos);
    };
    indicatorSwitchCallback = [this](const Indicator::IndicatorData& data) { DispatchOnIndicatorSwitchChanged(data); };
    SubscribePrivacyIndicatorAbility();
}

PrivacyIndicatorClient::~PrivacyIndicatorClient()
{
    // A listener's destructor may call the client, whose members must all still exist then.
    const auto switches = std::exchange(switchListeners, {});
    const auto events = std::exchange(privacyEventListeners, {});
}

// The connection to the service.

void PrivacyIndicatorClient::InitializeProxy() noexcept
{
    constexpr const char* FUNCTION = "InitializeProxy";
    if (proxy != nullptr) {
        const sptr<IRemoteObject> known = proxy->AsObject();
        if (known != nullptr && !known->IsObjectDead()) {
            LogInfo(CLIENT_TAG, FUNCTION, "it has been initialized, ignore.");
            return;
        }
        LogInfo(CLIENT_TAG, FUNCTION, "iRemoteObject is dead, let's initialize proxy.");
        proxy = nullptr;
    }
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "SAM is nullptr, please check.");
        return;
    }
    const std::string id = std::to_string(PRIVACY_INDICATOR_SA_ID);
    const sptr<IRemoteObject> object = manager->GetSystemAbility(PRIVACY_INDICATOR_SA_ID);
    if (object == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "SA=%{public}s is nullptr, please check.", id.c_str());
        return;
    }
    if (object->IsObjectDead()) {
        LogError(CLIENT_TAG, FUNCTION, "SA is IsObjectDead, why load system ability return a dead SA?");
        return;
    }
    if (deathRecipient == nullptr) {
        LogInfo(CLIENT_TAG, FUNCTION, "new deathRecipient");
        deathRecipient = new (std::nothrow) DeathRecipient();
    }
    if (!object->AddDeathRecipient(deathRecipient)) {
        LogError(CLIENT_TAG, FUNCTION, "Sa AddDeathRecipient return false, please check.");
        return;
    }
    proxy = iface_cast<PrivacyIndicatorServiceIntf>(object);
    if (proxy != nullptr) {
        LogInfo(CLIENT_TAG, FUNCTION, "LoadSystemAbility succeed");
    } else {
        LogError(CLIENT_TAG, FUNCTION, "iface_cast SA=%{public}s is nullptr, there is nothing we can do.", id.c_str());
    }
}

void PrivacyIndicatorClient::ResetProxy() noexcept
{
    constexpr const char* FUNCTION = "ResetProxy";
    std::lock_guard<std::mutex> lock(proxyMutex);
    if (proxy == nullptr) {
        LogWarn(CLIENT_TAG, FUNCTION, "proxy is nullptr, ignore.");
        return;
    }
    const sptr<IRemoteObject> object = proxy->AsObject();
    if (object != nullptr) {
        object->RemoveDeathRecipient(deathRecipient);
        deathRecipient = nullptr;
        proxy = nullptr;
        LogInfo(CLIENT_TAG, FUNCTION, "remove deathRecipient and set proxy to nullptr done.");
    } else {
        LogWarn(CLIENT_TAG, FUNCTION, "iRemoteObject is nullptr, failed to RemoveDeathRecipient, ignore.");
        proxy = nullptr;
        LogInfo(CLIENT_TAG, FUNCTION, "set proxy to nullptr done.");
    }
}

void PrivacyIndicatorClient::DeathRecipient::OnRemoteDied(const wptr<IRemoteObject>& /* remote */) noexcept
{
    GetInstance().ResetProxy();
}

// Requests.

int32_t PrivacyIndicatorClient::GetPrivacyEventDetails(
    int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept
{
    constexpr const char* FUNCTION = "GetPrivacyEventDetails";
    const int32_t result =
        CallService(*this, FUNCTION, [userId, &privacyEventDetails](PrivacyIndicatorServiceIntf& service) {
            return service.GetPrivacyEventDetails(userId, privacyEventDetails);
        });
    LogRecords(LOG_DEBUG, FUNCTION, privacyEventDetails);
    return result;
}

int32_t PrivacyIndicatorClient::GetPrivacyEventDetailsByPrivacySensorType(int32_t userId,
    const PrivacySensorType& privacySensorType, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept
{
    const auto sensor = static_cast<int32_t>(privacySensorType);
    // Contract: the other query's name; and, unlike there, the lines below are of level info.
    const int32_t result = CallService(
        *this, "GetPrivacyEventDetails", [userId, sensor, &privacyEventDetails](PrivacyIndicatorServiceIntf& service) {
            return service.GetPrivacyEventDetailsByPrivacySensorType(userId, sensor, privacyEventDetails);
        });
    LogRecords(LOG_INFO, "GetPrivacyEventDetailsByPrivacySensorType", privacyEventDetails);
    return result;
}

int32_t PrivacyIndicatorClient::GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) noexcept
{
    constexpr const char* FUNCTION = "GetActiveIndicators";
    const int32_t result = CallService(*this, FUNCTION,
        [&indicators](PrivacyIndicatorServiceIntf& service) { return service.GetActiveIndicators(indicators); });
    LogRecords(LOG_DEBUG, FUNCTION, indicators);
    return result;
}

int32_t PrivacyIndicatorClient::TurnOnIndicator(const PrivacySensorType& privacySensorType,
    const Indicator::IndicatorPosition& position, const Indicator::IndicatorSize& size, int32_t animationType) noexcept
{
    constexpr const char* FUNCTION = "TurnOnIndicator";
    LogInfo(CLIENT_TAG, FUNCTION, "TurnOnIndicator");
    const auto sensor = static_cast<int32_t>(privacySensorType);
    // Contract: the records are copied first, so that a change that another thread makes meanwhile is not sent.
    return CallService(*this, FUNCTION, [sensor, position, size, animationType](PrivacyIndicatorServiceIntf& service) {
        return service.TurnOnIndicator(sensor, position, size, animationType);
    });
}

int32_t PrivacyIndicatorClient::TurnOffIndicator(const PrivacySensorType& privacySensorType, int32_t userId) noexcept
{
    LogInfo(CLIENT_TAG, "TurnOffIndicator", "TurnOffIndicator");
    const auto sensor = static_cast<int32_t>(privacySensorType);
    // Contract: the other operation's name.
    return CallService(*this, "TurnOnIndicator",
        [sensor, userId](PrivacyIndicatorServiceIntf& service) { return service.TurnOffIndicator(sensor, userId); });
}

int32_t PrivacyIndicatorClient::GetPermissionUsageDurationSummary(
    const Record::PermissionUsageDurationQuery& query, std::vector<Record::PermissionUsageDuration>& durations) noexcept
{
    constexpr const char* FUNCTION = "GetPermissionUsageDurationSummary";
    LogInfo(CLIENT_TAG, FUNCTION, "start GetPermissionUsageDurationSummary in client.");
    const int32_t result = CallService(*this, FUNCTION, [&query, &durations](PrivacyIndicatorServiceIntf& service) {
        return service.GetPermissionUsageDurationSummary(query, durations);
    });
    LogInfo(CLIENT_TAG, FUNCTION, "stop GetPermissionUsageDurationSummary in client.");
    return result;
}

int32_t PrivacyIndicatorClient::NotifyPowerEvent(int32_t event) noexcept
{
    constexpr const char* FUNCTION = "NotifyPowerEvent";
    const std::string number = std::to_string(event);
    LogInfo(CLIENT_TAG, FUNCTION, "event: %{public}s", number.c_str());
    if (!Composer::ComposerPowerEvent::IsValidEvent(event)) {
        LogError(CLIENT_TAG, FUNCTION, "error event: %{public}s", number.c_str());
        return FAILURE;
    }
    return CallService(
        *this, FUNCTION, [event](PrivacyIndicatorServiceIntf& service) { return service.NotifyPowerEvent(event); });
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
