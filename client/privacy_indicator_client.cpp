// SPDX-License-Identifier: Apache-2.0
#include "privacy_indicator_client.h"

#include <new>
#include <utility>

#include "composer_power_event.h"
#include "event_restorer.h"
#include "indicator_switch_listener_stub_impl.h"
#include "iremote_broker.h"
#include "iservice_registry.h"
#include "privacy_event_listener_stub_impl.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

namespace {

using Util::LogDebug;
using Util::LogError;
using Util::LogInfo;
using Util::LogWarn;
using Tag = Util::OstLog::Tag;

const Tag TAG = Tag::Create("PrivacyIndicator", Tag::DEFAULT_COMPONENT_TAG, Tag::DEFAULT_SUB_SYSTEM_TAG);

constexpr int32_t FAILURE = -1;

constexpr PrivacySensorType ALL_SENSORS[] = {
    PrivacySensorType::CAMERA, PrivacySensorType::MICROPHONE, PrivacySensorType::LOCATION};
constexpr int32_t ACCESS_STATE_OFF = 2;

std::string Quoted(const std::string& text)
{
    return "'" + text + "'";
}

} // namespace

PrivacyIndicatorClient& PrivacyIndicatorClient::GetInstance()
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
    // What a listener's destructor calls here must still be whole.
    const auto switches = std::exchange(switchListeners, {});
    const auto events = std::exchange(privacyEventListeners, {});
}

// The service.

void PrivacyIndicatorClient::InitializeProxy()
{
    constexpr const char* FUNCTION = "InitializeProxy";
    if (proxy != nullptr) {
        const sptr<IRemoteObject> known = proxy->AsObject();
        if (known != nullptr && !known->IsObjectDead()) {
            LogInfo(TAG, FUNCTION, "it has been initialized, ignore.");
            return;
        }
        LogInfo(TAG, FUNCTION, "iRemoteObject is dead, let's initialize proxy.");
        proxy = nullptr;
    }
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        LogError(TAG, FUNCTION, "SAM is nullptr, please check.");
        return;
    }
    const std::string id = std::to_string(PRIVACY_INDICATOR_SA_ID);
    const sptr<IRemoteObject> object = manager->GetSystemAbility(PRIVACY_INDICATOR_SA_ID);
    if (object == nullptr) {
        LogError(TAG, FUNCTION, "SA=%{public}s is nullptr, please check.", id.c_str());
        return;
    }
    if (object->IsObjectDead()) {
        LogError(TAG, FUNCTION, "SA is IsObjectDead, why load system ability return a dead SA?");
        return;
    }
    if (deathRecipient == nullptr) {
        LogInfo(TAG, FUNCTION, "new deathRecipient");
        deathRecipient = new (std::nothrow) DeathRecipient();
    }
    if (!object->AddDeathRecipient(deathRecipient)) {
        LogError(TAG, FUNCTION, "Sa AddDeathRecipient return false, please check.");
        return;
    }
    proxy = iface_cast<PrivacyIndicatorServiceIntf>(object);
    if (proxy != nullptr) {
        LogInfo(TAG, FUNCTION, "LoadSystemAbility succeed");
    } else {
        LogError(TAG, FUNCTION, "iface_cast SA=%{public}s is nullptr, there is nothing we can do.", id.c_str());
    }
}

void PrivacyIndicatorClient::ResetProxy()
{
    constexpr const char* FUNCTION = "ResetProxy";
    std::lock_guard<std::mutex> lock(proxyMutex);
    if (proxy == nullptr) {
        LogWarn(TAG, FUNCTION, "proxy is nullptr, ignore.");
        return;
    }
    const sptr<IRemoteObject> object = proxy->AsObject();
    if (object != nullptr) {
        object->RemoveDeathRecipient(deathRecipient);
        deathRecipient = nullptr;
        proxy = nullptr;
        LogInfo(TAG, FUNCTION, "remove deathRecipient and set proxy to nullptr done.");
    } else {
        LogWarn(TAG, FUNCTION, "iRemoteObject is nullptr, failed to RemoveDeathRecipient, ignore.");
        proxy = nullptr;
        LogInfo(TAG, FUNCTION, "set proxy to nullptr done.");
    }
}

void PrivacyIndicatorClient::DeathRecipient::OnRemoteDied(const wptr<IRemoteObject>& /* remote */)
{
    GetInstance().ResetProxy();
}

