// SPDX-License-Identifier: Apache-2.0
#include "client_fixture.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func)
{
    using Test::Gate;
    ++Gate::passed;
    if (Gate::before) {
        Gate::before();
    }
    if (Gate::way == Gate::OPEN) {
        func(Gate::service);
    } else if (Gate::way == Gate::NO_SERVICE) {
        func(nullptr);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
