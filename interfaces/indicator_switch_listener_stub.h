// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_STUB_H
#define INDICATOR_SWITCH_LISTENER_STUB_H

#include <cstdint>

#include "indicator_switch_listener_intf.h"
#include "iremote_stub.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * Decodes the events that the service sends and hands them to OnSwitchChanged, on the platform's threads and without a
 * lock. Logs its own creation and end.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListenerStub : public IRemoteStub<IndicatorSwitchListenerIntf> {
public:
    IndicatorSwitchListenerStub();
    ~IndicatorSwitchListenerStub() override;

    /**
     * Serves one event. 0, or 10 if it was meant for another interface, or -1 if its record could not be read; the
     * platform's own answer for an unknown code. Leaves `reply` empty.
     */
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_STUB_H
