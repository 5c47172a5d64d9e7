// SPDX-License-Identifier: Apache-2.0
#ifndef CALL_CONNECTIONS_H
#define CALL_CONNECTIONS_H

#include <functional>
#include <memory>
#include <vector>

#include "connection.h"
#include "mutex.h"

namespace OHOS::Transport {

/** The connections to one peer for calls that wait for their reply. Any thread may call anything. */
class CallConnections {
public:
    /** At once: with the one for one-way calls, a peer grants 32. */
    static constexpr size_t MAX = 31;

    /** Makes a connection, without waiting; none, and an Error. BUFFER_FULL means that it is worth trying again. */
    using Connect = std::function<Descriptor(int& error)>;

    explicit CallConnections(Connect connect) : connect_(std::move(connect)) {}

    /** A connection for one call: the one that was idle last, else a new one. Null, and an Error, by the deadline. */
    std::unique_ptr<Connection> Take(Clock::time_point deadline, int& error);

    /** Ends what Take began. The connection is closed unless it `isUsable`. */
    void Return(std::unique_ptr<Connection> connection, bool isUsable);

    /** Hangs all up, for good. Calls under way end at once. */
    void Close();

private:
    std::unique_ptr<Connection> TryTake(int& error) REQUIRES(mutex_);

    const Connect connect_;

    Mutex mutex_;
    Condition returned_;
    std::vector<std::unique_ptr<Connection>> idle_ GUARDED_BY(mutex_);
    std::vector<Connection*> busy_ GUARDED_BY(mutex_);
    bool isClosed_ GUARDED_BY(mutex_) = false;
};

} // namespace OHOS::Transport

#endif // CALL_CONNECTIONS_H
