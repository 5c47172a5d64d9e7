// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_H
#define PRIVACY_EVENT_LISTENER_H

#include <string>
#include <vector>

#include "privacy_event_remind_info.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/** What an app derives from to be called at privacy events. It is registered with PrivacyIndicatorClient. */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListener {
public:
    /**
     * Events of `dataType` have happened, and `privacyEventRemindInfos` has a record for each that could be read,
     * perhaps none; or the service has gone, as PrivacyIndicatorClient says. The arguments are valid during the call
     * only.
     *
     * Called on a platform thread, with the client's lock for privacy event listeners held: it must not register or
     * unregister any listener, nor wait for a thread that does. (A switch listener may register event listeners. If the
     * opposite were allowed too, two callbacks could each wait for the other one's lock.) All other privacy event
     * listeners wait until it returns, and so does the service.
     */
    virtual void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) = 0;

    // Contract: the destructor follows the operation, which has the first virtual slot.
    virtual ~PrivacyEventListener() = default;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_H
