// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_SERVICE_INTF_STUB_H
#define PRIVACY_INDICATOR_SERVICE_INTF_STUB_H

#include <cstdint>

#include "iremote_stub.h"
#include "privacy_indicator_export.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * What the service derives from: decodes each request, calls the operation that it is for, which the service
 * implements, and encodes the result. What an author of a service must know:
 *
 * Threads. Requests arrive on several of the platform's threads at once, and no lock is held: the operations must be
 * safe for that. The vectors that they are called with are empty and theirs to fill.
 *
 * Registrations repeat. A client registers the same listener again whenever it learns that the service has come, and
 * that can be right after the first registration: registering must be idempotent. Two listeners are the same if their
 * AsObject() is; the proxy around it is a new one for each request. The listeners may be kept.
 *
 * A listener's process may die. Link to its death by AddDeathRecipient of the listener's AsObject(), and drop the
 * listener then.
 *
 * The caller. The library does not check who may call what. IPCSkeleton::GetCallingUid() and GetCallingPid() name the
 * caller during an operation, on its thread.
 *
 * Callbacks. OnSwitchChanged is one-way and does not wait. OnPrivacyEventChanged waits until the listener has returned:
 * call it on a thread that may wait, and hold no lock that an operation takes. Call neither from within an operation
 * that registers or unregisters a listener: the client holds the lock that its callback needs.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceIntfStub : public IRemoteStub<PrivacyIndicatorServiceIntf> {
public:
    /**
     * Serves one request. Returns SUCCESS if the reply has been written, whatever result it carries;
     * TOKEN_MISMATCH if the request is for another interface; INVALID_DATA if a record or a listener is missing or
     * malformed, so that the operation is not called, or if the operation's records are too many or do not fit;
     * INVALID_VALUE if its result does not fit; what the platform returns if the code is unknown.
     */
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

private:
    const int32_t vectorSizeLimit = 102400; // The most records that a reply may carry.
    // Contract: part of the object, though no reply carries a list or a map.
    [[maybe_unused]] const int32_t listSizeLimit = 102400;
    [[maybe_unused]] const int32_t mapSizeLimit = 102400;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_SERVICE_INTF_STUB_H
