// SPDX-License-Identifier: Apache-2.0
#include "peers.h"

#include <unistd.h>

#include "notices.h"

namespace OHOS::Transport {

Peers& Peers::Get()
{
    static Peers& peers = *new Peers();
    return peers;
}

Peers::Peers() { Bus::Get().Observe(*this); }

std::shared_ptr<Peer> Peers::Meet(const std::string& name)
{
    Bus& bus = Bus::Get();
    std::shared_ptr<Peer> peer = Find(name);
    if (peer != nullptr || name == self_.name) {
        return peer;
    }
    Identity identity{self_.busId, name, 0};
    uid_t uid = 0;
    // Watched first, so that its end is noticed whenever it comes.
    if (!bus.WatchProcess(name, identity.pid, uid)) {
        return nullptr;
    }
    const auto connect = [identity, ours = self_.name](
                             int& error) { return Introduction::Connect(identity, ours, error); };
    peer = std::make_shared<Peer>(identity, uid, connect, [this](const auto& dead) { AnnounceDeath(dead); });
    const MutexLock lock(mutex_);
    return peers_[name] = peer;
}

Inbound::Rest Peers::TakeLeave(const std::string& name)
{
    const std::shared_ptr<Peer> peer = Meet(name); // It may have sent something before it was asked for.
    if (peer == nullptr) {
        return {};
    }
    if (Bus::Get().OwnerOf(name) == "") {
        peer->Die(); // Which is known before the end of its services is.
    }
    return Inbound::Get().HangUpReading(peer->identity.pid);
}

bool Peers::OnJoined()
{
    self_ = {Bus::Get().Id(), Bus::Get().OwnName(), getpid()};
    return Inbound::Get().Listen(
        Introduction::Listen(self_), [this](const std::string& name, pid_t pid) { return Introduce(name, pid); });
}

void Peers::OnLost()
{
    std::map<std::string, std::shared_ptr<Peer>> peers; // On the next bus, others have these names.
    {
        const MutexLock lock(mutex_);
        peers.swap(peers_);
    }
    for (const auto& [name, peer] : peers) {
        peer->Die();
    }
    Inbound::Get().StopListening();
}

void Peers::OnOwnerChange(const std::string& name, const std::string& /* from */, const std::string& to)
{
    const std::shared_ptr<Peer> peer = to.empty() ? Find(name) : nullptr;
    if (peer != nullptr) {
        peer->Die();
    }
}

std::shared_ptr<Peer> Peers::Introduce(const std::string& name, pid_t pid)
{
    std::shared_ptr<Peer> peer = Find(name);
    if (peer == nullptr && Introduction::IsName(name)) {
        peer = Bus::Get().Ask([&] { return Meet(name); });
    }
    return peer != nullptr && peer->identity.pid == pid ? peer : nullptr;
}

std::shared_ptr<Peer> Peers::Find(const std::string& name)
{
    const MutexLock lock(mutex_);
    const auto found = peers_.find(name);
    return found != peers_.end() ? found->second : nullptr;
}

// Once what it has sent has been read.
void Peers::AnnounceDeath(const std::shared_ptr<Peer>& peer)
{
    Notices::Post([this, peer, rest = Inbound::Get().HangUpReading(peer->identity.pid)] {
        Inbound::Get().Await(rest);
        peer->AnnounceDeath();
        const MutexLock lock(mutex_);
        const auto found = peers_.find(peer->identity.name);
        if (found != peers_.end() && found->second == peer) { // On another bus, another has the name.
            peers_.erase(found);
        }
    });
}

} // namespace OHOS::Transport
