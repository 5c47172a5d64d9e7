// SPDX-License-Identifier: Apache-2.0
#ifndef EXPORTS_H
#define EXPORTS_H

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "iremote_object.h"

namespace OHOS::Transport {

class Peer;

/**
 * The objects of this process that others may call, by id. A service's id is its number. Any other object gets an id
 * of its own as long as a peer is pinned to it: each sending pins once more. What is handed back is to be let go of by
 * the caller, under no lock and not on the bus thread, as it may be an object's last reference.
 */
class Exports {
public:
    /** Never destroyed. */
    static Exports& Get();

    /** Makes `object` the service of that number. Returns the former one. */
    [[nodiscard]] sptr<IRemoteObject> AddService(int32_t number, const sptr<IRemoteObject>& object);
    [[nodiscard]] sptr<IRemoteObject> RemoveService(int32_t number);
    sptr<IRemoteObject> FindService(int32_t number);

    /** Pins `peer` to `object` once more. False if the peer is gone. */
    bool Pin(const Peer& peer, const sptr<IRemoteObject>& object, uint64_t& id);

    /** Takes `count` pins off, of those that the peer has. */
    [[nodiscard]] sptr<IRemoteObject> Unpin(Peer& peer, uint64_t id, uint32_t count);

    /** Takes all pins of a peer off, and has it pinned to nothing any more. */
    [[nodiscard]] std::vector<sptr<IRemoteObject>> Forget(const Peer& peer);

    /** The object, if `peer` is pinned to it, or was (see Peer::Park), or it is a service; null otherwise. */
    sptr<IRemoteObject> Find(Peer& peer, uint64_t id);

    /** Whether `peer` has anything to call here. */
    bool Welcomes(const Peer& peer);

private:
    struct Export {
        sptr<IRemoteObject> object;
        size_t peers = 0; // Pinned to it, once or more.
    };

    Exports() = default;

    sptr<IRemoteObject> DropOne(uint64_t id);

    std::mutex mutex_;
    std::map<int32_t, sptr<IRemoteObject>> services_;
    std::map<uint64_t, Export> objects_;
    std::map<const IRemoteObject*, uint64_t> ids_;             // Of objects_.
    std::map<const Peer*, std::map<uint64_t, uint64_t>> pins_; // How often, by id.
    uint64_t nextId_ = 0x01000000;                             // Behind the services' numbers.
};

} // namespace OHOS::Transport

#endif // EXPORTS_H
