// SPDX-License-Identifier: Apache-2.0
#include "exports.h"

#include <utility>

#include "peer.h"

namespace OHOS::Transport {

Exports& Exports::Get()
{
    static auto& exports = *new Exports();
    return exports;
}

sptr<IRemoteObject> Exports::AddService(int32_t number, const sptr<IRemoteObject>& object)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(services_[number], object);
}

sptr<IRemoteObject> Exports::RemoveService(int32_t number)
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = services_.find(number);
    if (found == services_.end()) {
        return nullptr;
    }
    sptr<IRemoteObject> object = std::move(found->second);
    services_.erase(found);
    return object;
}

sptr<IRemoteObject> Exports::FindService(int32_t number)
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = services_.find(number);
    return found != services_.end() ? found->second : nullptr;
}

bool Exports::Pin(const Peer& peer, const sptr<IRemoteObject>& object, uint64_t& id)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (peer.IsForgotten()) {
        return false;
    }
    for (const auto& [number, service] : services_) {
        // Known by its number, so that it is one object to the peer however it came by it.
        if (service == object) {
            id = static_cast<uint64_t>(number);
            return true;
        }
    }
    const auto [known, isNew] = ids_.try_emplace(object.GetRefPtr(), nextId_);
    id = known->second;
    Export& entry = objects_[id];
    if (isNew) {
        ++nextId_;
        entry.object = object;
    }
    if (pins_[&peer][id]++ == 0) {
        ++entry.peers;
    }
    return true;
}

sptr<IRemoteObject> Exports::Unpin(Peer& peer, uint64_t id, uint32_t count)
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto pins = pins_.find(&peer);
    if (pins == pins_.end()) {
        return nullptr;
    }
    const auto pin = pins->second.find(id);
    if (pin == pins->second.end()) {
        return nullptr;
    }
    if (count < pin->second) {
        pin->second -= count;
        return nullptr;
    }
    pins->second.erase(pin);
    if (pins->second.empty()) {
        pins_.erase(pins);
    }
    sptr<IRemoteObject> object = objects_.at(id).object;
    static_cast<void>(DropOne(id));
    return peer.Park(id, std::move(object));
}

std::vector<sptr<IRemoteObject>> Exports::Forget(const Peer& peer)
{
    std::vector<sptr<IRemoteObject>> dropped;
    std::lock_guard<std::mutex> lock(mutex_);
    peer.SetForgotten();
    const auto pins = pins_.find(&peer);
    if (pins != pins_.end()) {
        for (const auto& [id, count] : pins->second) {
            dropped.push_back(DropOne(id));
        }
        pins_.erase(pins);
    }
    return dropped;
}

sptr<IRemoteObject> Exports::DropOne(uint64_t id)
{
    const auto found = objects_.find(id);
    if (--found->second.peers > 0) {
        return nullptr;
    }
    sptr<IRemoteObject> object = std::move(found->second.object);
    ids_.erase(object.GetRefPtr());
    objects_.erase(found);
    return object;
}

sptr<IRemoteObject> Exports::Find(Peer& peer, uint64_t id)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (const auto service = services_.find(static_cast<int32_t>(id));
        service != services_.end() && static_cast<uint64_t>(service->first) == id) {
        return service->second;
    }
    const auto pins = pins_.find(&peer);
    return pins != pins_.end() && pins->second.count(id) != 0 ? objects_.at(id).object : peer.FindParked(id);
}

bool Exports::Welcomes(const Peer& peer)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return !services_.empty() || pins_.count(&peer) != 0;
}

} // namespace OHOS::Transport
