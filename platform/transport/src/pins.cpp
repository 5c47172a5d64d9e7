// SPDX-License-Identifier: Apache-2.0
#include "pins.h"

#include <utility>

namespace OHOS::Transport {

uint64_t Pins::Pin(const sptr<RefBase>& object)
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

sptr<RefBase> Pins::Unpin(uint64_t id, uint32_t count)
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

sptr<RefBase> Pins::Find(uint64_t id)
{
    const MutexLock lock(mutex_);
    const auto found = objects_.find(id);
    return found != objects_.end() ? found->second.object : nullptr;
}

std::vector<sptr<RefBase>> Pins::Close()
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

} // namespace OHOS::Transport
