// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_EXCHANGE_H
#define SERVICE_EXCHANGE_H

#include <cstdint>

#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * What both sides of a request to the service share, ServiceCall in the proxy and ServiceRequest in the stub: the first
 * failure is logged and decides the result; after it nothing is written, read, sent or run any more.
 */
class ServiceExchange {
protected:
    explicit ServiceExchange(int32_t vectorSizeLimit) : vectorSizeLimit_(vectorSizeLimit) {}

    bool IsGood() const { return error_ == PrivacyIndicatorServiceIntf::SUCCESS; }

    /** The first failure's code; SUCCESS before it. */
    int32_t Error() const { return error_; }

    /**
     * Logs `failure`, which has no placeholders, and keeps `error`, unless something failed before. Returns Error().
     */
    int32_t Fail(int32_t error, const char* failure);

    /** Fails if `count` is more records than a reply may carry. Returns IsGood(). */
    bool CheckCount(int64_t count);

private:
    const int32_t vectorSizeLimit_;
    int32_t error_ = PrivacyIndicatorServiceIntf::SUCCESS;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // SERVICE_EXCHANGE_H
