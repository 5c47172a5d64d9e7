// SPDX-License-Identifier: Apache-2.0
#include "peer.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "bus.h"
#include "exports.h"
#include "notices.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

thread_local const Peer* g_calling = nullptr;

// The process of each connection that peers have here, or are about to have. Never destroyed: connections outlive main.
struct Connections {
    std::mutex mutex;
    std::multiset<pid_t> processes;
};
Connections& g_connections = *new Connections();

std::atomic<size_t> g_waitingReleases{0}; // For all peers.

// Connections for one message: the second one is new, and only a peer that plays tricks has closed that too.
constexpr int MAX_TRIES = 2;

// For a peer that has let a call wait once, and is asked anew: an answer takes a millisecond.
constexpr std::chrono::milliseconds GRACE{50};

class CallingScope {
public:
    explicit CallingScope(const Peer* peer)
    {
        g_calling = peer;
    }

    CallingScope(const CallingScope&) = delete;
    CallingScope& operator=(const CallingScope&) = delete;

    ~CallingScope()
    {
        g_calling = nullptr;
    }
};

// Whether nothing waits to be read: a reply that comes before its call is nobody's, and an end is an end.
bool IsQuiet(int fd)
{
    char byte = 0;
    return recv(fd, &byte, sizeof(byte), MSG_PEEK | MSG_DONTWAIT) < 0 && errno == EAGAIN;
}

bool HasEnded(int fd)
{
    char byte = 0;
    return recv(fd, &byte, sizeof(byte), MSG_PEEK | MSG_DONTWAIT) == 0;
}

bool WaitToRead(int fd, Clock::time_point deadline)
{
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(deadline - Clock::now()).count();
        const timespec timeout{std::max<int64_t>(left, 0) / 1'000'000'000, std::max<int64_t>(left, 0) % 1'000'000'000};
        pollfd wait{fd, POLLIN, 0};
        const int ready = ppoll(&wait, 1, &timeout, nullptr);
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

} // namespace

sptr<IPCObjectProxy> Peer::ProxyOf(uint64_t id, bool received)
{
    std::lock_guard<std::mutex> lock(mutex_);
    wptr<IPCObjectProxy>& known = proxies_[id];
    sptr<IPCObjectProxy> proxy = known.promote();
    if (proxy == nullptr) {
        // Either there was none, or it is on its way out and will find that its place is taken.
        proxy = new IPCObjectProxy(shared_from_this(), id);
        known = proxy;
    }
    proxy->received_ += received ? 1 : 0;
    return proxy;
}

