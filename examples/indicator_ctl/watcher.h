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
 * Registers a listener of each kind, which calls a function, and follows the service: prints when it is gone, and when
 * it is back registers with it again, repeatedly if the service does not answer. The notices of the service's coming
 * and going are delivered on one thread, in order; handling one must not wait.
 */
class Watcher : public SystemAbilityStatusChangeStub {
public:
    /** `onBack` is called when the service is back: it is time for Attach. */
    Watcher(const sptr<ISystemAbilityManager>& manager, Indicator::IndicatorSwitchListenerStubImpl::Callback onSwitch,
        Privacy::PrivacyEventListenerStubImpl::Callback onEvent, std::function<void()> onBack);

    /** Begins to follow `service`, and registers the listeners with it. 0, or the first result that is not. */
    int32_t Start(const sptr<PrivacyIndicatorServiceIntf>& service);

    /** Registers the listeners, if the service is there and has not got them. Complains if it does not take them. */
    void Attach();

    /** Ends that, and unregisters the listeners if the service is there. 0, or the first result that is not. */
    int32_t Stop();

    void OnAddSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;
    void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;

private:
    void Follow(const sptr<PrivacyIndicatorServiceIntf>& service);

    int32_t Register(PrivacyIndicatorServiceIntf& service);

    /** The object of the service that is followed, or null. */
    sptr<IRemoteObject> Followed();

    /** Forgets the service that is followed, and prints that it is gone, if there is one. */
    void Lose();

    const sptr<ISystemAbilityManager> manager_;
    const sptr<Indicator::IndicatorSwitchListenerIntf> switchListener_;
    const sptr<Privacy::PrivacyEventListenerIntf> eventListener_;

    const std::function<void()> onBack_;

    std::mutex mutex_;
    sptr<PrivacyIndicatorServiceIntf> service_; // The one that is followed, or null.
    bool isRegistered_ = false;                 // With that one.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // WATCHER_H
