// SPDX-License-Identifier: Apache-2.0
#include "iremote_object.h"

#include "iremote_broker.h"
#include "message_parcel.h"

namespace OHOS {

bool IRemoteObject::Marshalling(Parcel& parcel) const
{
    auto* message = dynamic_cast<MessageParcel*>(&parcel);
    return message != nullptr && message->WriteRemoteObject(const_cast<IRemoteObject*>(this));
}

sptr<IRemoteBroker> IRemoteObject::AsInterface() { return nullptr; }

} // namespace OHOS
