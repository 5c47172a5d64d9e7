// SPDX-License-Identifier: Apache-2.0
#ifndef NEVER_DESTROYED_H
#define NEVER_DESTROYED_H

namespace OHOS::Transport {

/** A static object without an end: platform threads use it until the process is gone. */
template <typename T>
class NeverDestroyed {
public:
    T& operator*()
    {
        return object_;
    }

private:
    T& object_ = *new T();
};

} // namespace OHOS::Transport

#endif // NEVER_DESTROYED_H
