// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_STUB_H
#define PRIVACY_EVENT_LISTENER_STUB_H

#include <cstdint>

#include "iremote_stub.h"
#include "privacy_event_listener_intf.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * The receiving side of a privacy event listener: decodes what the service sends and calls OnPrivacyEventChanged with
 * it, on the platform's threads, several at once, and with no lock held. A record that is missing or malformed is left
 * out of the list, so that the list may be empty.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerStub : public IRemoteStub<PrivacyEventListenerIntf> {
public:
    /**
     * Serves one request, and leaves `reply` empty. Returns 0; 1 if the request is for another interface; 22 if
     * the number of records that it announces is below 1 or above maxRemindInfoSize; what the platform returns if the
     * code is unknown.
     */
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_STUB_H
