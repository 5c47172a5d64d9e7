// SPDX-License-Identifier: Apache-2.0
#include "watcher.h"

#include <utility>

#include "print.h"
#include "privacy_event_values.h"
#include "system_ability.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

// Says what the service did, if it did.
int32_t Report(int32_t result, const std::string& done)
{
    if (result == 0) {
        PrintLine(done);
    }
    return result;
}

} // namespace

Watcher::Watcher(const sptr<ISystemAbilityManager>& manager,
    Indicator::IndicatorSwitchListenerStubImpl::Callback onSwitch,
    Privacy::PrivacyEventListenerStubImpl::Callback onEvent)
    : manager_(manager), switchListener_(new Indicator::IndicatorSwitchListenerStubImpl(std::move(onSwitch))),
      eventListener_(new Privacy::PrivacyEventListenerStubImpl(std::move(onEvent)))
{}

int32_t Watcher::Start(const sptr<PrivacyIndicatorServiceIntf>& service)
{
    const int32_t result = Attach(service);
    return result != 0 ? result : manager_->SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, this);
}

int32_t Watcher::Stop()
{
    manager_->UnSubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, this);
    sptr<PrivacyIndicatorServiceIntf> service;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        service = std::exchange(service_, nullptr);
    }
    if (service == nullptr) {
        return 0;
    }
    service->AsObject()->RemoveDeathRecipient(this);
    const int32_t ofSwitch =
        Report(service->UnregisterPrivacyIndicatorSwitchListener(switchListener_), "switch listener unregistered");
    const int32_t ofEvent =
        Report(service->UnregisterPrivacyEventListener(eventListener_), "event listener unregistered");
    if (service->AsObject()->IsObjectDead()) {
        return 0; // Gone just now, and the listeners with it.
    }
    return ofSwitch != 0 ? ofSwitch : ofEvent;
}

void Watcher::OnRemoteDied(const wptr<IRemoteObject>& object)
{
    if (Attached() == object.promote()) {
        Lose();
    }
}

void Watcher::OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */)
{
    const sptr<PrivacyIndicatorServiceIntf> service = FindService(*manager_);
    if (service == nullptr || service->AsObject() == Attached()) {
        return; // Gone again, or the one there was when the watcher began to follow.
    }
    Lose();
    PrintLine("the service is back");
    const int32_t result = Attach(service);
    if (result != 0 && result != ERR_DEAD_OBJECT) {
        Complain("the service refused a listener: " + std::to_string(result));
    }
}

void Watcher::OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */)
{
    Lose();
}

int32_t Watcher::Attach(const sptr<PrivacyIndicatorServiceIntf>& service)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        service_ = service;
    }
    if (!service->AsObject()->AddDeathRecipient(this)) {
        return ERR_DEAD_OBJECT;
    }
    int32_t result =
        Report(service->RegisterPrivacyIndicatorSwitchListener(switchListener_), "switch listener registered");
    if (result == 0) {
        result = Report(service->RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, eventListener_),
            "event listener registered");
    }
    return result;
}

sptr<IRemoteObject> Watcher::Attached()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return service_ != nullptr ? service_->AsObject() : nullptr;
}

void Watcher::Lose()
{
    sptr<PrivacyIndicatorServiceIntf> lost;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        lost = std::exchange(service_, nullptr);
    }
    if (lost != nullptr) {
        PrintLine("the service is gone");
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