/** Has the gate run `operation` with the service, if there is one. `function` is whose name the log shows. */
template <typename Operation>
int32_t PrivacyIndicatorClient::CallService(const char* function, Operation operation)
{
    int32_t result = 0;
    WithSystemAbilityProxy(
        [function, operation = std::move(operation), &result](const sptr<PrivacyIndicatorServiceIntf>& service) {
            if (service == nullptr) {
                LogError(TAG, function, "proxy is nullptr, please check.");
                return;
            }
            result = operation(*service);
        });
    return result;
}

// Queries and switches.

int32_t PrivacyIndicatorClient::GetPrivacyEventDetails(
    int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails)
{
    constexpr const char* FUNCTION = "GetPrivacyEventDetails";
    const int32_t result = CallService(FUNCTION, [userId, &privacyEventDetails](PrivacyIndicatorServiceIntf& service) {
        return service.GetPrivacyEventDetails(userId, privacyEventDetails);
    });
    for (const auto& detail : privacyEventDetails) {
        LogDebug(TAG, FUNCTION, "%{public}s", Quoted(detail.ToString()).c_str());
    }
    return result;
}

int32_t PrivacyIndicatorClient::GetPrivacyEventDetailsByPrivacySensorType(int32_t userId,
    const PrivacySensorType& privacySensorType, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails)
{
    const auto sensor = static_cast<int32_t>(privacySensorType);
    // The other query's name is meant; so is that these lines are of level info.
    const int32_t result = CallService(
        "GetPrivacyEventDetails", [userId, sensor, &privacyEventDetails](PrivacyIndicatorServiceIntf& service) {
            return service.GetPrivacyEventDetailsByPrivacySensorType(userId, sensor, privacyEventDetails);
        });
    for (const auto& detail : privacyEventDetails) {
        LogInfo(TAG, "GetPrivacyEventDetailsByPrivacySensorType", "%{public}s", Quoted(detail.ToString()).c_str());
    }
    return result;
}

int32_t PrivacyIndicatorClient::GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators)
{
    constexpr const char* FUNCTION = "GetActiveIndicators";
    const int32_t result = CallService(FUNCTION,
        [&indicators](PrivacyIndicatorServiceIntf& service) { return service.GetActiveIndicators(indicators); });
    for (const auto& indicator : indicators) {
        LogDebug(TAG, FUNCTION, "%{public}s", Quoted(indicator.ToString()).c_str());
    }
    return result;
}

int32_t PrivacyIndicatorClient::TurnOnIndicator(const PrivacySensorType& privacySensorType,
    const Indicator::IndicatorPosition& position, const Indicator::IndicatorSize& size, int32_t animationType)
{
    constexpr const char* FUNCTION = "TurnOnIndicator";
    LogInfo(TAG, FUNCTION, "TurnOnIndicator");
    const auto sensor = static_cast<int32_t>(privacySensorType);
    return CallService(FUNCTION, [sensor, position, size, animationType](PrivacyIndicatorServiceIntf& service) {
        return service.TurnOnIndicator(sensor, position, size, animationType);
    });
}

int32_t PrivacyIndicatorClient::TurnOffIndicator(const PrivacySensorType& privacySensorType, int32_t userId)
{
    LogInfo(TAG, "TurnOffIndicator", "TurnOffIndicator");
    const auto sensor = static_cast<int32_t>(privacySensorType);
    // The other operation's name is meant.
    return CallService("TurnOnIndicator",
        [sensor, userId](PrivacyIndicatorServiceIntf& service) { return service.TurnOffIndicator(sensor, userId); });
}

int32_t PrivacyIndicatorClient::GetPermissionUsageDurationSummary(
    const Record::PermissionUsageDurationQuery& query, std::vector<Record::PermissionUsageDuration>& durations)
{
    constexpr const char* FUNCTION = "GetPermissionUsageDurationSummary";
    LogInfo(TAG, FUNCTION, "start GetPermissionUsageDurationSummary in client.");
    const int32_t result = CallService(FUNCTION, [&query, &durations](PrivacyIndicatorServiceIntf& service) {
        return service.GetPermissionUsageDurationSummary(query, durations);
    });
    LogInfo(TAG, FUNCTION, "stop GetPermissionUsageDurationSummary in client.");
    return result;
}

int32_t PrivacyIndicatorClient::NotifyPowerEvent(int32_t event)
{
    constexpr const char* FUNCTION = "NotifyPowerEvent";
    const std::string number = std::to_string(event);
    LogInfo(TAG, FUNCTION, "event: %{public}s", number.c_str());
    if (!Composer::ComposerPowerEvent::IsValidEvent(event)) {
        LogError(TAG, FUNCTION, "error event: %{public}s", number.c_str());
        return FAILURE;
    }
    return CallService(
        FUNCTION, [event](PrivacyIndicatorServiceIntf& service) { return service.NotifyPowerEvent(event); });
}

