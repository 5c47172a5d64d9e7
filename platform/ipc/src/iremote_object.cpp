// SPDX-License-Identifier: Apache-2.0
#include "iremote_object.h"

#include <utility>

#include "iremote_broker.h"
#include "message_parcel.h"

namespace OHOS {

IRemoteObject::IRemoteObject(std::u16string descriptor) : descriptor_(std::move(descriptor)) {}

bool IRemoteObject::IsProxyObject() const
{
    return true;
}

bool IRemoteObject::IsObjectDead() const
{
    return false;
}

bool IRemoteObject::Marshalling(Parcel& parcel) const
{
    auto* message = dynamic_cast<MessageParcel*>(&parcel);
    return message != nullptr && message->WriteRemoteObject(const_cast<IRemoteObject*>(this));
}

sptr<IRemoteBroker> IRemoteObject::AsInterface()
{
    return nullptr;
}

std::u16string IRemoteObject::GetObjectDescriptor() const
{
    return descriptor_;
}

} // namespace OHOS
