// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_STATUS_CHANGE_STUB_H
#define SYSTEM_ABILITY_STATUS_CHANGE_STUB_H

#include "iremote_stub.h"
#include "isystem_ability_status_change.h"

namespace OHOS {

/** Base of an availability listener: turns the manager's requests into its two calls. */
class SystemAbilityStatusChangeStub : public IRemoteStub<ISystemAbilityStatusChange> {
public:
    /** 0; ERR_PERMISSION_DENIED for another token; ERR_NULL_OBJECT for an id that is missing or out of range. */
    int OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;
};

} // namespace OHOS

#endif // SYSTEM_ABILITY_STATUS_CHANGE_STUB_H
