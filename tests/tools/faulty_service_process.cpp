// SPDX-License-Identifier: Apache-2.0
// The service in memory with faults: `faulty_service_process FAULT...`. It ends with its input.
#include <iostream>
#include <mutex>
#include <set>
#include <string>

#include "in_memory_service.h"
#include "indicator_switch_listener_stub_impl.h"
#include "iservice_registry.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using SwitchListener = Indicator::IndicatorSwitchListenerIntf;

namespace {

constexpr int ROOM = 40; // More than one process may register.

class FaultyService : public Testing::InMemoryService {
public:
    explicit FaultyService(std::set<std::string> faults) : faults_(std::move(faults)) {}

    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (Has("any-token") && code == GET_ACTIVE_INDICATORS) {
            MessageParcel checked;
            checked.WriteInterfaceToken(GetDescriptor());
            return InMemoryService::OnRemoteRequest(code, checked, reply, option);
        }
        const bool isKnown = code >= REGISTER_PRIVACY_EVENT_LISTENER && code <= NOTIFY_POWER_EVENT;
        const int32_t status = InMemoryService::OnRemoteRequest(code, data, reply, option);
        return Has("any-code") && !isKnown && status != TOKEN_MISMATCH ? 0 : status;
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const bool isKnown = !known_.insert(listener->AsObject()).second;
        if (Has("keeps-dead") && known_.size() > ROOM) {
            return INVALID_VALUE;
        }
        const auto forward = [listener](const auto& data) { listener->OnSwitchChanged(data); };
        return InMemoryService::RegisterPrivacyIndicatorSwitchListener(
            Has("twice") && isKnown ? sptr<SwitchListener>(new Indicator::IndicatorSwitchListenerStubImpl(forward))
                                    : listener);
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Has("keeps-unregistered") ? 0 : InMemoryService::UnregisterPrivacyIndicatorSwitchListener(listener);
    }

    int32_t TurnOnIndicator(int32_t sensor, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animationType) override
    {
        if (Has("waits-for-listeners")) {
            for (const Registration& registration : GetRegistrations()) {
                MessageParcel question;
                MessageParcel answer;
                MessageOption option;
                registration.listener->SendRequest(1, question, answer, option);
            }
        }
        return InMemoryService::TurnOnIndicator(sensor, position, size, animationType);
    }

private:
    bool Has(const std::string& fault) const { return faults_.count(fault) > 0; }

    const std::set<std::string> faults_;
    std::mutex mutex_;
    std::set<sptr<IRemoteObject>> known_; // Every listener that there ever was.
};

} // namespace

int main(int argc, char** argv)
{
    const sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    const sptr<IRemoteObject> service(new FaultyService({argv + 1, argv + argc}));
    std::cout << (manager->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, service) == 0 ? "ready" : "refused") << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
}
