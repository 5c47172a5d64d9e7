// SPDX-License-Identifier: Apache-2.0
#include "notices.h"

#include <deque>

#include "mutex.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

struct Queue {
    Mutex mutex;
    Condition filled;
    std::deque<std::function<void()>> notices GUARDED_BY(mutex);
    bool isRunning GUARDED_BY(mutex) = false;
};

Queue& GetQueue()
{
    static Queue& queue = *new Queue();
    return queue;
}

void Run()
{
    Queue& queue = GetQueue();
    for (;;) {
        MutexLock lock(queue.mutex);
        while (queue.notices.empty()) {
            queue.filled.Wait(lock);
        }
        const Process::Activity activity;
        if (!activity) {
            return; // At exit no notice runs; what they hold is left to the process's end.
        }
        const auto notice = std::move(queue.notices.front());
        queue.notices.pop_front();
        lock.Unlock();
        notice();
        Process::WatchExit();
    }
}

} // namespace

bool Notices::Start()
{
    const MutexLock lock(GetQueue().mutex);
    return GetQueue().isRunning = GetQueue().isRunning || Process::StartThread(Run);
}

void Notices::Post(std::function<void()> notice) noexcept
{
    Start(); // Without a thread the notice waits for the next one.
    const MutexLock lock(GetQueue().mutex);
    GetQueue().notices.push_back(std::move(notice));
    GetQueue().filled.NotifyAll();
}

} // namespace OHOS::Transport
