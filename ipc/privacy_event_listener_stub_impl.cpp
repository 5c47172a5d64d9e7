// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_listener_stub_impl.h"

#include <utility>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

PrivacyEventListenerStubImpl::PrivacyEventListenerStubImpl(Callback onPrivacyEventChanged)
    : callback(std::move(onPrivacyEventChanged))
{}

void PrivacyEventListenerStubImpl::OnPrivacyEventChanged(
    const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) noexcept
{
    if (callback) {
        callback(dataType, privacyEventRemindInfos);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