void Peer::Remove(const IPCObjectProxy& proxy)
{
    if (!Process::IsUsable()) {
        return;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    const auto known = proxies_.find(proxy.id_);
    if (known != proxies_.end() && known->second == &proxy) {
        proxies_.erase(known);
    }
    const size_t room = g_waitingReleases < MAX_ALL_WAITING_RELEASES ? MAX_WAITING_RELEASES : WAITING_RELEASES_SHARE;
    if (proxy.received_ > 0 && !dead_ && releases_.size() < room) {
        const bool isScheduled = !releases_.empty();
        const auto [release, isNew] = releases_.emplace(proxy.id_, 0);
        release->second += proxy.received_;
        g_waitingReleases += isNew ? 1 : 0;
        if (!isScheduled) {
            Bus::Get().Post([self = shared_from_this()] { Bus::Get().FlushReleases(self); });
        }
    }
}

int Peer::Call(uint64_t id, uint32_t code, MessageParcel& data, MessageParcel& reply, const MessageOption& option)
{
    if (dead_ || !Process::IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    const auto deadline = Clock::now() + std::chrono::seconds(std::max(option.GetWaitTime(), 0));
    const bool isOneWay = (option.GetFlags() & MessageOption::TF_ASYNC) != 0;
    Header header{};
    header.kind = Header::CALL;
    header.code = code;
    header.flags = isOneWay ? MessageOption::TF_ASYNC : MessageOption::TF_SYNC;
    header.objectId = id;
    Outgoing message(shared_from_this(), &data);
    if (isOneWay) {
        return CallOneWay(message, header, deadline);
    }
    for (int tries = 1;; ++tries) {
        int error = ERR_NONE;
        Descriptor connection = TakeConnection(deadline, error);
        if (!connection) {
            return error;
        }
        error = message.Send(connection.Get(), header);
        // The peer has closed it, so that nothing was sent; if it is dead, there is no other.
        const bool hasEnded = error == ERR_DEAD_OBJECT;
        bool isUsable = !hasEnded;
        if (error == ERR_NONE) {
            error = AwaitReply(connection.Get(), reply, deadline, isUsable);
        }
        GiveBack(std::move(connection), isUsable);
        if (!hasEnded || tries == MAX_TRIES) {
            return error;
        }
    }
}

Descriptor Peer::TakeConnection(Clock::time_point deadline, int& error)
{
    std::unique_lock<std::mutex> lock(mutex_);
    while (!dead_) {
        if (!idle_.empty()) {
            Descriptor connection = std::move(idle_.back());
            idle_.pop_back();
            if (IsQuiet(connection.Get())) {
                busy_[connection.Get()] = ++lastCall_;
                return connection;
            }
            --callConnections_;
        } else if (callConnections_ < MAX_CONNECTIONS - 1) {
            ++callConnections_;
            lock.unlock();
            Descriptor connection = Bus::Get().OpenConnection(name_, deadline, error);
            lock.lock();
            if (connection && !dead_) {
                busy_[connection.Get()] = ++lastCall_;
                return connection;
            }
            --callConnections_;
            freed_.notify_one();
            if (!connection) {
                return {};
            }
        } else if (freed_.wait_until(lock, deadline) == std::cv_status::timeout) {
            freed_.notify_one(); // A connection that came in this very moment is for the next one.
            error = ERR_TIMED_OUT;
            return {};
        }
    }
    error = ERR_DEAD_OBJECT;
    return {};
}

void Peer::GiveBack(Descriptor connection, bool isUsable)
{
    std::vector<Parked> dropped;
    std::unique_lock<std::mutex> lock(mutex_);
    busy_.erase(connection.Get());
    while (!parked_.empty() && std::none_of(busy_.begin(), busy_.end(),
                                   [this](const auto& call) { return call.second <= parked_.front().lastCall; })) {
        dropped.push_back(std::move(parked_.front()));
        parked_.pop_front();
    }
    if (isUsable && !dead_) {
        idle_.push_back(std::move(connection));
    } else {
        --callConnections_;
        connection = {};
    }
    freed_.notify_one();
    lock.unlock();
    if (!dropped.empty()) {
        // Not on the caller's thread, which may hold what their destructors lock.
        Notices::Post([released = std::move(dropped)] {});
    }
}

int Peer::AwaitReply(int fd, MessageParcel& reply, Clock::time_point deadline, bool& isUsable)
{
    isUsable = WaitToRead(fd, deadline);
    if (!isUsable) {
        // A reply that came just now is taken, with its objects; for any other the connection is closed.
        shutdown(fd, SHUT_RD);
    }
    Incoming message;
    int error = ERR_BAD_MESSAGE;
    // The peer may have taken away what made us look: no deadline holds in there.
    if (message.Await(fd, MSG_DONTWAIT) && message.GetHeader().kind == Header::REPLY) {
        error = message.Receive(fd, shared_from_this(), reply);
    }
    if (error == ERR_NONE || error == ERR_NO_MEMORY) {
        return error == ERR_NONE ? static_cast<int32_t>(message.GetHeader().code) : error;
    }
    error = !isUsable ? ERR_TIMED_OUT : HasEnded(fd) ? ERR_DEAD_OBJECT : ERR_BAD_MESSAGE;
    isUsable = false;
    return error;
}

int Peer::CallOneWay(Outgoing& message, const Header& header, Clock::time_point deadline)
{
    std::unique_lock<std::mutex> lock(mutex_);
    for (int tries = 1; !dead_;) {
        if (oneWay_) {
            const int error = message.Send(oneWay_.Get(), header);
            mayWait_ = mayWait_ || error == ERR_NONE;
            if (error != ERR_DEAD_OBJECT) {
                return error;
            }
            oneWay_ = {}; // The peer has closed it, so that nothing was sent.
            if (tries++ == MAX_TRIES) {
                return error;
            }
            continue;
        }
        // One thread connects for all: the peer grants just one connection besides those for calls.
        if (isConnecting_) {
            if (connected_.wait_until(lock, deadline) == std::cv_status::timeout) {
                return ERR_TIMED_OUT;
            }
            continue;
        }
        isConnecting_ = true;
        // Who has let one call wait, and has taken none since, does not get to hold up the next ones too.
        const auto now = Clock::now();
        auto asked = oneWayAsked_;
        const auto grace = asked == nullptr ? GRACE : GRACE.zero();
        const auto until = mayWait_ ? deadline : std::min(deadline, now + grace);
        mayWait_ = mayWait_ && deadline <= now;
        lock.unlock();
        asked = asked != nullptr ? asked : Bus::Get().AskForConnection(name_);
        Introduction made = asked->AwaitUntil(until, {{}, ERR_TIMED_OUT});
        lock.lock();
        isConnecting_ = false;
        mayWait_ = mayWait_ || made.error == ERR_NO_DESCRIPTOR; // Which is not the peer's doing.
        oneWayAsked_ = made.error == ERR_TIMED_OUT && !dead_ ? asked : nullptr;
        connected_.notify_all();
        if (!made.connection) {
            return made.error;
        }
        if (!dead_) {
            oneWay_ = std::move(made.connection);
        }
    }
    return ERR_DEAD_OBJECT;
}

bool Peer::FlushReleases(const std::function<void(Releases&)>& other)
{
    std::lock_guard<std::mutex> lock(mutex_);
    const size_t before = releases_.size();
    const bool isFlushed = SendReleases(other);
    g_waitingReleases -= before - releases_.size();
    return isFlushed;
}

bool Peer::SendReleases(const std::function<void(Releases&)>& other)
{
    while (oneWay_ && !dead_ && !releases_.empty()) {
        const auto [id, count] = *releases_.begin();
        Header header{};
        header.kind = Header::RELEASE;
        header.code = count;
        header.objectId = id;
        const int error = Outgoing(shared_from_this(), nullptr).Send(oneWay_.Get(), header);
        if (error == ERR_BUFFER_FULL) {
            return false;
        }
        if (error == ERR_NONE) {
            releases_.erase(releases_.begin());
        } else {
            oneWay_ = {};
        }
    }
    if (dead_) {
        releases_.clear();
    } else if (!releases_.empty()) {
        other(releases_);
    }
    return true;
}

int Peer::OneWayConnection()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return oneWay_.Get();
}

const Peer* Peer::Calling()
{
    return g_calling;
}

sptr<IRemoteObject> Peer::Park(uint64_t id, sptr<IRemoteObject> object)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (busy_.empty()) {
        return object;
    }
    parked_.push_back({lastCall_, id, std::move(object)});
    if (parked_.size() <= MAX_PARKED) {
        return nullptr;
    }
    object = std::move(parked_.front().object);
    parked_.pop_front();
    return object;
}

