// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_PROXY_H
#define PRIVACY_EVENT_LISTENER_PROXY_H

#include <string>
#include <vector>

#include "iremote_proxy.h"
#include "privacy_event_listener_intf.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * A privacy event listener in another process. Registered with the broker when the library is loaded:
 * iface_cast<PrivacyEventListenerIntf> of a listener's remote object makes one. Any number of threads may call it at
 * once. Keeps the remote object as long as it lives itself.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerProxy : public IRemoteProxy<PrivacyEventListenerIntf> {
public:
    /** Events go to `remote`; if it is null, they are dropped. */
    explicit PrivacyEventListenerProxy(const sptr<IRemoteObject>& remote);
    ~PrivacyEventListenerProxy() override = default;

    /**
     * Sends the events, and blocks until the listener has returned, for 8 seconds at most. Failures are only logged. A
     * stub refuses an empty list, and one of more than 102400 records.
     */
    void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) override;

private:
    static BrokerDelegator<PrivacyEventListenerProxy> delegator_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_PROXY_H
