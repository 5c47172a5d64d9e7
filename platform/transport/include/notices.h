// SPDX-License-Identifier: Apache-2.0
#ifndef NOTICES_H
#define NOTICES_H

#include <functional>

namespace OHOS::Transport {

/**
 * The notice thread, which announces deaths and availability, and destroys objects where nobody else may: one after the
 * other, in the order of posting, with no lock held. Any thread may call anything, under any lock.
 */
class Notices {
public:
    /** Starts the thread, as the first notice would. False if there is none to be had. */
    static bool Start();

    /** Has `notice` run, and destroyed, on the notice thread. Never waits for it. */
    static void Post(std::function<void()> notice) noexcept;
};

} // namespace OHOS::Transport

#endif // NOTICES_H
