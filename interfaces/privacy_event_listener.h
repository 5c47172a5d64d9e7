// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_H
#define PRIVACY_EVENT_LISTENER_H

#include <string>
#include <vector>

#include "privacy_event_remind_info.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/** An app's ear for privacy events: see PrivacyIndicatorClient. */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListener {
public:
    /**
     * Called on a platform thread with the client's lock for privacy event listeners held: it may not register or
     * unregister any listener, nor wait for a thread that does. (A switch listener may touch the event listeners; were
     * the opposite allowed too, the two locks could be taken in either order, and two callbacks block each other.)
     */
    virtual void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) = 0;

    // Behind the operation, which is the first virtual slot: others' binaries rely on that.
    virtual ~PrivacyEventListener() = default;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_H
