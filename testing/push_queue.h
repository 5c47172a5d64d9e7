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

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

/**
 * The calls that one listener is to get, in order. Push never waits: when MAX_CALLS wait already, the oldest one is
 * dropped, since the newest says more about the present state. What was dropped is counted, and reported once the call
 * that held up the others is over. Any thread may call anything.
 */
class PushQueue {
public:
    static constexpr size_t MAX_CALLS = 4096;

    using Call = std::function<void()>;

    /** Takes a line of text that reports dropped calls. Called on the thread that is in Run. */
    using Report = std::function<void(const std::string& line)>;

    /** `name` is what a report calls the listener. `report` may be empty. */
    PushQueue(std::string name, Report report);

    void Push(Call call);

    /** Drops what waits; Run returns after the call that it is in. */
    void Close();

    /** Returns when all that was pushed until now has been called or dropped. */
    void AwaitCalls();

    /** Makes the calls, without a lock, until the queue is closed: on a thread that may wait for the listener. */
    void Run();

private:
    /** The next call; empty once the queue is closed. `dropped` is what was dropped since the last time. */
    Call Pop(uint64_t& dropped);

    const std::string name_;
    const Report report_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::condition_variable idle_;
    std::deque<Call> calls_;
    bool isCalling_ = false;
    uint64_t dropped_ = 0;
    bool closed_ = false;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing

#endif // PUSH_QUEUE_H