// Switch listeners.

int32_t PrivacyIndicatorClient::RegisterSwitchListenerStub()
{
    return CallService(
        "RegisterPrivacyIndicatorSwitchListener", [stub = switchListenerStub](PrivacyIndicatorServiceIntf& service) {
            return service.RegisterPrivacyIndicatorSwitchListener(stub);
        });
}

int32_t PrivacyIndicatorClient::RegisterPrivacyIndicatorSwitchListener(
    const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener)
{
    constexpr const char* FUNCTION = "RegisterPrivacyIndicatorSwitchListener";
    LogInfo(TAG, FUNCTION, "start RegisterPrivacyIndicatorSwitchListener in client.");
    if (listener == nullptr) {
        LogError(TAG, FUNCTION, "listener is null!");
        return FAILURE;
    }
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    if (!switchListeners.empty()) {
        switchListeners.insert(listener);
        return 0;
    }
    if (switchListenerStub == nullptr) {
        switchListenerStub = new (std::nothrow) Indicator::IndicatorSwitchListenerStubImpl(indicatorSwitchCallback);
        if (switchListenerStub == nullptr) {
            LogError(TAG, FUNCTION, "failed to create privacy indicator switch listener stub");
            return FAILURE;
        }
    }
    const int32_t result = RegisterSwitchListenerStub();
    switchListeners.insert(listener);
    return result;
}

int32_t PrivacyIndicatorClient::UnregisterPrivacyIndicatorSwitchListener(
    const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener)
{
    constexpr const char* FUNCTION = "UnregisterPrivacyIndicatorSwitchListener";
    if (listener == nullptr) {
        LogError(TAG, FUNCTION, "listener is null!");
        return FAILURE;
    }
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    switchListeners.erase(listener);
    if (!switchListeners.empty()) {
        return 0;
    }
    // Also when it was never registered: meant.
    return CallService(FUNCTION, [stub = switchListenerStub](PrivacyIndicatorServiceIntf& service) {
        return service.UnregisterPrivacyIndicatorSwitchListener(stub);
    });
}

void PrivacyIndicatorClient::DispatchOnIndicatorSwitchChanged(const Indicator::IndicatorData& indicatorData)
{
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    for (const auto& listener : switchListeners) {
        LogInfo(TAG, "DispatchOnIndicatorSwitchChanged", "start DispatchOnIndicatorSwitchChanged in client.");
        listener->OnSwitchChanged(indicatorData);
    }
}

void PrivacyIndicatorClient::ReRegisterPrivacyIndicatorSwitchListener()
{
    LogInfo(TAG, "ReRegisterPrivacyIndicatorSwitchListener", "begin.");
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    if (switchListenerStub != nullptr) {
        GetInstance().RegisterSwitchListenerStub();
    }
}

// Privacy event listeners.

int32_t PrivacyIndicatorClient::RegisterEventListenerStub(const std::string& dataType)
{
    return CallService("RegisterPrivacyEventListener", [this, dataType](PrivacyIndicatorServiceIntf& service) {
        return service.RegisterPrivacyEventListener(dataType, privacyEventStubs[dataType]);
    });
}

int32_t PrivacyIndicatorClient::RegisterPrivacyEventListener(
    const std::string& dataType, const std::shared_ptr<Privacy::PrivacyEventListener>& listener)
{
    constexpr const char* FUNCTION = "RegisterPrivacyEventListener";
    if (listener == nullptr) {
        LogError(TAG, FUNCTION, "privacyEventListener is null!");
        return FAILURE;
    }
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    const auto known = privacyEventListeners.find(dataType);
    if (known != privacyEventListeners.end() && !known->second.empty()) {
        known->second.insert(listener);
        return 0;
    }
    if (privacyEventStubs.count(dataType) == 0) {
        const sptr<Privacy::PrivacyEventListenerIntf> stub(
            new (std::nothrow) Privacy::PrivacyEventListenerStubImpl(privacyEventCallback));
        if (stub == nullptr) {
            LogError(TAG, FUNCTION, "failed to create privacy indicator listener stub");
            return FAILURE;
        }
        privacyEventStubs[dataType] = stub;
    }
    privacyEventListeners[dataType].insert(listener);
    return RegisterEventListenerStub(dataType);
}

