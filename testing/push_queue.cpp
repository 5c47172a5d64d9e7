// SPDX-License-Identifier: Apache-2.0
#include "push_queue.h"

#include <utility>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

PushQueue::PushQueue(std::string name, Report report) : name_(std::move(name)), report_(std::move(report)) {}

void PushQueue::Push(Call call)
{
    Call oldest; // Destroyed after the lock is released.
    std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) {
        return;
    }
    if (calls_.size() == MAX_CALLS) {
        oldest = std::move(calls_.front());
        calls_.pop_front();
        ++dropped_;
    }
    calls_.push_back(std::move(call));
    changed_.notify_one();
}

void PushQueue::Close()
{
    std::deque<Call> unmade; // Destroyed after the lock is released.
    std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    unmade.swap(calls_);
    changed_.notify_one();
    idle_.notify_all();
}

void PushQueue::AwaitCalls()
{
    std::unique_lock<std::mutex> lock(mutex_);
    idle_.wait(lock, [this] { return calls_.empty() && !isCalling_; });
}

void PushQueue::Run()
{
    for (;;) {
        uint64_t dropped = 0;
        const Call call = Pop(dropped);
        if (dropped > 0 && report_) {
            report_(name_ + " was too slow: its " + std::to_string(dropped) + " oldest events were dropped");
        }
        if (call == nullptr) {
            return;
        }
        call();
        std::lock_guard<std::mutex> lock(mutex_);
        isCalling_ = false;
        idle_.notify_all();
    }
}

PushQueue::Call PushQueue::Pop(uint64_t& dropped)
{
    Call call;
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || !calls_.empty(); });
    if (!closed_) {
        call = std::move(calls_.front());
        calls_.pop_front();
        isCalling_ = true;
    }
    dropped = std::exchange(dropped_, 0);
    return call;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing
