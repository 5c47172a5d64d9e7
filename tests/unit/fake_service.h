// SPDX-License-Identifier: Apache-2.0
#ifndef FAKE_SERVICE_H
#define FAKE_SERVICE_H

#include <functional>
#include <optional>

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
    bool IsProxyObject() const override { return true; }

    bool IsObjectDead() const override { return dead; }

    bool AddDeathRecipient(const sptr<DeathRecipient>& added) override
    {
        recipient = takesRecipients ? added : nullptr;
        return takesRecipients;
    }

    bool RemoveDeathRecipient(const sptr<DeathRecipient>& removed) override
    {
        recipient = removed == recipient ? nullptr : recipient;
        return takesRecipients;
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
        const int result = target != nullptr ? target->SendRequest(code, data, reply, option) : 0;
        replied = BytesOf(reply);
        return result;
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
    Bytes replied;
};

/** Adds each call to the journal, its arguments as they travel but for a listener, and returns what it is set to. */
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
        return Filled("Details" + I32(userId), out, DETAIL);
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t sensor, std::vector<PrivacyEventDetail>& out) override
    {
        return Filled("DetailsOf" + I32(userId) + I32(sensor), out, DETAIL);
    }

    int32_t GetActiveIndicators(std::vector<IndicatorData>& out) override { return Filled("Active", out, DATA); }

    int32_t TurnOnIndicator(
        int32_t sensor, const IndicatorPosition& position, const IndicatorSize& size, int32_t animation) override
    {
        return Called("On" + I32(sensor) + Marshalled(position) + Marshalled(size) + I32(animation));
    }

    int32_t TurnOffIndicator(int32_t sensor, int32_t animation) override
    {
        return Called("Off" + I32(sensor) + I32(animation));
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
        return Filled("Usage" + Marshalled(query), out, DURATION);
    }

    int32_t NotifyPowerEvent(int32_t event) override { return Called("Power" + I32(event)); }

    std::optional<Bytes> record; // The one that a query appends: none that is readable for a new one.
    size_t elements = 0;         // And how often.
    int32_t result = 0;
    std::function<void()> whenCalled = [] {};
    sptr<IRemoteObject> listenerObject; // Of the last call; null if it had none.

private:
    int32_t Called(const Bytes& call, const sptr<IRemoteBroker>& listener = nullptr)
    {
        Journal::Add(call);
        listenerObject = listener != nullptr ? listener->AsObject() : nullptr;
        whenCalled();
        return result;
    }

    template <typename T>
    int32_t Filled(const Bytes& call, std::vector<T>& out, const Sample& sample)
    {
        Failing::nthNew = 0; // The fake itself has memory.
        const auto chosen = Read<T>(record.value_or(sample.bytes));
        out.insert(out.end(), elements, chosen != nullptr ? *chosen : T());
        return Called(call);
    }
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // FAKE_SERVICE_H
