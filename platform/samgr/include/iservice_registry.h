// SPDX-License-Identifier: Apache-2.0
#ifndef ISERVICE_REGISTRY_H
#define ISERVICE_REGISTRY_H

#include "if_system_ability_manager.h"

namespace OHOS {

/** The way to the system ability manager. */
class SystemAbilityManagerClient {
public:
    static SystemAbilityManagerClient& GetInstance();

    /**
     * The manager: this process's own where OHOS_BUS_ADDRESS is not set, else that of the bus, whether or not there is
     * one at the moment. Null for a malformed address, at exit, and in a fork's child. Any thread may call it.
     */
    sptr<ISystemAbilityManager> GetSystemAbilityManager();
};

} // namespace OHOS

#endif // ISERVICE_REGISTRY_H
