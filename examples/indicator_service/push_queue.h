// SPDX-License-Identifier: Apache-2.0
#ifndef PUSH_QUEUE_H
#define PUSH_QUEUE_H

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * The calls that one listener is to get, in order. Whoever pushes never waits: when MAX_CALLS wait already, the oldest
 * one is dropped, since the newest tells more of how things stand. What was dropped is counted, and said on stderr once
 * the call that held up the others is over. Any thread may call anything.
 */
class PushQueue {
public:
    static constexpr size_t MAX_CALLS = 4096;

    using Call = std::function<void()>;

    /** `name` is the listener's on stderr. */
    explicit PushQueue(std::string name);

    void Push(Call call);

    /** Drops what waits; Run returns after the call that it is in. */
    void Close();

    /** Makes the calls, without a lock, until the queue is closed: on a thread that may wait for the listener. */
    void Run();

private:
    /** The next call; empty once the queue is closed. `dropped` is what was dropped since the last time. */
    Call Pop(uint64_t& dropped);

    const std::string name_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Call> calls_;
    uint64_t dropped_ = 0;
    bool closed_ = false;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // PUSH_QUEUE_H
