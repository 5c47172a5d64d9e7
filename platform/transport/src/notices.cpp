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

Queue& g_queue = *new Queue();

void Run()
{
    for (;;) {
        MutexLock lock(g_queue.mutex);
        while (g_queue.notices.empty()) {
            g_queue.filled.Wait(lock);
        }
        const Process::Activity activity;
        if (!activity) {
            return; // At exit no notice runs; what they hold is left to the process's end.
        }
        const auto notice = std::move(g_queue.notices.front());
        g_queue.notices.pop_front();
        lock.Unlock();
        notice();
        Process::WatchExit();
    }
}

} // namespace

bool Notices::Start()
{
    const MutexLock lock(g_queue.mutex);
    return g_queue.isRunning = g_queue.isRunning || Process::StartThread(Run);
}

void Notices::Post(std::function<void()> notice) noexcept
{
    Start(); // Without a thread the notice waits for the next one.
    const MutexLock lock(g_queue.mutex);
    g_queue.notices.push_back(std::move(notice));
    g_queue.filled.NotifyAll();
}

} // namespace OHOS::Transport
