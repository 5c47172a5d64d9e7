// SPDX-License-Identifier: Apache-2.0
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func) noexcept
{
    sptr<PrivacyIndicatorServiceIntf> current;
    {
        std::lock_guard<std::mutex> lock(proxyMutex);
        InitializeProxy();
        current = proxy;
    }
    // Called without the lock: a call takes as long as the service does, and ResetProxy must not wait for it.
    func(current);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
