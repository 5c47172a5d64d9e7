// SPDX-License-Identifier: Apache-2.0
#ifndef PEERS_H
#define PEERS_H

#include <map>
#include <memory>
#include <string>

#include "bus.h"
#include "inbound.h"
#include "peer.h"

namespace OHOS::Transport {

/** The peers that this process knows, until their deaths are announced; and this process's own place among them. */
class Peers : public Bus::Observer {
public:
    /** The first call, which must come before the bus is started, has it observe the bus. */
    static Peers& Get();

    Peers();

    // In a turn with the bus.

    /** The process of that unique name; null if it is gone, or this one. */
    std::shared_ptr<Peer> Meet(const std::string& name);

    /** A service of that process ends, and the process with it perhaps: what it has sent until now. */
    Inbound::Rest TakeLeave(const std::string& name);

    bool OnJoined() override;
    void OnLost() override;
    void OnOwnerChange(const std::string& name, const std::string& from, const std::string& to) override;

private:
    std::shared_ptr<Peer> Introduce(const std::string& name, pid_t pid);
    std::shared_ptr<Peer> Find(const std::string& name);
    void AnnounceDeath(const std::shared_ptr<Peer>& peer);

    Identity self_; // For whoever has a turn with the bus.

    Mutex mutex_;
    std::map<std::string, std::shared_ptr<Peer>> peers_ GUARDED_BY(mutex_);
};

} // namespace OHOS::Transport

#endif // PEERS_H
