// SPDX-License-Identifier: Apache-2.0
#include "client_log.h"
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

// Contract: an emulator has no service to call, so the request is built and never run.
void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& /* func */) noexcept
{
    Util::LogInfo(CLIENT_TAG, "WithSystemAbilityProxy", "emulator is not support");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
