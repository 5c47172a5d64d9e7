// SPDX-License-Identifier: Apache-2.0
#ifndef ANSWER_H
#define ANSWER_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "descriptor.h"

namespace OHOS::Transport {

using Clock = std::chrono::steady_clock;

/**
 * What a thread waits for and the bus thread brings, perhaps too late. Shared by both. Set by a task, between messages:
 * the spare descriptor is there then, and the thread that wakes up cannot take its place.
 */
template <typename T>
class Answer {
public:
    void Set(T value)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        value_ = std::move(value);
        set_.notify_all();
    }

    /** Takes it, if it comes in time. */
    T AwaitUntil(Clock::time_point deadline, T otherwise)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        set_.wait_until(lock, deadline, [this] { return value_.has_value(); });
        return value_.has_value() ? std::move(*value_) : std::move(otherwise);
    }

private:
    std::mutex mutex_;
    std::condition_variable set_;
    std::optional<T> value_;
};

/** What comes of asking a peer for a connection: that, or a code of ipc_types.h. */
struct Introduction {
    Descriptor connection;
    int error;
};

} // namespace OHOS::Transport

#endif // ANSWER_H