int32_t PrivacyIndicatorClient::UnregisterPrivacyEventListener(
    const std::shared_ptr<Privacy::PrivacyEventListener>& listener)
{
    constexpr const char* FUNCTION = "UnregisterPrivacyEventListener";
    if (listener == nullptr) {
        LogError(TAG, FUNCTION, "privacyEventListener is null!");
        return FAILURE;
    }
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    std::string dataType;
    for (auto entry = privacyEventListeners.begin(); entry != privacyEventListeners.end(); ++entry) {
        if (entry->second.erase(listener) == 0) {
            continue;
        }
        if (!entry->second.empty()) {
            return 0;
        }
        dataType = entry->first;
        privacyEventListeners.erase(entry);
        break;
    }
    // A listener that was found nowhere is looked for under the empty data type: meant.
    if (privacyEventStubs.count(dataType) == 0) {
        LogWarn(TAG, FUNCTION, "dataType %{public}s is empty callback!", Quoted(dataType).c_str());
        return FAILURE;
    }
    return CallService(FUNCTION, [this, dataType](PrivacyIndicatorServiceIntf& service) {
        return service.UnregisterPrivacyEventListener(privacyEventStubs[dataType]);
    });
}

void PrivacyIndicatorClient::DispatchOnPrivacyEventChanged(
    const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos)
{
    constexpr const char* FUNCTION = "DispatchOnPrivacyEventChanged";
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    // An unknown data type gets an entry, which stays: meant.
    for (const auto& listener : privacyEventListeners[dataType]) {
        LogInfo(TAG, FUNCTION, "start DispatchOnPrivacyEventChanged in client.");
        for (const auto& info : infos) {
            LogDebug(TAG, FUNCTION, "%{public}s", Quoted(info.ToString()).c_str());
        }
        listener->OnPrivacyEventChanged(dataType, infos);
    }
}

void PrivacyIndicatorClient::ReRegisterPrivacyEventListener()
{
    LogInfo(TAG, "ReRegisterPrivacyEventListener", "begin.");
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    for (const auto& [dataType, stub] : privacyEventStubs) {
        if (stub != nullptr) {
            GetInstance().RegisterEventListenerStub(dataType);
        }
    }
}

// The service's availability.

void PrivacyIndicatorClient::SubscribePrivacyIndicatorAbility()
{
    constexpr const char* FUNCTION = "SubscribePrivacyIndicatorAbility";
    LogDebug(TAG, FUNCTION, "SubscribePrivacyIndicatorAbility");
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        LogError(TAG, FUNCTION, "saMgrProxy is null!");
        return;
    }
    const sptr<PrivacyIndicatorServiceListener> listener(new (std::nothrow) PrivacyIndicatorServiceListener());
    const int32_t result = manager->SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, listener);
    if (result != 0) {
        LogError(TAG, FUNCTION, "SubscribeSystemAbility for sa: %{public}s failed!, ret: %{public}s",
            std::to_string(PRIVACY_INDICATOR_SA_ID).c_str(), std::to_string(result).c_str());
    }
}

void PrivacyIndicatorClient::PrivacyIndicatorServiceListener::OnAddSystemAbility(
    int32_t systemAbilityId, const std::string& /* deviceId */)
{
    LogInfo(TAG, "OnAddSystemAbility", "OnAddSystemAbility: saId=%{public}s", std::to_string(systemAbilityId).c_str());
    if (systemAbilityId != PRIVACY_INDICATOR_SA_ID) {
        return;
    }
    Composer::EventRestorer::GetInstance().NotifyPowerEventByCache();
    GetInstance().ReRegisterPrivacyIndicatorSwitchListener();
    GetInstance().ReRegisterPrivacyEventListener();
}

void PrivacyIndicatorClient::PrivacyIndicatorServiceListener::OnRemoveSystemAbility(
    int32_t systemAbilityId, const std::string& /* deviceId */)
{
    LogInfo(TAG, "OnRemoveSystemAbility", "OnRemoveSystemAbility: saId=%{public}s",
        std::to_string(systemAbilityId).c_str());
    if (systemAbilityId != PRIVACY_INDICATOR_SA_ID) {
        return;
    }
    std::vector<Privacy::PrivacyEventRemindInfo> infos;
    for (const PrivacySensorType sensor : ALL_SENSORS) {
        Indicator::IndicatorData data;
        data.privacySensorType = sensor;
        data.state = Indicator::IndicatorState::OFF;
        data.color = "#000000";
        GetInstance().DispatchOnIndicatorSwitchChanged(data);

        Privacy::PrivacyEventRemindInfo info;
        info.privacySensorType = static_cast<int32_t>(sensor);
        info.privacyAccessState = ACCESS_STATE_OFF;
        infos.push_back(std::move(info));
    }
    GetInstance().DispatchOnPrivacyEventChanged("sensorStateChange", infos);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
