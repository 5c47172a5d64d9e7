// SPDX-License-Identifier: Apache-2.0
#include "iservice_registry.h"
#include "privacy_indicator_service_intf.h"
#include <cstdio>

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

int main()
{
    sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    sptr<IRemoteObject> object = manager == nullptr ? nullptr : manager->GetSystemAbility(PRIVACY_INDICATOR_SA_ID);
    sptr<PrivacyIndicatorServiceIntf> service = iface_cast<PrivacyIndicatorServiceIntf>(object);
    std::vector<Indicator::IndicatorData> active;
    int32_t result = service == nullptr ? -1 : service->GetActiveIndicators(active);
    std::printf("result %d, %zu active indicators\n", result, active.size());
    return result == 0 ? 0 : 1;
}
