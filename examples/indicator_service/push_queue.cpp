// SPDX-License-Identifier: Apache-2.0
#include "push_queue.h"

#include <utility>

#include "print.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

PushQueue::PushQueue(std::string name) : name_(std::move(name)) {}

void PushQueue::Push(Call call)
{
    Call oldest; // Let go of behind the lock.
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
    std::deque<Call> unmade; // Let go of behind the lock.
    std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    unmade.swap(calls_);
    changed_.notify_one();
}

void PushQueue::Run()
{
    for (;;) {
        uint64_t dropped = 0;
        const Call call = Pop(dropped);
        if (dropped > 0) {
            Complain(name_ + " was too slow: its " + std::to_string(dropped) + " oldest events were dropped");
        }
        if (call == nullptr) {
            return;
        }
        call();
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
    }
    dropped = std::exchange(dropped_, 0);
    return call;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
