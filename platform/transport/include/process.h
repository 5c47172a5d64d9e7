// SPDX-License-Identifier: Apache-2.0
#ifndef PROCESS_H
#define PROCESS_H

#include <functional>

namespace OHOS::Transport {

/**
 * This process's own life: what may still be begun, and the platform's threads, which run until the process is gone:
 * the static objects that they use are made with new and never deleted. Any thread may call anything.
 */
class Process {
public:
    /** False once the process is on its way out, and in the child of a fork. */
    static bool IsUsable();

    /** A request or a notice under way. Exit waits for those begun, for 1 s at most, and lets no other begin. */
    class Activity {
    public:
        Activity();
        Activity(const Activity&) = delete;
        Activity& operator=(const Activity&) = delete;
        ~Activity();

        /** False if it may not begin. */
        explicit operator bool() const { return begun_; }

    private:
        const bool begun_;
    };

    /**
     * To be called when a user's code has run on a platform thread, before its caller or the next notice goes on. The
     * main thread's thread-locals end an exit's callbacks, but not where another thread has loaded the library or
     * exits. Then what was registered last runs first: before the end of the objects that there were at the latest of
     * these calls whose number is a power of two.
     */
    static void WatchExit();

    /** Runs `body` on a detached thread that takes no signals but those of a crash. False if there is no thread. */
    static bool StartThread(std::function<void()> body);

    /** True in the child of a fork, where nobody may take a lock of the stand-in: its holder may be gone. */
    static bool IsForked();

    /** In the child of a fork: from now on nothing works. */
    static void MarkForked();
};

} // namespace OHOS::Transport

#endif // PROCESS_H
