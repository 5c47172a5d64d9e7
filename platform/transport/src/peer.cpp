// SPDX-License-Identifier: Apache-2.0
#include "peer.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "notices.h"
#include "object_layer.h"
#include "process.h"
#include "services.h"
#include "transport_error.h"

namespace OHOS::Transport {

thread_local const Peer* Peer::calling = nullptr;

Peer::Peer(Identity theirs, uid_t user, const CallConnections::Connect& connect, OnDeath onDeath)
    : identity(std::move(theirs)), uid(user), onDeath_(std::move(onDeath)), calls_(connect), oneWay_(connect)
{}

int Peer::Call(Message& call, Clock::time_point deadline, const ReadReply& read) noexcept
{
    for (int hungUp = 0; !isDead_ && Process::IsUsable();) {
        int error = 0;
        std::unique_ptr<Connection> connection = calls_.Take(deadline, error);
        if (connection == nullptr) {
            if (error == DEAD) {
                Die();
            }
            return error;
        }
        const bool isNew = connection->calls == 0;
        bool isUsable = true;
        error = Exchange(*connection, call, deadline, read, isUsable);
        calls_.Return(std::move(connection), isUsable);
        hungUp += isNew ? 1 : 0;
        // Where the peer had hung up, nothing was sent. It does that to new connections, too, when it hears that this
        // process has given up a service.
        if (call.wasSent || error != DEAD || hungUp == CallConnections::MAX_HUNG_UP) {
            return error;
        }
    }
    return DEAD;
}

int Peer::Exchange(
    Connection& connection, Message& call, Clock::time_point deadline, const ReadReply& read, bool& isUsable)
{
    const bool isNew = connection.calls == 0;
    call.header.number = std::max(++connection.calls, 1U); // Never 0.
    int error = call.Send(connection.Get());
    if (error != 0 && !(error == DEAD && isNew)) { // A new connection may have been refused: its answer is there.
        isUsable = error == TOO_LARGE || error == NO_MEMORY;
        return error;
    }
    Message reply;
    error = connection.Receive(reply, deadline);
    if (error == 0 && (reply.header.kind != Header::REPLY || reply.header.number != call.header.number)) {
        error = BAD_MESSAGE;
    }
    isUsable = error == 0; // A reply that comes too late is nobody's.
    if (error != 0 || reply.header.code != 0) {
        return error != 0 ? error : static_cast<int32_t>(reply.header.code);
    }
    error = read(reply);
    const bool isAwaited = std::any_of(reply.handles.begin(), reply.handles.end(),
        [](const Handle& handle) { return handle.owner == Handle::RECEIVER; });
    if (isAwaited) { // The peer keeps what came home until it knows that it has arrived.
        Message receipt;
        receipt.header.kind = Header::RECEIPT;
        isUsable = receipt.Send(connection.Get()) == 0;
    }
    return error;
}

int Peer::CallOneWay(Message& call) noexcept
{
    const int error = Process::IsUsable() ? oneWay_.Send(call) : DEAD;
    if (error == DEAD && Process::IsUsable()) {
        Die();
    }
    return error;
}

sptr<RefBase> Peer::ProxyOf(uint64_t id, bool isReceived) noexcept
{
    uint32_t stale = 0;
    sptr<RefBase> proxy;
    {
        const MutexLock lock(mutex_);
        Known& known = proxies_[id];
        proxy = known.proxy.promote();
        if (proxy == nullptr) {
            // Either there was none, or it is on its way out, and will find that its place is taken.
            stale = std::exchange(known.received, 0);
            proxy = ObjectLayer::instance->NewProxy(shared_from_this(), id);
            known.proxy = wptr<RefBase>(proxy);
        }
        known.received += isReceived ? 1 : 0;
    }
    if (stale > 0) {
        oneWay_.Release(id, stale);
    }
    return proxy;
}

void Peer::Forget(uint64_t id) noexcept
{
    uint32_t received = 0;
    if (Process::IsUsable()) {
        const MutexLock lock(mutex_);
        const auto known = proxies_.find(id);
        if (known != proxies_.end() && known->second.proxy == nullptr) {
            received = known->second.received;
            proxies_.erase(known);
        }
    }
    if (received > 0) {
        oneWay_.Release(id, received);
    }
}

bool Peer::Pin(const sptr<RefBase>& object, uint64_t& id)
{
    if (Services::Get().FindNumber(object, id)) {
        return true;
    }
    id = pins_.Pin(object);
    return id != 0;
}

void Peer::Unpin(uint64_t id, uint32_t count)
{
    // It may be the last reference, and this thread may hold what its destructor locks.
    if (sptr<RefBase> object = pins_.Unpin(id, count)) {
        Notices::Post([dropped = std::move(object)] {});
    }
}

sptr<RefBase> Peer::Find(uint64_t id)
{
    const sptr<RefBase> service = Services::Get().Find(id);
    return service != nullptr ? service : pins_.Find(id);
}

sptr<RefBase> Peer::Receive(uint64_t id) { return ProxyOf(id, true); }

void Peer::Die()
{
    if (!isDead_.exchange(true)) {
        calls_.Close();
        oneWay_.Close();
        onDeath_(shared_from_this());
    }
}

void Peer::AnnounceDeath()
{
    std::vector<sptr<RefBase>> proxies;
    {
        const MutexLock lock(mutex_);
        for (const auto& [id, known] : proxies_) {
            proxies.push_back(known.proxy.promote());
        }
    }
    for (const auto& proxy : proxies) {
        if (proxy != nullptr) {
            ObjectLayer::instance->AnnounceDeath(proxy);
        }
    }
    static_cast<void>(pins_.Close());
}

} // namespace OHOS::Transport
