// SPDX-License-Identifier: Apache-2.0
#ifndef ONE_WAY_CONNECTION_H
#define ONE_WAY_CONNECTION_H

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
    int Send(Message& call);

    /** Gives up `count` references to an object of the peer's: now, or with the next one-way call. */
    void Release(uint64_t id, uint32_t count);

    /** Hangs up, for good. */
    void Close();

private:
    int SendReleases() REQUIRES(mutex_);
    int SendOne(Message& message) REQUIRES(mutex_);

    const CallConnections::Connect connect_;

    Mutex mutex_;
    Descriptor socket_ GUARDED_BY(mutex_);
    std::vector<Handle> releases_ GUARDED_BY(mutex_);
    bool isClosed_ GUARDED_BY(mutex_) = false;
};

} // namespace OHOS::Transport

#endif // ONE_WAY_CONNECTION_H
