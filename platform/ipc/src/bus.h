// SPDX-License-Identifier: Apache-2.0
#ifndef BUS_H
#define BUS_H

#include <systemd/sd-bus.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "descriptor.h"
#include "peer.h"

namespace OHOS::Transport {

/**
 * This process's connection to the bus daemon, which knows who is who and makes introductions. One thread alone touches
 * the connection; it runs no code of the users'. When the connection is lost, everybody on the bus is dead, for good.
 */
class Bus {
public:
    /** Never destroyed. */
    static Bus& Get();

    /** For an answer that comes, or does not, before the peer is gone. */
    static constexpr std::chrono::hours AS_LONG_AS_IT_LIVES{24 * 365};

    /** Whether there is a bus to speak to at all: OHOS_BUS_ADDRESS is set. */
    static bool IsConfigured();

    /** Connects if need be, for at most 8 s. False if the bus cannot be reached or was lost. */
    bool Connect();

    /** Runs `task` on the bus thread, also after the bus was lost. */
    void Post(std::function<void()> task);

    // From any thread but the bus thread's. Each asks the daemon, for 8 s at most.

    /** 0, or a code of ipc_types.h. */
    int RequestName(const std::string& name);
    int ReleaseName(const std::string& name);

    /** Who owns a name; null if nobody does, or this process. */
    std::shared_ptr<Peer> OwnerOf(const std::string& name);

    /** Asks a peer for a connection. None, and why not, if there is none by `deadline`. */
    Descriptor OpenConnection(const std::string& peer, Clock::time_point deadline, int& error);

    /** The same, for who does not wait for it so long. */
    std::shared_ptr<Answer<Introduction>> AskForConnection(
        const std::string& peer, std::chrono::microseconds patience = AS_LONG_AS_IT_LIVES);

    // On the bus thread.

    /** Called for every change of a name's owner; a unique name where there is one, else empty. */
    using OwnerChange = std::function<void(const std::string& name, const std::string& from, const std::string& to)>;
    /** Called when the bus is lost, all peers being forgotten. */
    using Loss = std::function<void()>;
    /** To be set before Connect. */
    void SetObservers(OwnerChange ownerChange, Loss loss);

    /** Has `done` told, on the bus thread, who owns `name` now: as OwnerChange. */
    void AskOwner(const std::string& name, const std::function<void(const std::string& owner)>& done);

    /** Runs `task` once that peer lives on or is forgotten, whichever is its lot. */
    void AfterLastWords(const std::string& peer, const std::function<void()>& task);

    void FlushReleases(const std::shared_ptr<Peer>& peer);

    /** Tells a dead peer's death if its connections have been read to their end. */
    void ForgetIfRead(const std::shared_ptr<Peer>& peer);

private:
    using Reply = std::function<void(sd_bus_message* reply)>;

    struct Dying {
        std::shared_ptr<Peer> peer;
        Clock::time_point deadline;
        std::vector<std::function<void()>> tasks;
    };

    Bus() = default;

    // A call whose reply is awaited.
    struct Pending {
        Bus* bus;
        std::list<Pending>::iterator self;
        Reply done;
    };

    bool Open();
    void Close();
    void Run();
    void RunTasks();
    bool ProcessOne();
    /** Until there is something to do; if it `isBusy`, sees only to the blocked ones that can go on. */
    void Wait(bool isBusy);
    void Lose();

    /** Sends `call`, which is then no longer the caller's. `done` gets the reply, an error, or null for a lost bus. */
    void Call(sd_bus_message* call, std::chrono::microseconds patience, Reply done);
    void CallDaemon(const char* member, const std::string& name, const uint32_t* flags, Reply done);
    int AskForName(const char* member, const std::string& name, const uint32_t* flags);

    std::shared_ptr<Peer> PeerNamed(const std::string& name);
    void MarkDead(const std::string& name);
    void Forget(std::shared_ptr<Peer> peer);
    void OnConnect(sd_bus_message* call);
    /** Counts a message of about `size` bytes to a peer. False if more than `limit` would lie unread there. */
    bool MaySend(const std::shared_ptr<Peer>& peer, size_t size, size_t limit);
    void Grant(sd_bus_message* call, const std::shared_ptr<Peer>& peer);
    void OnRelease(sd_bus_message* call);

    static int OnMessage(sd_bus_message* message, void* bus, sd_bus_error* error);
    static int OnOwnerChange(sd_bus_message* signal, void* bus, sd_bus_error* error);
    static int OnReply(sd_bus_message* reply, void* pending, sd_bus_error* error);

    enum class State { UNTRIED, UP, LOST };
    std::atomic<State> state_{State::UNTRIED};
    std::mutex connectMutex_; // Held while the bus is being opened.
    Descriptor wake_;

    std::mutex mutex_; // Guards the next one.
    std::deque<std::function<void()>> tasks_;

    // The bus thread's own, once it runs.
    sd_bus* bus_ = nullptr; // Null once lost.
    int busFd_ = -1;
    OwnerChange ownerChange_;
    Loss loss_;
    std::string ownName_;
    std::list<Pending> pending_;
    std::map<std::string, std::shared_ptr<Peer>> peers_; // The living ones, by unique name.
    std::vector<Dying> dying_;
    std::vector<std::shared_ptr<Peer>> blocked_; // Whose releases wait for room in a socket.
    Descriptor spare_;                           // Makes room for the descriptor that a message may bring.
};

} // namespace OHOS::Transport

#endif // BUS_H
