// SPDX-License-Identifier: Apache-2.0
#ifndef IF_SYSTEM_ABILITY_MANAGER_H
#define IF_SYSTEM_ABILITY_MANAGER_H

#include <cstdint>
#include <string>
#include <utility>

#include "iremote_broker.h"
#include "isystem_ability_status_change.h"

namespace OHOS {

/** Where services ("system abilities") are found by number, 0 to 0x00ffffff. Any thread may call anything. */
class ISystemAbilityManager : public IRemoteBroker {
public:
    struct SAExtraProp {
        SAExtraProp() {} // Not defaulted: the class is not complete yet where this is a default argument.

        SAExtraProp(bool distributed, unsigned int flags, std::u16string capabilities, std::u16string permissions)
            : isDistributed(distributed), dumpFlags(flags), capability(std::move(capabilities)),
              permission(std::move(permissions))
        {}

        bool isDistributed = false;
        unsigned int dumpFlags = 8;
        std::u16string capability;
        std::u16string permission;
    };

    /** The service's object, or null. Asks the bus, never the service; null at once without one. */
    virtual sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) = 0;
    virtual sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) = 0;

    /**
     * Makes `ability`, which is then held strongly, the service of that number. 0; 3 for null; or a code of
     * ipc_types.h: ERR_PERMISSION_DENIED if another process holds the number or this one may not, ERR_DEAD_OBJECT
     * without a bus. Adding again replaces the object. When the bus goes and comes back, the service is added again.
     */
    virtual int32_t AddSystemAbility(
        int32_t systemAbilityId, const sptr<IRemoteObject>& ability, const SAExtraProp& extraProp = SAExtraProp()) = 0;

    /** Takes this process's service away. 0, or a code of ipc_types.h. */
    virtual int32_t RemoveSystemAbility(int32_t systemAbilityId) = 0;

    /**
     * Has `listener`, which is held strongly, called on the notice thread when the service comes and goes, and once if
     * it is there already. Subscribing again changes nothing. 0, or a code of ipc_types.h.
     */
    virtual int32_t SubscribeSystemAbility(
        int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) = 0;

    /** No notice begins any more; one under way is not waited for. 0, also if it was not there. */
    virtual int32_t UnSubscribeSystemAbility(
        int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) = 0;

protected:
    static inline const std::u16string SAMANAGER_INTERFACE_TOKEN = u"ohos.samgr.accessToken";
};

} // namespace OHOS

#endif // IF_SYSTEM_ABILITY_MANAGER_H