sptr<IRemoteObject> Peer::FindParked(uint64_t id)
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found =
        std::find_if(parked_.begin(), parked_.end(), [id](const Parked& parked) { return parked.id == id; });
    return found != parked_.end() ? found->object : nullptr;
}

void Peer::SetCredentials(const Credentials& credentials)
{
    credentials_ = credentials;
    hasCredentials_ = true;
}

bool Peer::ReserveConnection()
{
    std::lock_guard<std::mutex> lock(g_connections.mutex);
    std::multiset<pid_t>& processes = g_connections.processes;
    if (dead_ || processes.count(Pid()) == MAX_CONNECTIONS || processes.size() == MAX_ALL_CONNECTIONS) {
        return false;
    }
    processes.insert(Pid());
    return true;
}

void Peer::CancelConnection() const
{
    std::lock_guard<std::mutex> lock(g_connections.mutex);
    g_connections.processes.erase(g_connections.processes.find(Pid()));
}

bool Peer::Serve(Descriptor connection)
{
    const int fd = connection.Get();
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (!dead_) {
            served_.insert(fd);
        }
    }
    auto owned = std::make_shared<Descriptor>(std::move(connection));
    const bool isStarted = !dead_ && Process::StartThread([self = shared_from_this(), owned]() mutable {
        self->ServeConnection(*owned);
        if (Process::IsForked()) {
            return; // A handler forked and came back in the child, where nobody holds these locks any more.
        }
        {
            std::lock_guard<std::mutex> lock(self->mutex_);
            self->served_.erase(owned->Get());
        }
        // Before the peer sees the end, and may want another one.
        self->CancelConnection();
        owned.reset();
        if (self->dead_) {
            Bus::Get().Post([self] { Bus::Get().ForgetIfRead(self); });
        }
    });
    if (!isStarted) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            served_.erase(fd);
        }
        CancelConnection();
    }
    return isStarted;
}

