// SPDX-License-Identifier: Apache-2.0
#include "services.h"

#include <utility>

#include "never_destroyed.h"

namespace OHOS::Transport {

Services& Services::Get()
{
    static NeverDestroyed<Services> services;
    return *services;
}

sptr<RefBase> Services::Set(uint64_t number, const sptr<RefBase>& object)
{
    const MutexLock lock(mutex_);
    sptr<RefBase> former = std::exchange(services_[number], object);
    if (object == nullptr) {
        services_.erase(number);
    }
    return former;
}

sptr<RefBase> Services::Find(uint64_t number)
{
    const MutexLock lock(mutex_);
    const auto found = services_.find(number);
    return found != services_.end() ? found->second : nullptr;
}

Services::Map Services::GetAll()
{
    const MutexLock lock(mutex_);
    return services_;
}

} // namespace OHOS::Transport
