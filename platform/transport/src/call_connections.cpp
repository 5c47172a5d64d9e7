// SPDX-License-Identifier: Apache-2.0
#include "call_connections.h"

#include <algorithm>
#include <utility>

#include "transport_error.h"

namespace OHOS::Transport {

namespace {

// How soon a new connection is tried again; one that is given back comes first.
constexpr std::chrono::milliseconds RETRY{10};

} // namespace

std::unique_ptr<Connection> CallConnections::Take(Clock::time_point deadline, int& error)
{
    MutexLock lock(mutex_);
    for (;;) {
        error = BUFFER_FULL;
        if (auto connection = TryTake(error)) {
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

std::unique_ptr<Connection> CallConnections::TryTake(int& error)
{
    std::unique_ptr<Connection> connection;
    if (!idle_.empty()) {
        connection = std::move(idle_.back());
        idle_.pop_back();
    } else if (isClosed_) {
        error = DEAD;
    } else if (busy_.size() < MAX) {
        if (Descriptor made = connect_(error)) {
            connection = std::make_unique<Connection>(std::move(made));
        }
    }
    if (connection != nullptr) {
        busy_.push_back(connection.get());
    }
    return connection;
}

void CallConnections::Return(std::unique_ptr<Connection> connection, bool isUsable)
{
    const MutexLock lock(mutex_);
    busy_.erase(std::find(busy_.begin(), busy_.end(), connection.get()));
    if (isUsable && !isClosed_) {
        idle_.push_back(std::move(connection));
    }
    connection = nullptr; // Before another one is made in its place.
    returned_.NotifyAll();
}

void CallConnections::Close()
{
    const MutexLock lock(mutex_);
    isClosed_ = true;
    idle_.clear();
    for (Connection* connection : busy_) {
        connection->HangUp();
    }
    returned_.NotifyAll();
}

} // namespace OHOS::Transport
