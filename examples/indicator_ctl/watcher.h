// SPDX-License-Identifier: Apache-2.0
#ifndef WATCHER_H
#define WATCHER_H

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

#include "if_system_ability_manager.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf.h"
#include "system_ability_status_change_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Registers a listener of each kind, which calls a function. Follows the service: says on standard output when it is
 * gone, and when it is back registers with it anew, again and again if the service does not answer.
 *
 * It is the service's death recipient and its availability listener: the first hears of the process's end, the second
 * of the service's return. Both are called on one thread, in order, and must not wait.
 */
class Watcher : public SystemAbilityStatusChangeStub, public IRemoteObject::DeathRecipient {
public:
    /** `hasWork` is called when it is time for Attach. */
    Watcher(const sptr<ISystemAbilityManager>& manager, Indicator::IndicatorSwitchListenerStubImpl::Callback onSwitch,
        Privacy::PrivacyEventListenerStubImpl::Callback onEvent, std::function<void()> hasWork);

    /** Registers the listeners with `service`, and begins to follow it. 0, or the first result that is not. */
    int32_t Start(const sptr<PrivacyIndicatorServiceIntf>& service);

    /** Registers the listeners with the service that is back, if there is one. Says so where that is to be tried again.
     */
    void Attach();

    /** Ends that, and unregisters the listeners if the service is there. 0, or the first result that is not. */
    int32_t Stop();

    void OnRemoteDied(const wptr<IRemoteObject>& object) override;
    void OnAddSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;
    void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;

private:
    /** Makes `service` the one that is followed. False if it is dead. */
    bool Follow(const sptr<PrivacyIndicatorServiceIntf>& service);

    int32_t Register(PrivacyIndicatorServiceIntf& service);

    /** The object of the service that is followed, or null. */
    sptr<IRemoteObject> Followed();

    /** Forgets the service, and says so if it was not forgotten before. */
    void Lose();

    const sptr<ISystemAbilityManager> manager_;
    const sptr<Indicator::IndicatorSwitchListenerIntf> switchListener_;
    const sptr<Privacy::PrivacyEventListenerIntf> eventListener_;

    const std::function<void()> hasWork_;

    std::mutex mutex_;
    sptr<PrivacyIndicatorServiceIntf> service_; // The one that is followed, or null.
    bool isRegistered_ = false;                 // With that one.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // WATCHER_H
