// SPDX-License-Identifier: Apache-2.0
#ifndef ONE_WAY_CONNECTION_H
#define ONE_WAY_CONNECTION_H

#include <algorithm>
#include <utility>
#include <vector>

#include "call_connections.h"

namespace OHOS::Transport {

/**
 * The connection to one peer for what has no reply: one-way calls and releases, in order. It is made when it is needed,
 * and nothing waits. Any thread may call anything.
 */
class OneWayConnection {
public:
    /** Releases that wait for room. What is beyond is never released. */
    static constexpr size_t MAX_RELEASES = 16384;

    explicit OneWayConnection(CallConnections::Connect connect) : connect_(std::move(connect)) {}

    /** Sends the waiting releases, and then a one-way call. 0 or an Error. */
    int Send(Message& call)
    {
        const MutexLock lock(mutex_);
        const int error = SendReleases();
        return error == 0 ? SendOne(call) : error;
    }

    /** Gives up `count` references to an object of the peer's: now, or with the next one-way call. */
    void Release(uint64_t id, uint32_t count)
    {
        const MutexLock lock(mutex_);
        if (!isClosed_ && releases_.size() < MAX_RELEASES) {
            releases_.push_back({Handle::RECEIVER, count, id});
            SendReleases();
        }
    }

    /** Hangs up, for good. */
    void Close()
    {
        const MutexLock lock(mutex_);
        isClosed_ = true;
        socket_ = {};
        releases_.clear();
    }

private:
    int SendReleases() REQUIRES(mutex_)
    {
        int error = 0;
        while (error == 0 && !releases_.empty()) {
            const auto end = releases_.begin() + static_cast<std::ptrdiff_t>(std::min(releases_.size(), MAX_HANDLES));
            Message release;
            release.header.kind = Header::RELEASE;
            release.handles.assign(releases_.begin(), end);
            error = SendOne(release);
            if (error == 0) {
                releases_.erase(releases_.begin(), end);
            }
        }
        return error;
    }

    int SendOne(Message& message) REQUIRES(mutex_)
    {
        int error = socket_ ? message.Send(socket_.Get()) : DEAD;
        if (error != DEAD || isClosed_) {
            return error;
        }
        // There is none yet, or the peer has hung up, so that nothing was sent. It hangs up a new one to refuse it, or
        // when it hears that this process has given up a service.
        for (int hungUp = 0; error == DEAD && hungUp < CallConnections::MAX_HUNG_UP; ++hungUp) {
            socket_ = connect_(error);
            if (!socket_) {
                return error;
            }
            error = message.Send(socket_.Get());
        }
        return error == DEAD ? REFUSED : error;
    }

    const CallConnections::Connect connect_;

    Mutex mutex_;
    Descriptor socket_ GUARDED_BY(mutex_);
    std::vector<Handle> releases_ GUARDED_BY(mutex_);
    bool isClosed_ GUARDED_BY(mutex_) = false;
};

} // namespace OHOS::Transport

#endif // ONE_WAY_CONNECTION_H
