// SPDX-License-Identifier: Apache-2.0
// The client's part that keeps the listeners. With the service it registers one stub for all switch listeners, and one
// for the event listeners of each data type.
#include <new>

#include "call_service.h"
#include "client_log.h"
#include "format_utils.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

using Util::LogError;
using Util::LogInfo;
using Util::LogWarn;
using Util::Quoted;

// Switch listeners.

int32_t PrivacyIndicatorClient::RegisterSwitchListenerStub() noexcept
{
    return CallService(*this, "RegisterPrivacyIndicatorSwitchListener", [this](PrivacyIndicatorServiceIntf& service) {
        return service.RegisterPrivacyIndicatorSwitchListener(switchListenerStub);
    });
}

int32_t PrivacyIndicatorClient::RegisterPrivacyIndicatorSwitchListener(
    const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener) noexcept
{
    constexpr const char* FUNCTION = "RegisterPrivacyIndicatorSwitchListener";
    LogInfo(CLIENT_TAG, FUNCTION, "start RegisterPrivacyIndicatorSwitchListener in client.");
    if (listener == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "listener is null!");
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
            LogError(CLIENT_TAG, FUNCTION, "failed to create privacy indicator switch listener stub");
            return FAILURE;
        }
    }
    const int32_t result = RegisterSwitchListenerStub();
    switchListeners.insert(listener);
    return result;
}

int32_t PrivacyIndicatorClient::UnregisterPrivacyIndicatorSwitchListener(
    const std::shared_ptr<Indicator::IndicatorSwitchListener>& listener) noexcept
{
    constexpr const char* FUNCTION = "UnregisterPrivacyIndicatorSwitchListener";
    if (listener == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "listener is null!");
        return FAILURE;
    }
    decltype(switchListeners)::node_type removed; // Its destructor may call the client: after the lock.
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    removed = switchListeners.extract(listener);
    if (!switchListeners.empty()) {
        return 0;
    }
    // Contract: the service is called also when the listener was never registered.
    return CallService(*this, FUNCTION, [this](PrivacyIndicatorServiceIntf& service) {
        return service.UnregisterPrivacyIndicatorSwitchListener(switchListenerStub);
    });
}

void PrivacyIndicatorClient::DispatchOnIndicatorSwitchChanged(const Indicator::IndicatorData& indicatorData) noexcept
{
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    for (const auto& listener : switchListeners) {
        LogInfo(CLIENT_TAG, "DispatchOnIndicatorSwitchChanged", "start DispatchOnIndicatorSwitchChanged in client.");
        listener->OnSwitchChanged(indicatorData);
    }
}

void PrivacyIndicatorClient::ReRegisterPrivacyIndicatorSwitchListener() noexcept
{
    LogInfo(CLIENT_TAG, "ReRegisterPrivacyIndicatorSwitchListener", "begin.");
    std::lock_guard<std::mutex> lock(switchListenerMutex);
    if (switchListenerStub != nullptr) {
        RegisterSwitchListenerStub();
    }
}

// Privacy event listeners.

int32_t PrivacyIndicatorClient::RegisterEventListenerStub(const std::string& dataType) noexcept
{
    return CallService(*this, "RegisterPrivacyEventListener", [this, &dataType](PrivacyIndicatorServiceIntf& service) {
        return service.RegisterPrivacyEventListener(dataType, privacyEventStubs[dataType]);
    });
}

int32_t PrivacyIndicatorClient::RegisterPrivacyEventListener(
    const std::string& dataType, const std::shared_ptr<Privacy::PrivacyEventListener>& listener) noexcept
{
    constexpr const char* FUNCTION = "RegisterPrivacyEventListener";
    if (listener == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "privacyEventListener is null!");
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
            LogError(CLIENT_TAG, FUNCTION, "failed to create privacy indicator listener stub");
            return FAILURE;
        }
        privacyEventStubs[dataType] = stub;
    }
    privacyEventListeners[dataType].insert(listener);
    return RegisterEventListenerStub(dataType);
}

int32_t PrivacyIndicatorClient::UnregisterPrivacyEventListener(
    const std::shared_ptr<Privacy::PrivacyEventListener>& listener) noexcept
{
    constexpr const char* FUNCTION = "UnregisterPrivacyEventListener";
    if (listener == nullptr) {
        LogError(CLIENT_TAG, FUNCTION, "privacyEventListener is null!");
        return FAILURE;
    }
    decltype(privacyEventListeners)::mapped_type::node_type removed; // As above.
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    std::string dataType;
    for (auto entry = privacyEventListeners.begin(); entry != privacyEventListeners.end(); ++entry) {
        removed = entry->second.extract(listener);
        if (removed.empty()) {
            continue;
        }
        if (!entry->second.empty()) {
            return 0;
        }
        dataType = entry->first;
        privacyEventListeners.erase(entry);
        break;
    }
    // Contract: a listener that is registered nowhere counts as one of the empty data type.
    if (privacyEventStubs.count(dataType) == 0) {
        LogWarn(CLIENT_TAG, FUNCTION, "dataType %{public}s is empty callback!", Quoted(dataType).c_str());
        return FAILURE;
    }
    return CallService(*this, FUNCTION, [this, &dataType](PrivacyIndicatorServiceIntf& service) {
        return service.UnregisterPrivacyEventListener(privacyEventStubs[dataType]);
    });
}

void PrivacyIndicatorClient::DispatchOnPrivacyEventChanged(
    const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) noexcept
{
    constexpr const char* FUNCTION = "DispatchOnPrivacyEventChanged";
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    // Contract: an unknown data type gets an empty entry, which stays.
    for (const auto& listener : privacyEventListeners[dataType]) {
        LogInfo(CLIENT_TAG, FUNCTION, "start DispatchOnPrivacyEventChanged in client.");
        LogRecords(LOG_DEBUG, FUNCTION, infos);
        listener->OnPrivacyEventChanged(dataType, infos);
    }
}

void PrivacyIndicatorClient::ReRegisterPrivacyEventListener() noexcept
{
    LogInfo(CLIENT_TAG, "ReRegisterPrivacyEventListener", "begin.");
    std::lock_guard<std::mutex> lock(privacyEventMutex);
    for (const auto& entry : privacyEventStubs) {
        RegisterEventListenerStub(entry.first);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
