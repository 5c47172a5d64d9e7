// SPDX-License-Identifier: Apache-2.0
#include "notices.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

#include "process.h"

namespace OHOS::Transport {

namespace {

// Never destroyed: the thread uses it until the process is gone.
struct Queue {
    std::mutex mutex;
    std::condition_variable filled;
    std::deque<std::function<void()>> notices;
    bool running = false;
};

Queue& GetQueue()
{
    static auto& queue = *new Queue();
    return queue;
}

void Run()
{
    Queue& queue = GetQueue();
    for (;;) {
        std::unique_lock<std::mutex> lock(queue.mutex);
        queue.filled.wait(lock, [&queue] { return !queue.notices.empty(); });
        const Process::Activity activity;
        if (!activity) {
            return; // At exit no notice runs; what they hold is left to the process's end.
        }
        const std::function<void()> notice = std::move(queue.notices.front());
        queue.notices.pop_front();
        lock.unlock();
        notice();
    }
}

} // namespace

void Notices::Post(std::function<void()> notice)
{
    Queue& queue = GetQueue();
    std::lock_guard<std::mutex> lock(queue.mutex);
    queue.notices.push_back(std::move(notice));
    // Without a thread the notice waits for the next one.
    queue.running = queue.running || Process::StartThread(Run);
    queue.filled.notify_one();
}

} // namespace OHOS::Transport
