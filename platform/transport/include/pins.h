// SPDX-License-Identifier: Apache-2.0
#ifndef PINS_H
#define PINS_H

#include <cstdint>
#include <map>
#include <vector>

#include "mutex.h"
#include "refbase.h"

namespace OHOS::Transport {

/**
 * The objects of this process that one peer may call because they were sent to it: held strongly, and known to that
 * peer by an id. Each sending pins once more. What is handed back is for the caller to destroy, under no lock. Any
 * thread may call anything.
 */
class Pins {
public:
    /** The first id, beyond the services' numbers. */
    static constexpr uint64_t FIRST_ID = 0x01000000;

    /** Pins `object` once more, and returns its id; 0 if the pins are closed. */
    uint64_t Pin(const sptr<RefBase>& object);

    /** Takes `count` pins off, or as many as there are. Returns the object that the last one went from, else null. */
    [[nodiscard]] sptr<RefBase> Unpin(uint64_t id, uint32_t count);

    /** Null unless the object is pinned. */
    sptr<RefBase> Find(uint64_t id);

    /** Takes all pins off, for good. */
    [[nodiscard]] std::vector<sptr<RefBase>> Close();

private:
    struct Pinned {
        sptr<RefBase> object;
        uint64_t count = 0;
    };

    Mutex mutex_;
    std::map<uint64_t, Pinned> objects_ GUARDED_BY(mutex_);
    std::map<const RefBase*, uint64_t> ids_ GUARDED_BY(mutex_); // Of objects_.
    uint64_t nextId_ GUARDED_BY(mutex_) = FIRST_ID;
    bool isClosed_ GUARDED_BY(mutex_) = false;
};

} // namespace OHOS::Transport

#endif // PINS_H
