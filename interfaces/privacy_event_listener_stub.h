// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_STUB_H
#define PRIVACY_EVENT_LISTENER_STUB_H

#include <cstdint>

#include "iremote_stub.h"
#include "privacy_event_listener_intf.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * Decodes the events that the service sends and hands them to OnPrivacyEventChanged, on the platform's threads and
 * without a lock. A record that cannot be read is left out of the list, which may thus be empty.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerStub : public IRemoteStub<PrivacyEventListenerIntf> {
public:
    /**
     * Serves one request. 0, or 1 if it was meant for another interface, or 22 if it announces less than one record or
     * more than maxRemindInfoSize; the platform's own answer for an unknown code. Leaves `reply` empty.
     */
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_STUB_H
