// SPDX-License-Identifier: Apache-2.0
#ifndef CALL_SERVICE_H
#define CALL_SERVICE_H

#include <cstdint>

#include "client_log.h"
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** What the client's operations return for a failure that they find themselves. */
constexpr int32_t FAILURE = -1;

/**
 * Hands `operation`, an int32_t(PrivacyIndicatorServiceIntf&), to the client's gate. Returns what the operation
 * returned, or 0 if it was not run. `function` is the function name that the log line shows if there is no service.
 */
template <typename Operation>
int32_t CallService(PrivacyIndicatorClient& client, const char* function, const Operation& operation)
{
    int32_t result = 0;
    const auto request = [function, &operation, &result](const sptr<PrivacyIndicatorServiceIntf>& service) {
        if (service == nullptr) {
            Util::LogError(CLIENT_TAG, function, "proxy is nullptr, please check.");
            return;
        }
        result = operation(*service);
    };
    // A std::function that holds a reference allocates no memory, so no request fails here for lack of it.
    client.WithSystemAbilityProxy([&request](const sptr<PrivacyIndicatorServiceIntf>& service) { request(service); });
    return result;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // CALL_SERVICE_H
