// SPDX-License-Identifier: Apache-2.0
#ifndef CALL_CONNECTIONS_H
#define CALL_CONNECTIONS_H

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "connection.h"
#include "mutex.h"
#include "transport_error.h"

namespace OHOS::Transport {

/** The connections to one peer for calls that wait for their reply. Any thread may call anything. */
class CallConnections {
public:
    /** At once: with the one for one-way calls, a peer grants 32. */
    static constexpr size_t MAX = 31;

    /** A peer that has hung up this many new connections unread wants none. */
    static constexpr int MAX_HUNG_UP = 3;

    /** How soon a new connection is tried again; one that is given back comes first. */
    static constexpr std::chrono::milliseconds RETRY{10};

    /** Makes a connection, without waiting; none, and an Error. BUFFER_FULL means that it is worth trying again. */
    using Connect = std::function<Descriptor(int& error)>;

    explicit CallConnections(Connect connect) : connect_(std::move(connect)) {}

    /** A connection for one call: the one that was idle last, else a new one. Null, and an Error, by the deadline. */
    std::unique_ptr<Connection> Take(Clock::time_point deadline, int& error)
    {
        MutexLock lock(mutex_);
        for (;;) {
            error = BUFFER_FULL;
            if (auto connection = TryTake(error)) {
                busy_.push_back(connection.get());
                return connection;
            }
            // One under way will do as well as a new one, unless there can be no new one for good.
            if (error == DEAD || error == REFUSED || (error != BUFFER_FULL && busy_.empty())) {
                return nullptr;
            }
            const auto now = Clock::now();
            if (now >= deadline) {
                error = TIMED_OUT;
                return nullptr;
            }
            returned_.WaitUntil(lock, busy_.size() < MAX ? std::min(deadline, now + RETRY) : deadline);
        }
    }

    /** Ends what Take began. The connection is closed unless it `isUsable`. */
    void Return(std::unique_ptr<Connection> connection, bool isUsable)
    {
        const MutexLock lock(mutex_);
        busy_.erase(std::find(busy_.begin(), busy_.end(), connection.get()));
        if (isUsable && !isClosed_) {
            idle_.push_back(std::move(connection));
        }
        connection = nullptr; // Before another one is made in its place.
        returned_.NotifyAll();
    }

    /** Hangs all up, for good. Calls under way end at once. */
    void Close()
    {
        const MutexLock lock(mutex_);
        isClosed_ = true;
        idle_.clear();
        for (Connection* connection : busy_) {
            connection->HangUp();
        }
        returned_.NotifyAll();
    }

private:
    std::unique_ptr<Connection> TryTake(int& error) REQUIRES(mutex_)
    {
        if (isClosed_) {
            error = DEAD;
        } else if (!idle_.empty()) {
            std::unique_ptr<Connection> connection = std::move(idle_.back());
            idle_.pop_back();
            return connection;
        } else if (busy_.size() < MAX) {
            if (Descriptor made = connect_(error)) {
                return std::make_unique<Connection>(std::move(made));
            }
        }
        return nullptr;
    }

    const Connect connect_;

    Mutex mutex_;
    Condition returned_;
    std::vector<std::unique_ptr<Connection>> idle_ GUARDED_BY(mutex_);
    std::vector<Connection*> busy_ GUARDED_BY(mutex_);
    bool isClosed_ GUARDED_BY(mutex_) = false;
};

} // namespace OHOS::Transport

#endif // CALL_CONNECTIONS_H
