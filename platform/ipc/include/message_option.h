// SPDX-License-Identifier: Apache-2.0
#ifndef MESSAGE_OPTION_H
#define MESSAGE_OPTION_H

#include <algorithm>

namespace OHOS {

/** How a request is sent. A plain value; the constructor keeps what it is given. */
class MessageOption {
public:
    /** The caller waits for the reply. */
    static constexpr int TF_SYNC = 0;
    /** One-way: the call returns at once, and there is no reply. */
    static constexpr int TF_ASYNC = 1;
    /** In seconds. */
    static constexpr int TF_WAIT_TIME = 8;

    MessageOption(int flags = TF_SYNC, int waitTime = TF_WAIT_TIME) : flags_(flags), waitTime_(waitTime) {}

    /** Adds flags to those that are set. */
    void SetFlags(int flags) { flags_ |= flags; }

    int GetFlags() const { return flags_; }

    /** The longest that a call may take, in seconds: 8 for anything below 1, and 3000 for anything above that. */
    void SetWaitTime(int waitTime) { waitTime_ = waitTime < 1 ? TF_WAIT_TIME : std::min(waitTime, 3000); }

    int GetWaitTime() const { return waitTime_; }

private:
    int flags_;
    int waitTime_;
};

} // namespace OHOS

#endif // MESSAGE_OPTION_H
