// SPDX-License-Identifier: Apache-2.0
#ifndef FAKE_SERVICE_H
#define FAKE_SERVICE_H

#include <functional>

#include "ipc_object_stub.h"
#include "privacy_indicator_service_intf_stub.h"
#include "samples.h"
#include "support.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

using EventListener = Privacy::PrivacyEventListenerIntf;
using SwitchListener = Indicator::IndicatorSwitchListenerIntf;

/** Stands for an object of another process, which can die. Keeps the last request, and replies as it is set to. */
class FakeRemote : public IPCObjectStub {
public:
    bool IsProxyObject() const override
    {
        return true;
    }

    bool IsObjectDead() const override
    {
        return dead;
    }

    bool AddDeathRecipient(const sptr<DeathRecipient>& added) override
    {
        recipient = takesRecipients ? added : nullptr;
        return takesRecipients;
    }

    bool RemoveDeathRecipient(const sptr<DeathRecipient>& removed) override
    {
        const bool isKnown = takesRecipients && removed == recipient;
        recipient = isKnown ? nullptr : recipient;
        return isKnown;
    }

    int SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        std::exchange(whenCalled, [] {})();
        ++calls;
        header = {code, option.GetFlags(), option.GetWaitTime()};
        request = BytesOf(data);
        if (error != 0) {
            return error;
        }
        reply.SetMaxCapacity(size_t{8} << 20);
        reply.WriteBuffer(answer.data(), answer.size());
        return target != nullptr ? target->SendRequest(code, data, reply, option) : 0;
    }

    int error = 0;              // Of the transport's. Otherwise:
    sptr<IRemoteObject> target; // Serves the requests, if there is one. Otherwise:
    Bytes answer;
    std::function<void()> whenCalled = [] {}; // At the next request only.
    bool dead = false;
    bool takesRecipients = true;

    sptr<DeathRecipient> recipient;
    int calls = 0;
    std::vector<int64_t> header; // Code, flags and seconds to wait.
    Bytes request;
};

/** Writes down each call with its arguments, and returns what it is set to. Any thread may call it. */
class FakeService : public PrivacyIndicatorServiceIntfStub {
public:
    int32_t RegisterPrivacyEventListener(const std::string& dataType, const sptr<EventListener>& listener) override
    {
        return Called("RegisterEvent " + dataType, listener);
    }

    int32_t UnregisterPrivacyEventListener(const sptr<EventListener>& listener) override
    {
        return Called("UnregisterEvent", listener);
    }

    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<PrivacyEventDetail>& out) override
    {
        return Filled("Details " + std::to_string(userId), out, DETAIL);
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t sensor, std::vector<PrivacyEventDetail>& out) override
    {
        return Filled("Details " + std::to_string(userId) + " " + std::to_string(sensor), out, DETAIL);
    }

    int32_t GetActiveIndicators(std::vector<IndicatorData>& out) override
    {
        return Filled("Active", out, DATA);
    }

    int32_t TurnOnIndicator(
        int32_t sensor, const IndicatorPosition& position, const IndicatorSize& size, int32_t animation) override
    {
        return Called(
            "On " + std::to_string(sensor) + position.ToString() + size.ToString() + std::to_string(animation));
    }

    int32_t TurnOffIndicator(int32_t sensor, int32_t animation) override
    {
        return Called("Off " + std::to_string(sensor) + " " + std::to_string(animation));
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Called("RegisterSwitch", listener);
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Called("UnregisterSwitch", listener);
    }

    int32_t GetPermissionUsageDurationSummary(
        const PermissionUsageDurationQuery& query, std::vector<PermissionUsageDuration>& out) override
    {
        return Filled("Usage " + query.ToString(), out, DURATION);
    }

    int32_t NotifyPowerEvent(int32_t event) override
    {
        return Called("Power " + std::to_string(event));
    }

    /** The calls since the last time. */
    Lines Take()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(calls, {});
    }

    size_t elements = 0; // How many a query appends.
    int32_t result = 0;
    sptr<IRemoteObject> listenerObject; // Of the last call; null if it had none.

private:
    int32_t Called(const std::string& what, const sptr<IRemoteBroker>& listener = nullptr)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        calls.push_back(what);
        listenerObject = listener != nullptr ? listener->AsObject() : nullptr;
        return result;
    }

    template <typename T>
    int32_t Filled(const std::string& what, std::vector<T>& out, const Sample& sample)
    {
        out.insert(out.end(), elements, *Read<T>(sample.bytes));
        return Called(what);
    }

    std::mutex mutex;
    Lines calls;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // FAKE_SERVICE_H
