// SPDX-License-Identifier: Apache-2.0
#include "system_ability.h"

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <string>

#include "iservice_registry.h"
#include "print.h"
#include "system_ability_status_change_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

/** Wakes a thread when a service has come. */
class Arrival : public SystemAbilityStatusChangeStub {
public:
    void OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        hasCome_ = true;
        changed_.notify_one();
    }

    void OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override {}

    void Await()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return hasCome_; });
        hasCome_ = false;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool hasCome_ = false;
};

} // namespace

void LogQuietly(const char* level) { setenv("HILOG_LEVEL", level, 0); }

sptr<ISystemAbilityManager> FindManager()
{
    std::string reason = "the platform has none";
#ifndef OHOS_PLATFORM // A device has one manager, without an address.
    // Without an address there would be a manager, but one that no other process can see.
    const char* const address = std::getenv("OHOS_BUS_ADDRESS");
    if (address == nullptr || *address == '\0') {
        Complain(
            "no system ability manager: OHOS_BUS_ADDRESS is not set (\"ohos_bus bash\" starts a shell that has it)");
        return nullptr;
    }
    reason = std::string("OHOS_BUS_ADDRESS is no socket's address: ") + address;
#endif
    sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        Complain("no system ability manager: " + reason);
    }
    return manager;
}

sptr<PrivacyIndicatorServiceIntf> FindService(ISystemAbilityManager& manager)
{
    return iface_cast<PrivacyIndicatorServiceIntf>(manager.GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
}

sptr<PrivacyIndicatorServiceIntf> AwaitService(ISystemAbilityManager& manager)
{
    const sptr<Arrival> arrival(new Arrival());
    manager.SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, arrival);
    sptr<PrivacyIndicatorServiceIntf> service;
    while (service == nullptr) {
        arrival->Await();
        service = FindService(manager);
    }
    manager.UnSubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, arrival);
    return service;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
