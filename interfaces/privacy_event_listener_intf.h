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
 * Hears of privacy events of one data type. A caller hands a PrivacyEventListenerStubImpl to the service, which calls
 * it through a PrivacyEventListenerProxy.
 *
 * The library throws nothing of its own and hides nothing: what a caller's callback throws on a platform thread, or a
 * container that finds no memory, ends the process.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerIntf : public IRemoteBroker {
public:
    enum RequestCode : uint32_t { ON_PRIVACY_EVENT_CHANGED = 0 };

    DECLARE_INTERFACE_DESCRIPTOR(u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener");

    /** Events of `dataType` have happened. The arguments are valid during the call only. */
    virtual void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) = 0;

protected:
    const int32_t maxRemindInfoSize = 102400; // Records that a stub accepts in one event.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_INTF_H
