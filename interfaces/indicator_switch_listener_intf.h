// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_INTF_H
#define INDICATOR_SWITCH_LISTENER_INTF_H

#include <cstdint>

#include "indicator_data.h"
#include "iremote_broker.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * The interface through which the service reports indicator switches to another process. The receiving process hands an
 * IndicatorSwitchListenerStubImpl to the service, which calls it through an IndicatorSwitchListenerProxy.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListenerIntf : public IRemoteBroker {
public:
    /** The code of the interface's only request. */
    enum RequestCode : uint32_t { ON_SWITCH_CHANGED = 0 };

    DECLARE_INTERFACE_DESCRIPTOR(u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf");

    /** An indicator has changed to `indicatorData`, which is valid during the call only. */
    virtual void OnSwitchChanged(const IndicatorData& indicatorData) = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_INTF_H
