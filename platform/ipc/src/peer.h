// SPDX-License-Identifier: Apache-2.0
#ifndef PEER_H
#define PEER_H

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "answer.h"
#include "descriptor.h"
#include "ipc_object_proxy.h"
#include "message.h"

namespace OHOS::Transport {

/**
 * Another process on the bus: our connections to it, its connections to us, and the proxies of its objects. There is
 * one per unique bus name, made by the bus thread, so that nobody's death goes unseen.
 *
 * Its life: alive; dead, which is when calls fail; forgotten, when its last words have been read and its death is told.
 */
class Peer : public std::enable_shared_from_this<Peer> {
public:
    /** What the kernel and the bus vouch for. */
    struct Credentials {
        uid_t uid;
        pid_t pid;
    };

    /** Connections granted to one process, and by it: calls take all but one, which is for one-way calls. */
    static constexpr size_t MAX_CONNECTIONS = 32;
    /** Connections granted to all peers. */
    static constexpr size_t MAX_ALL_CONNECTIONS = 1024;
    /** Objects whose releases wait for a peer that does not read. Those beyond are never released. */
    static constexpr size_t MAX_WAITING_RELEASES = 65536;
    /** When there are so many for all peers, each has a small share only. */
    static constexpr size_t MAX_ALL_WAITING_RELEASES = 1 << 20;
    static constexpr size_t WAITING_RELEASES_SHARE = 1024;

    /** Objects that the peer has released and that are held for replies under way. The oldest make room. */
    static constexpr size_t MAX_PARKED = 4096;

    explicit Peer(std::string name) : name_(std::move(name)) {}

    const std::string& Name() const
    {
        return name_;
    }

    bool IsDead() const
    {
        return dead_;
    }

    // For proxies, on any thread.

    /** The proxy of an object of the peer's; `received` if the peer sent it, so that it is released in the end. */
    sptr<IPCObjectProxy> ProxyOf(uint64_t id, bool received);

    /** The last word of a proxy. */
    void Remove(const IPCObjectProxy& proxy);

    /** IRemoteObject::SendRequest to one of the peer's objects. */
    int Call(uint64_t id, uint32_t code, MessageParcel& data, MessageParcel& reply, const MessageOption& option);

    // For requests of the peer's.

    /** The peer whose request is being served on this thread; null if none is. */
    static const Peer* Calling();

    uid_t Uid() const
    {
        return credentials_.uid;
    }

    pid_t Pid() const
    {
        return credentials_.pid;
    }

    /**
     * Takes an object that the peer has just released, as long as calls to the peer are under way that began before:
     * their replies may have brought it home, and the release came by another way. Else the object is given back.
     */
    [[nodiscard]] sptr<IRemoteObject> Park(uint64_t id, sptr<IRemoteObject> object);
    sptr<IRemoteObject> FindParked(uint64_t id);

    /** Guarded by the exports. */
    bool IsForgotten() const
    {
        return forgotten_;
    }

    void SetForgotten() const
    {
        forgotten_ = true;
    }

    // For the bus thread alone.

    bool HasCredentials() const
    {
        return hasCredentials_;
    }

    void SetCredentials(const Credentials& credentials);

    /** Bytes sent to the peer over the bus. */
    struct Mail {
        size_t sent = 0;
        size_t read = 0;      // That it has shown to have read.
        bool isAsked = false; // To show it.
    };

    Mail& GetMail()
    {
        return mail_;
    }

    /** Takes one of the connections that the process may have. False if there is none left. Behind SetCredentials. */
    bool ReserveConnection();
    void CancelConnection() const;

    /** Serves a reserved connection on a thread of its own. False, and the connection cancelled, without one. */
    bool Serve(Descriptor connection);

    /**
     * Sends what releases it can on the one-way connection, after the calls made there. False if that is full. Where
     * there is none, nothing is left to overtake, and `other` takes what it can.
     */
    using Releases = std::map<uint64_t, uint32_t>;
    bool FlushReleases(const std::function<void(Releases&)>& other);

    /** The one-way connection; -1 if there is none. */
    int OneWayConnection();

    /** The peer is gone: calls fail from now on, those under way at once. */
    void Die();

    /** Whether connections of the peer's are still being read. */
    bool IsBeingServed();

    /** Nothing more of the peer's is served. */
    void StopServing();

    // For the notice thread.

    /** Tells everyone who asked of the peer's death. */
    void SendObituaries();

private:
    bool SendReleases(const std::function<void(Releases&)>& other);
    Descriptor TakeConnection(Clock::time_point deadline, int& error);
    void GiveBack(Descriptor connection, bool isUsable);
    int CallOneWay(Outgoing& message, const Header& header, Clock::time_point deadline);
    int AwaitReply(int fd, MessageParcel& reply, Clock::time_point deadline, bool& isUsable);
    void ServeConnection(const Descriptor& connection);
    bool HasStopped();
    bool ServeCall(int fd, const Header& header, MessageParcel& data, int error);

    const std::string name_;
    std::atomic<bool> dead_{false};
    Credentials credentials_{}; // Set before the first connection is served, never again.
    bool hasCredentials_ = false;
    Mail mail_; // The bus thread's own.
    mutable bool forgotten_ = false;

    std::mutex mutex_; // Guards what follows. Nothing of a caller's runs under it.

    std::map<uint64_t, wptr<IPCObjectProxy>> proxies_;

    std::vector<Descriptor> idle_; // Connections for calls.
    std::map<int, uint64_t> busy_; // Those under way, and the call's number.
    uint64_t lastCall_ = 0;
    struct Parked {
        uint64_t lastCall; // When it was parked.
        uint64_t id;
        sptr<IRemoteObject> object;
    };
    std::deque<Parked> parked_;
    size_t callConnections_ = 0; // Idle, busy and being made.
    std::condition_variable freed_;
    Descriptor oneWay_;
    bool isConnecting_ = false;                         // The one-way connection is being made.
    std::shared_ptr<Answer<Introduction>> oneWayAsked_; // To come yet; null where nobody has given up on it.
    bool mayWait_ = true;                               // A call, for that. Once, until one has been sent.
    std::condition_variable connected_;
    Releases releases_; // Yet to be sent.

    std::set<int> served_;
    bool stopped_ = false;
};

} // namespace OHOS::Transport

#endif // PEER_H