void Peer::ServeConnection(const Descriptor& connection)
{
    const int fd = connection.Get();
    for (;;) {
        Incoming message;
        if (!message.Await(fd) || message.GetHeader().kind == Header::REPLY) {
            return;
        }
        const Process::Activity activity;
        MessageParcel data; // What it holds is let go of within the activity.
        if (!activity || HasStopped()) {
            return;
        }
        const int error = message.Receive(fd, shared_from_this(), data);
        if (error == ERR_BAD_MESSAGE) {
            return;
        }
        const Header& header = message.GetHeader();
        if (header.kind == Header::RELEASE) {
            static_cast<void>(Exports::Get().Unpin(*this, header.objectId, header.code));
        } else if (!ServeCall(fd, header, data, error)) {
            return;
        }
    }
}

bool Peer::ServeCall(int fd, const Header& header, MessageParcel& data, int error)
{
    const CallingScope scope(this);
    const sptr<IRemoteObject> target = Exports::Get().Find(*this, header.objectId);
    MessageParcel reply;
    reply.peer_ = shared_from_this();
    MessageOption option(static_cast<int>(header.flags));
    const int result = error != ERR_NONE   ? error
                       : target != nullptr ? target->SendRequest(header.code, data, reply, option)
                                           : ERR_REFUSED;
    if (header.flags == MessageOption::TF_ASYNC || Process::IsForked()) {
        return !Process::IsForked();
    }
    Header answer{};
    answer.kind = Header::REPLY;
    answer.code = static_cast<uint32_t>(result);
    Outgoing full(shared_from_this(), result == ERR_NONE ? &reply : nullptr);
    const int failure = full.Send(fd, answer);
    if (failure == ERR_NONE || failure == ERR_DEAD_OBJECT || failure == ERR_BUFFER_FULL) {
        return failure == ERR_NONE;
    }
    // The reply can't travel: the caller learns why.
    answer.code = static_cast<uint32_t>(failure);
    return Outgoing(shared_from_this(), nullptr).Send(fd, answer) == ERR_NONE;
}

void Peer::Die()
{
    std::lock_guard<std::mutex> lock(mutex_);
    dead_ = true;
    callConnections_ -= idle_.size();
    idle_.clear();
    for (const auto& [fd, call] : busy_) {
        shutdown(fd, SHUT_RDWR);
    }
    oneWay_ = {};
    if (!isConnecting_) { // Else who connects sees to it.
        oneWayAsked_ = nullptr;
    }
    g_waitingReleases -= releases_.size();
    releases_.clear();
    freed_.notify_all();
    connected_.notify_all();
}

bool Peer::IsBeingServed()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return !served_.empty();
}

bool Peer::HasStopped()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return stopped_;
}

void Peer::StopServing()
{
    std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
    for (const int fd : served_) {
        shutdown(fd, SHUT_RDWR);
    }
}

void Peer::SendObituaries()
{
    std::vector<sptr<IPCObjectProxy>> alive;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& [id, weak] : proxies_) {
            if (sptr<IPCObjectProxy> proxy = weak.promote()) {
                alive.push_back(std::move(proxy));
            }
        }
    }
    for (const auto& proxy : alive) {
        proxy->SendObituary();
    }
}

} // namespace OHOS::Transport
