// SPDX-License-Identifier: Apache-2.0
#include "iremote_broker.h"

namespace OHOS {

BrokerRegistration& BrokerRegistration::Get()
{
    // Never destroyed: libraries unregister while they are unloaded, at the latest at exit.
    static auto& registration = *new BrokerRegistration();
    return registration;
}

bool BrokerRegistration::Register(
    const std::u16string& descriptor, const Constructor& creator, const BrokerDelegatorBase* /* delegator */)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return !descriptor.empty() && creators_.emplace(descriptor, creator).second;
}

void BrokerRegistration::Unregister(const std::u16string& descriptor)
{
    decltype(creators_)::node_type removed; // Destroyed after the lock is released.
    std::lock_guard<std::mutex> lock(mutex_);
    removed = creators_.extract(descriptor);
}

sptr<IRemoteBroker> BrokerRegistration::NewInstance(const std::u16string& descriptor, const sptr<IRemoteObject>& object)
{
    if (object == nullptr) {
        return nullptr;
    }
    if (!object->IsProxyObject()) {
        return object->GetObjectDescriptor() == descriptor ? object->AsInterface() : nullptr;
    }
    Constructor creator;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto found = creators_.find(descriptor);
        if (found != creators_.end()) {
            creator = found->second;
        }
    }
    return creator ? creator(object) : nullptr;
}

} // namespace OHOS
