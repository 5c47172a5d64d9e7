// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_LISTENER_STUB_IMPL_H
#define PRIVACY_EVENT_LISTENER_STUB_IMPL_H

#include <functional>
#include <string>
#include <vector>

#include "privacy_event_listener_stub.h"
#include "privacy_indicator_export.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/** A privacy event listener that calls a function. It lives as long as this process or the service holds it. */
class PRIVACY_INDICATOR_EXPORT PrivacyEventListenerStubImpl : public PrivacyEventListenerStub {
public:
    /** The function, which may be called on several threads at once. */
    using Callback = std::function<void(const std::string&, const std::vector<PrivacyEventRemindInfo>&)>;

    /** If `onPrivacyEventChanged` is empty, every event is dropped. */
    explicit PrivacyEventListenerStubImpl(Callback onPrivacyEventChanged);
    ~PrivacyEventListenerStubImpl() override = default;

    /** Calls the function, on the calling thread and with no lock held. The service waits until it returns. */
    void OnPrivacyEventChanged(const std::string& dataType,
        const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) noexcept override;

private:
    const Callback callback;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_LISTENER_STUB_IMPL_H
