// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_SWITCH_LISTENER_STUB_IMPL_H
#define INDICATOR_SWITCH_LISTENER_STUB_IMPL_H

#include <functional>

#include "indicator_switch_listener_stub.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** A switch listener that calls a function. It lives as long as this process or the service holds it. */
class PRIVACY_INDICATOR_EXPORT IndicatorSwitchListenerStubImpl : public IndicatorSwitchListenerStub {
public:
    /** The function, which may be called on several threads at once. */
    using Callback = std::function<void(const IndicatorData&)>;

    /** If `onSwitchChanged` is empty, every event is dropped. */
    explicit IndicatorSwitchListenerStubImpl(Callback onSwitchChanged);
    ~IndicatorSwitchListenerStubImpl() override = default;

    /** Calls the function, on the calling thread and with no lock held. */
    void OnSwitchChanged(const IndicatorData& indicatorData) noexcept override;

private:
    const Callback callback;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_SWITCH_LISTENER_STUB_IMPL_H
