// SPDX-License-Identifier: Apache-2.0
// A small service as it should be, or with one fault: `faulty_service_process [FAULT]`. It ends with its input.
#include <cstdio>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "iservice_registry.h"
#include "privacy_indicator_service_intf_stub.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

namespace {

constexpr size_t MAX_LISTENERS = 200;

class FaultyService : public PrivacyIndicatorServiceIntfStub, public IRemoteObject::DeathRecipient {
public:
    explicit FaultyService(std::string fault) : fault_(std::move(fault)) {}

    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (fault_ == "any-token") {
            data.ReadInterfaceToken();
            MessageParcel checked;
            checked.WriteInterfaceToken(GetDescriptor());
            const size_t size = data.GetReadableBytes();
            if (code == GET_ACTIVE_INDICATORS && size == 0) {
                return PrivacyIndicatorServiceIntfStub::OnRemoteRequest(code, checked, reply, option);
            }
            data.RewindRead(0);
        }
        const bool isKnown = code >= REGISTER_PRIVACY_EVENT_LISTENER && code <= NOTIFY_POWER_EVENT;
        const int32_t status = PrivacyIndicatorServiceIntfStub::OnRemoteRequest(code, data, reply, option);
        return fault_ == "any-code" && !isKnown && status != TOKEN_MISMATCH ? 0 : status;
    }

    int32_t RegisterPrivacyEventListener(
        const std::string& /* dataType */, const sptr<Privacy::PrivacyEventListenerIntf>& /* listener */) override
    {
        return 0;
    }

    int32_t UnregisterPrivacyEventListener(const sptr<Privacy::PrivacyEventListenerIntf>& /* listener */) override
    {
        return 0;
    }

    int32_t GetPrivacyEventDetails(int32_t /* user */, std::vector<Privacy::PrivacyEventDetail>& /* details */) override
    {
        return 0;
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t /* user */, int32_t /* sensor */, std::vector<Privacy::PrivacyEventDetail>& /* details */) override
    {
        return 0;
    }

    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& [sensor, data] : indicators_) {
            indicators.push_back(data);
        }
        return 0;
    }

    int32_t TurnOnIndicator(int32_t sensor, const Indicator::IndicatorPosition& /* position */,
        const Indicator::IndicatorSize& /* size */, int32_t /* animationType */) override
    {
        return Switch(sensor, Indicator::IndicatorState::ON);
    }

    int32_t TurnOffIndicator(int32_t sensor, int32_t /* animationType */) override
    {
        return Switch(sensor, Indicator::IndicatorState::OFF);
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto range = listeners_.equal_range(listener->AsObject());
        if (range.first != range.second && fault_ != "twice") {
            return 0;
        }
        if (listeners_.size() >= MAX_LISTENERS) {
            return INVALID_VALUE;
        }
        listeners_.emplace(listener->AsObject(), listener);
        if (fault_ != "keeps-dead") {
            listener->AsObject()->AddDeathRecipient(this);
        }
        return 0;
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (fault_ != "keeps-unregistered") {
            listeners_.erase(listener->AsObject());
        }
        return 0;
    }

    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& /* query */,
        std::vector<Record::PermissionUsageDuration>& /* durations */) override
    {
        return 0;
    }

    int32_t NotifyPowerEvent(int32_t /* event */) override
    {
        return 0;
    }

    void OnRemoteDied(const wptr<IRemoteObject>& object) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        listeners_.erase(object.promote());
    }

private:
    int32_t Switch(int32_t sensor, Indicator::IndicatorState state)
    {
        Indicator::IndicatorData data;
        data.privacySensorType = static_cast<PrivacySensorType>(sensor);
        data.state = state;
        std::lock_guard<std::mutex> lock(mutex_);
        indicators_.erase(sensor);
        if (state == Indicator::IndicatorState::ON) {
            indicators_.emplace(sensor, data);
        }
        for (const auto& [object, listener] : listeners_) {
            listener->OnSwitchChanged(data);
            if (fault_ == "waits-for-listeners") {
                MessageParcel question;
                MessageParcel answer;
                MessageOption option;
                object->SendRequest(1, question, answer, option);
            }
        }
        return 0;
    }

    const std::string fault_;
    std::mutex mutex_;
    std::map<int32_t, Indicator::IndicatorData> indicators_;
    std::multimap<sptr<IRemoteObject>, sptr<Indicator::IndicatorSwitchListenerIntf>> listeners_;
};

} // namespace

int main(int argc, char** argv)
{
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    const sptr<IRemoteObject> service(new FaultyService(argc > 1 ? argv[1] : ""));
    std::cout << (manager->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, service) == 0 ? "ready" : "refused") << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
}
