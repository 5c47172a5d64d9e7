// SPDX-License-Identifier: Apache-2.0
#ifndef PROCESS_H
#define PROCESS_H

#include <functional>

namespace OHOS::Transport {

/** This process's own life: what may still be begun, and the platform's threads. */
class Process {
public:
    /** False once the main thread is on its way out, and in the child of a fork. */
    static bool IsUsable();

    /** A request or a notice under way. Exit waits for those begun, for 1 s at most, and lets no other begin. */
    class Activity {
    public:
        Activity();
        Activity(const Activity&) = delete;
        Activity& operator=(const Activity&) = delete;
        ~Activity();

        /** False if it may not begin. */
        explicit operator bool() const
        {
            return begun_;
        }

    private:
        const bool begun_;
    };

    /** Runs `body` on a detached thread that takes no signals. False if no thread is to be had. */
    static bool StartThread(std::function<void()> body);

    /** True in the child of a fork. */
    static bool IsForked();

    /** In the child of a fork: from now on nothing works. */
    static void MarkForked();
};

} // namespace OHOS::Transport

#endif // PROCESS_H
