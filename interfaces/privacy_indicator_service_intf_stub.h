// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_SERVICE_INTF_STUB_H
#define PRIVACY_INDICATOR_SERVICE_INTF_STUB_H

#include <cstdint>

#include "iremote_stub.h"
#include "privacy_indicator_export.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * What the service derives from: decodes requests, calls the eleven operations, which the service implements, and
 * encodes what they return. Requests come on several of the platform's threads at once and no lock is held, so the
 * operations must be safe for that; what one throws there ends the process. Their vectors arrive empty; their listeners
 * may be kept.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceIntfStub : public IRemoteStub<PrivacyIndicatorServiceIntf> {
public:
    /**
     * Serves one request. SUCCESS if the whole reply was written, whatever result it carries; TOKEN_MISMATCH,
     * INVALID_DATA (the operation is then not called, or it returned more than a reply may carry) or INVALID_VALUE if
     * not; the platform's own answer for an unknown code.
     */
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

private:
    const int32_t vectorSizeLimit = 102400; // Elements that a reply may carry.
    // No reply carries a list or a map, so nothing consults these.
    [[maybe_unused]] const int32_t listSizeLimit = 102400;
    [[maybe_unused]] const int32_t mapSizeLimit = 102400;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_SERVICE_INTF_STUB_H
