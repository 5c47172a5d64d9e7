// SPDX-License-Identifier: Apache-2.0
#include "indicator_switch_listener_stub_impl.h"

#include <string>
#include <utility>

#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

const auto TAG = Util::FileTag("PrivacyIndicator");

} // namespace

IndicatorSwitchListenerStubImpl::IndicatorSwitchListenerStubImpl(Callback onSwitchChanged)
    : callback(std::move(onSwitchChanged))
{}

void IndicatorSwitchListenerStubImpl::OnSwitchChanged(const IndicatorData& indicatorData) noexcept
{
    // Contract: the message names another function than the line's prefix does.
    const std::string privacySensorType = std::to_string(static_cast<int32_t>(indicatorData.privacySensorType));
    Util::LogInfo(TAG, "OnSwitchChanged", "OnRemoteRequest called in stub impl. %{public}s", privacySensorType.c_str());
    if (callback) {
        callback(indicatorData);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
