// SPDX-License-Identifier: Apache-2.0
#include "privacy_indicator_client.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

namespace {

using Tag = Util::OstLog::Tag;

const Tag TAG = Tag::Create("PrivacyIndicator", Tag::DEFAULT_COMPONENT_TAG, Tag::DEFAULT_SUB_SYSTEM_TAG);

} // namespace

// An emulator has no service to ask: the request is built, and never run.
void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& /* func */)
{
    Util::LogInfo(TAG, "WithSystemAbilityProxy", "emulator is not support");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
