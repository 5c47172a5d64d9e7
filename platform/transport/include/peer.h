// SPDX-License-Identifier: Apache-2.0
#ifndef PEER_H
#define PEER_H

#include <atomic>
#include <functional>
#include <map>
#include <memory>

#include "call_connections.h"
#include "introduction.h"
#include "object_table.h"
#include "one_way_connection.h"
#include "pins.h"

namespace OHOS::Transport {

/**
 * Another process on the bus: the way to its objects, the proxies of them, and what it may reach here. There is one per
 * unique name, made by Peers. Any thread may call anything.
 *
 *   alive --Die()--> dead: calls fail --what it sent has been read--> its death is announced, and its pins go
 */
class Peer : public ObjectTable, public std::enable_shared_from_this<Peer> {
public:
    using OnDeath = std::function<void(const std::shared_ptr<Peer>& peer)>;

    /** `onDeath` is called once, by whoever finds the peer to be dead. */
    Peer(Identity identity, uid_t uid, const CallConnections::Connect& connect, OnDeath onDeath);

    bool IsDead() const { return isDead_; }

    /** Takes what is wanted of a reply, while its data is there. 0 or an Error. */
    using ReadReply = std::function<int(const Message& reply)>;

    /** Sends a call, and waits for the reply, which is read if its status is 0. The status, or an Error. */
    int Call(Message& call, Clock::time_point deadline, const ReadReply& read) noexcept;

    /** Sends a one-way call. 0 or an Error. */
    int CallOneWay(Message& call) noexcept;

    /** The one proxy of an object of the peer's. Each time that `isReceived` is released in the end. */
    sptr<RefBase> ProxyOf(uint64_t id, bool isReceived) noexcept;

    /** To be called by a proxy's destructor. Its place may be another one's by then. */
    void Forget(uint64_t id) noexcept;

    bool Pin(const sptr<RefBase>& object, uint64_t& id) override;
    void Unpin(uint64_t id, uint32_t count) override;
    sptr<RefBase> Find(uint64_t id) override;
    sptr<RefBase> Receive(uint64_t id) override;

    /** From now on the peer is dead. To be called with no lock of its own held. */
    void Die();

    /** On the notice thread: announces the death to every proxy, and lets the peer's pins go. */
    void AnnounceDeath();

    const Identity identity;
    const uid_t uid;

    /** The peer whose request is being served on this thread; null if none is. */
    static thread_local const Peer* calling;

private:
    struct Known {
        wptr<RefBase> proxy;
        uint32_t received = 0; // How often the peer sent this object since the proxy was made.
    };

    int Exchange(
        Connection& connection, Message& call, Clock::time_point deadline, const ReadReply& read, bool& isUsable);

    const OnDeath onDeath_;
    std::atomic<bool> isDead_{false};
    CallConnections calls_;
    OneWayConnection oneWay_;
    Pins pins_;

    Mutex mutex_;
    std::map<uint64_t, Known> proxies_ GUARDED_BY(mutex_);
};

} // namespace OHOS::Transport

#endif // PEER_H
