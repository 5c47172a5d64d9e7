// SPDX-License-Identifier: Apache-2.0
#ifndef PINS_H
#define PINS_H

#include <cstdint>
#include <map>
#include <utility>
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
    uint64_t Pin(const sptr<RefBase>& object)
    {
        const MutexLock lock(mutex_);
        if (isClosed_) {
            return 0;
        }
        const auto [known, isNew] = ids_.try_emplace(object.GetRefPtr(), nextId_);
        nextId_ += isNew ? 1 : 0;
        Pinned& pinned = objects_[known->second];
        pinned.object = object;
        ++pinned.count;
        return known->second;
    }

    /** Takes `count` pins off, or as many as there are. Returns the object that the last one went from, else null. */
    [[nodiscard]] sptr<RefBase> Unpin(uint64_t id, uint32_t count)
    {
        const MutexLock lock(mutex_);
        const auto found = objects_.find(id);
        if (found == objects_.end()) {
            return nullptr;
        }
        Pinned& pinned = found->second;
        if (count < pinned.count) {
            pinned.count -= count;
            return nullptr;
        }
        sptr<RefBase> object = std::move(pinned.object);
        ids_.erase(object.GetRefPtr());
        objects_.erase(found);
        return object;
    }

    /** Null unless the object is pinned. */
    sptr<RefBase> Find(uint64_t id)
    {
        const MutexLock lock(mutex_);
        const auto found = objects_.find(id);
        return found != objects_.end() ? found->second.object : nullptr;
    }

    /** Takes all pins off, for good. */
    [[nodiscard]] std::vector<sptr<RefBase>> Close()
    {
        const MutexLock lock(mutex_);
        isClosed_ = true;
        std::vector<sptr<RefBase>> objects;
        for (auto& [id, pinned] : objects_) {
            objects.push_back(std::move(pinned.object));
        }
        objects_.clear();
        ids_.clear();
        return objects;
    }

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
