// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_STUB_H
#define INDICATOR_SWITCH_LISTENER_STUB_H

#include <cstdint>

#include "indicator_switch_listener_intf.h"
#include "iremote_stub.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/**
 * The receiving side of a switch listener: decodes what the service sends and calls OnSwitchChanged with it, on the
 * platform's threads, several at once, and with no lock held. It logs its creation and its destruction.
 */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListenerStub : public IRemoteStub<IndicatorSwitchListenerIntf> {
public:
    IndicatorSwitchListenerStub();
    ~IndicatorSwitchListenerStub() override;

    /**
     * Serves one request, and leaves `reply` empty. Returns 0; 10 if the request is for another interface; -1 if its
     * record is missing or malformed; what the platform returns if the code is unknown.
     */
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_STUB_H
