// SPDX-License-Identifier: Apache-2.0
#include "system_ability_status_change_stub.h"

namespace OHOS {

int SystemAbilityStatusChangeStub::OnRemoteRequest(
    uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    if (data.ReadInterfaceToken() != GetDescriptor()) {
        return ERR_INVALID_VALUE;
    }
    if (code != ON_ADD_SYSTEM_ABILITY && code != ON_REMOVE_SYSTEM_ABILITY) {
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    int32_t systemAbilityId = 0;
    std::string deviceId;
    if (!data.ReadInt32(systemAbilityId) || !data.ReadString(deviceId)) {
        return ERR_INVALID_VALUE;
    }
    if (code == ON_ADD_SYSTEM_ABILITY) {
        OnAddSystemAbility(systemAbilityId, deviceId);
    } else {
        OnRemoveSystemAbility(systemAbilityId, deviceId);
    }
    return ERR_NONE;
}

} // namespace OHOS
