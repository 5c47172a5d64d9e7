// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_PROXY_H
#define INDICATOR_SWITCH_LISTENER_PROXY_H

#include "indicator_switch_listener_intf.h"
#include "iremote_proxy.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * A switch listener in another process. Registered with the broker when the library is loaded:
 * iface_cast<IndicatorSwitchListenerIntf> of a listener's remote object makes one. Any number of threads may call it at
 * once. Keeps the remote object as long as it lives itself. Logs its own creation and end.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListenerProxy : public IRemoteProxy<IndicatorSwitchListenerIntf> {
public:
    /** Events go to `remote`; if it is null, they are dropped. */
    explicit IndicatorSwitchListenerProxy(const sptr<IRemoteObject>& remote);
    ~IndicatorSwitchListenerProxy() override;

    /** Sends the event one-way: it does not wait for the listener. Failures are only logged. */
    void OnSwitchChanged(const IndicatorData& indicatorData) override;

private:
    static BrokerDelegator<IndicatorSwitchListenerProxy> delegator_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_PROXY_H
