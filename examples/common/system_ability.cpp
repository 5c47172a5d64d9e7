// SPDX-License-Identifier: Apache-2.0
#include "system_ability.h"

#include <cstdlib>
#include <string>

#include "iservice_registry.h"
#include "print.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

sptr<ISystemAbilityManager> FindManager()
{
    // Without an address there would be a manager, but one that no other process can see.
    const char* const address = std::getenv("OHOS_BUS_ADDRESS");
    if (address == nullptr || *address == '\0') {
        Complain("no system ability manager: OHOS_BUS_ADDRESS is not set");
        return nullptr;
    }
    sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        Complain("no system ability manager: nothing answers at OHOS_BUS_ADDRESS=" + std::string(address));
    }
    return manager;
}

sptr<PrivacyIndicatorServiceIntf> FindService(ISystemAbilityManager& manager)
{
    return iface_cast<PrivacyIndicatorServiceIntf>(manager.GetSystemAbility(PRIVACY_INDICATOR_SA_ID));
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
