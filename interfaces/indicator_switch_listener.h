// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_H
#define INDICATOR_SWITCH_LISTENER_H

#include "indicator_data.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** What an app derives from to be called at indicator switches. It is registered with PrivacyIndicatorClient. */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListener {
public:
    /**
     * An indicator has changed to `indicatorData`, which is valid during the call only; or the service has gone, as
     * PrivacyIndicatorClient says.
     *
     * Called on a platform thread, with the client's lock for switch listeners held: it must not register or unregister
     * switch listeners, nor wait for a thread that does. It may register and unregister privacy event listeners. All
     * other switch listeners wait until it returns.
     */
    virtual void OnSwitchChanged(const IndicatorData& indicatorData) = 0;

    // Contract: the destructor follows the operation, which has the first virtual slot.
    virtual ~IndicatorSwitchListener() = default;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_H
