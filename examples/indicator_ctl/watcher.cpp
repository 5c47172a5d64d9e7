// SPDX-License-Identifier: Apache-2.0
#include "watcher.h"

#include <utility>

#include "print.h"
#include "privacy_event_values.h"
#include "system_ability.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

// Prints what the service has done, if it has.
int32_t PrintIfDone(int32_t result, const std::string& done)
{
    if (result == 0) {
        PrintLine(done);
    }
    return result;
}

} // namespace

Watcher::Watcher(const sptr<ISystemAbilityManager>& manager,
    Indicator::IndicatorSwitchListenerStubImpl::Callback onSwitch,
    Privacy::PrivacyEventListenerStubImpl::Callback onEvent, std::function<void()> onBack)
    : manager_(manager), switchListener_(new Indicator::IndicatorSwitchListenerStubImpl(std::move(onSwitch))),
      eventListener_(new Privacy::PrivacyEventListenerStubImpl(std::move(onEvent))), onBack_(std::move(onBack))
{}

int32_t Watcher::Start(const sptr<PrivacyIndicatorServiceIntf>& service)
{
    Follow(service);
    const int32_t error = manager_->SubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, this);
    return error != 0 ? error : Register(*service);
}

void Watcher::Attach()
{
    sptr<PrivacyIndicatorServiceIntf> service;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        service = isRegistered_ ? nullptr : service_;
    }
    if (service == nullptr) {
        return;
    }
    const int32_t result = Register(*service);
    if (result != 0 && !service->AsObject()->IsObjectDead()) {
        Complain("the service took no listener: " + std::to_string(result) + "; trying again");
    }
}

int32_t Watcher::Stop()
{
    manager_->UnSubscribeSystemAbility(PRIVACY_INDICATOR_SA_ID, this);
    sptr<PrivacyIndicatorServiceIntf> service;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const sptr<PrivacyIndicatorServiceIntf> followed = std::exchange(service_, nullptr);
        service = isRegistered_ ? followed : nullptr;
    }
    if (service == nullptr) {
        return 0;
    }
    const int32_t ofSwitch =
        PrintIfDone(service->UnregisterPrivacyIndicatorSwitchListener(switchListener_), "switch listener unregistered");
    const int32_t ofEvent =
        PrintIfDone(service->UnregisterPrivacyEventListener(eventListener_), "event listener unregistered");
    if (service->AsObject()->IsObjectDead()) {
        return 0; // Gone just now, and the listeners with it.
    }
    return ofSwitch != 0 ? ofSwitch : ofEvent;
}

void Watcher::OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */)
{
    const sptr<PrivacyIndicatorServiceIntf> service = FindService(*manager_);
    if (service == nullptr || service->AsObject() == Followed()) {
        return; // Gone again, or the one there was when the watcher began to follow.
    }
    Lose();
    PrintLine("the service is back");
    Follow(service);
    onBack_();
}

void Watcher::OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) { Lose(); }

void Watcher::Follow(const sptr<PrivacyIndicatorServiceIntf>& service)
{
    std::lock_guard<std::mutex> lock(mutex_);
    service_ = service;
    isRegistered_ = false;
}

int32_t Watcher::Register(PrivacyIndicatorServiceIntf& service)
{
    int32_t result =
        PrintIfDone(service.RegisterPrivacyIndicatorSwitchListener(switchListener_), "switch listener registered");
    if (result == 0) {
        result = PrintIfDone(service.RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, eventListener_),
            "event listener registered");
    }
    std::lock_guard<std::mutex> lock(mutex_);
    isRegistered_ = isRegistered_ || (result == 0 && service_.GetRefPtr() == &service);
    return result;
}

sptr<IRemoteObject> Watcher::Followed()
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
