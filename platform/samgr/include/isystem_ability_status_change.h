// SPDX-License-Identifier: Apache-2.0
#ifndef ISYSTEM_ABILITY_STATUS_CHANGE_H
#define ISYSTEM_ABILITY_STATUS_CHANGE_H

#include <cstdint>
#include <string>

#include "iremote_broker.h"

namespace OHOS {

/** Is notified when a service comes or goes: on one thread, in order, and free to call anything. */
class ISystemAbilityStatusChange : public IRemoteBroker {
public:
    /** `deviceId` is empty. */
    virtual void OnAddSystemAbility(int32_t systemAbilityId, const std::string& deviceId) = 0;
    virtual void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string& deviceId) = 0;

    DECLARE_INTERFACE_DESCRIPTOR(u"OHOS.ISystemAbilityStatusChange")

    /** The codes of the two notices: each carries the token, an int32 id and the device id as a string. */
    enum : uint32_t { ON_ADD_SYSTEM_ABILITY = 1, ON_REMOVE_SYSTEM_ABILITY = 2 };
};

} // namespace OHOS

#endif // ISYSTEM_ABILITY_STATUS_CHANGE_H
