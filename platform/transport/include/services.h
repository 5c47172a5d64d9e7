// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICES_H
#define SERVICES_H

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "mutex.h"
#include "refbase.h"

namespace OHOS::Transport {

/** The services of this process by number, held strongly: any peer may call them. Any thread may call anything. */
class Services {
public:
    static Services& Get()
    {
        static Services& services = *new Services();
        return services;
    }

    /** Makes `object` the service of that number; null takes it away. The former one is for the caller to end. */
    [[nodiscard]] sptr<RefBase> Set(uint64_t number, const sptr<RefBase>& object)
    {
        const MutexLock lock(mutex_);
        sptr<RefBase> former = std::exchange(services_[number], object);
        if (object == nullptr) {
            services_.erase(number);
        }
        return former;
    }

    /** Null if there is no such service here. */
    sptr<RefBase> Find(uint64_t number)
    {
        const MutexLock lock(mutex_);
        const auto found = services_.find(number);
        return found != services_.end() ? found->second : nullptr;
    }

    /** The number of a service, which is one object to a peer however that came by it. False for another object. */
    bool FindNumber(const sptr<RefBase>& object, uint64_t& number)
    {
        const MutexLock lock(mutex_);
        const auto found = std::find_if(
            services_.begin(), services_.end(), [&](const auto& service) { return service.second == object; });
        number = found != services_.end() ? found->first : 0;
        return found != services_.end();
    }

    std::vector<uint64_t> GetNumbers()
    {
        const MutexLock lock(mutex_);
        std::vector<uint64_t> numbers;
        for (const auto& [number, service] : services_) {
            numbers.push_back(number);
        }
        return numbers;
    }

private:
    Mutex mutex_;
    std::map<uint64_t, sptr<RefBase>> services_ GUARDED_BY(mutex_);
};

} // namespace OHOS::Transport

#endif // SERVICES_H
