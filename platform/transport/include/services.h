// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICES_H
#define SERVICES_H

#include <cstdint>
#include <map>

#include "mutex.h"
#include "refbase.h"

namespace OHOS::Transport {

/** The services of this process by their numbers, held strongly: any peer may call them. Any thread may call anything.
 */
class Services {
public:
    using Map = std::map<uint64_t, sptr<RefBase>>;

    static Services& Get();

    /** Makes `object` the service of that number, or with null takes it away. The former one is for the caller to end.
     */
    [[nodiscard]] sptr<RefBase> Set(uint64_t number, const sptr<RefBase>& object);

    /** Null if there is no such service here. */
    sptr<RefBase> Find(uint64_t number);

    Map GetAll();

private:
    Mutex mutex_;
    Map services_ GUARDED_BY(mutex_);
};

} // namespace OHOS::Transport

#endif // SERVICES_H
