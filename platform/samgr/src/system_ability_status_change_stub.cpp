// SPDX-License-Identifier: Apache-2.0
#include "system_ability_status_change_stub.h"

#include "system_ability_id.h"

namespace OHOS {

int SystemAbilityStatusChangeStub::OnRemoteRequest(
    uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    if (data.ReadInterfaceToken() != GetDescriptor()) {
        return ERR_PERMISSION_DENIED;
    }
    if (code != ON_ADD_SYSTEM_ABILITY && code != ON_REMOVE_SYSTEM_ABILITY) {
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    int32_t systemAbilityId = -1;
    if (!data.ReadInt32(systemAbilityId) || !IsSystemAbilityId(systemAbilityId)) {
        return ERR_NULL_OBJECT;
    }
    const std::string deviceId = data.ReadString();
    if (code == ON_ADD_SYSTEM_ABILITY) {
        OnAddSystemAbility(systemAbilityId, deviceId);
    } else {
        OnRemoveSystemAbility(systemAbilityId, deviceId);
    }
    return ERR_NONE;
}

} // namespace OHOS
