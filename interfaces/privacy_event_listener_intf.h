// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_INTF_H
#define PRIVACY_EVENT_LISTENER_INTF_H

#include <cstdint>
#include <string>
#include <vector>

#include "iremote_broker.h"
#include "privacy_event_remind_info.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * The interface through which the service reports privacy events to another process. The receiving process hands a
 * PrivacyEventListenerStubImpl for each data type to the service, which calls it through a PrivacyEventListenerProxy.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerIntf : public IRemoteBroker {
public:
    /** The code of the interface's only request. */
    enum RequestCode : uint32_t { ON_PRIVACY_EVENT_CHANGED = 0 };

    DECLARE_INTERFACE_DESCRIPTOR(u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener");

    /** Events of `dataType` have happened. The arguments are valid during the call only. */
    virtual void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) = 0;

protected:
    const int32_t maxRemindInfoSize = 102400; ///< The most records that a stub accepts in one request.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_INTF_H
