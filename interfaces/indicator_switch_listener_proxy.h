// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_PROXY_H
#define INDICATOR_SWITCH_LISTENER_PROXY_H

#include "indicator_switch_listener_intf.h"
#include "iremote_proxy.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * The service's side of a switch listener. iface_cast<IndicatorSwitchListenerIntf> makes one from the listener's remote
 * object, which the proxy holds as long as it lives. Any number of threads may call it at once. It logs its creation
 * and its destruction.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListenerProxy : public IRemoteProxy<IndicatorSwitchListenerIntf> {
public:
    /** `remote` is the listener; if it is null, every event is dropped. */
    explicit IndicatorSwitchListenerProxy(const sptr<IRemoteObject>& remote);
    ~IndicatorSwitchListenerProxy() override;

    /** Sends the event one-way, without waiting for the listener. Failures are only logged. */
    void OnSwitchChanged(const IndicatorData& indicatorData) noexcept override;

private:
    static BrokerDelegator<IndicatorSwitchListenerProxy> delegator_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_PROXY_H
