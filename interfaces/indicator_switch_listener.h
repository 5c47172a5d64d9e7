// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_H
#define INDICATOR_SWITCH_LISTENER_H

#include "indicator_data.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** An app's ear for indicator switches: see PrivacyIndicatorClient. */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListener {
public:
    /**
     * Called on a platform thread with the client's lock for switch listeners held: it may not register or unregister
     * switch listeners, nor wait for a thread that does. It may do so with privacy event listeners.
     */
    virtual void OnSwitchChanged(const IndicatorData& indicatorData) = 0;

    // Behind the operation, which is the first virtual slot: others' binaries rely on that.
    virtual ~IndicatorSwitchListener() = default;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_H
