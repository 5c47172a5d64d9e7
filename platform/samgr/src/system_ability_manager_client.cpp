// SPDX-License-Identifier: Apache-2.0
#include "iservice_registry.h"
#include "system_ability_manager.h"

namespace OHOS {

SystemAbilityManagerClient& SystemAbilityManagerClient::GetInstance()
{
    static SystemAbilityManagerClient client;
    return client;
}

sptr<ISystemAbilityManager> SystemAbilityManagerClient::GetSystemAbilityManager()
{
    SystemAbilityManager& manager = SystemAbilityManager::Get();
    return manager.IsUsable() ? sptr<ISystemAbilityManager>(&manager) : nullptr;
}

} // namespace OHOS
