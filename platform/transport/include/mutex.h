// SPDX-License-Identifier: Apache-2.0
#ifndef MUTEX_H
#define MUTEX_H

#include <chrono>
#include <condition_variable>
#include <mutex>

// What clang's -Wthread-safety checks: which lock guards a member, and which a function takes or wants held.
#if defined(__clang__)
#define THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define THREAD_ATTRIBUTE(x)
#endif
#define GUARDED_BY(mutex) THREAD_ATTRIBUTE(guarded_by(mutex))
#define REQUIRES(mutex) THREAD_ATTRIBUTE(requires_capability(mutex))

namespace OHOS::Transport {

using Clock = std::chrono::steady_clock;

/**
 * A std::mutex that the checker knows. A thread that takes more than one takes them in this order, of each kind one at
 * most, and none while it runs a user's code: of the system ability manager; the turn with the bus; of the
 * availability; of the peers; of the inbound connections; of a peer's part; of the services; of the notices; of the
 * descriptors.
 */
class THREAD_ATTRIBUTE(capability("mutex")) Mutex {
private:
    friend class MutexLock;

    std::mutex mutex_;
};

/** Holds a mutex as long as it lives. */
class THREAD_ATTRIBUTE(scoped_lockable) MutexLock {
public:
    explicit MutexLock(Mutex& mutex) THREAD_ATTRIBUTE(acquire_capability(mutex)) : lock_(mutex.mutex_) {}

    ~MutexLock() THREAD_ATTRIBUTE(release_capability()) {}

    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    /** Before its end. */
    void Unlock() THREAD_ATTRIBUTE(release_capability()) { lock_.unlock(); }

private:
    friend class Condition;

    std::unique_lock<std::mutex> lock_;
};

/** What threads wait for under a mutex. They may wake up for nothing, so ask again in a loop. */
class Condition {
public:
    void Wait(MutexLock& lock) { condition_.wait(lock.lock_); }

    /** False once the deadline has passed. */
    bool WaitUntil(MutexLock& lock, Clock::time_point deadline)
    {
        return condition_.wait_until(lock.lock_, deadline) == std::cv_status::no_timeout;
    }

    void NotifyAll() { condition_.notify_all(); }

private:
    std::condition_variable condition_;
};

} // namespace OHOS::Transport

#endif // MUTEX_H
