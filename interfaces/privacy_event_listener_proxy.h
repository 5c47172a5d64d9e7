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
 * The service's side of a privacy event listener. iface_cast<PrivacyEventListenerIntf> makes one from the listener's
 * remote object, which the proxy holds as long as it lives. Any number of threads may call it at once.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerProxy : public IRemoteProxy<PrivacyEventListenerIntf> {
public:
    /** `remote` is the listener; if it is null, every event is dropped. */
    explicit PrivacyEventListenerProxy(const sptr<IRemoteObject>& remote);
    ~PrivacyEventListenerProxy() override = default;

    /**
     * Sends the events and blocks until the listener has returned, however long that takes. Failures are only logged.
     * The receiving stub refuses an empty list, and one of more than 102400 records.
     */
    void OnPrivacyEventChanged(const std::string& dataType,
        const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) noexcept override;

private:
    static BrokerDelegator<PrivacyEventListenerProxy> delegator_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_PROXY_H
