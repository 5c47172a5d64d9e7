// SPDX-License-Identifier: Apache-2.0
#ifndef NOTICES_H
#define NOTICES_H

#include <functional>

namespace OHOS::Transport {

/**
 * The notice thread: tells deaths and availability, and lets go of objects where nobody else may, one after the other.
 * It is started by the first notice, and holds no lock while it runs one.
 */
class Notices {
public:
    /** Has `notice` run, and destroyed, on the notice thread. Never waits for it. */
    static void Post(std::function<void()> notice);
};

} // namespace OHOS::Transport

#endif // NOTICES_H
