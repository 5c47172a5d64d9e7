// SPDX-License-Identifier: Apache-2.0
#ifndef NEVER_DESTROYED_H
#define NEVER_DESTROYED_H

#include <utility>

namespace OHOS::Transport {

/** A static object without an end: platform threads use it until the process is gone. */
template <typename T>
class NeverDestroyed {
public:
    template <typename... Args>
    explicit NeverDestroyed(Args&&... args) : object_(*new T(std::forward<Args>(args)...))
    {}

    T& operator*() { return object_; }

private:
    T& object_;
};

} // namespace OHOS::Transport

#endif // NEVER_DESTROYED_H
