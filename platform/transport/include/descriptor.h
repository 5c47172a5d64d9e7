// SPDX-License-Identifier: Apache-2.0
#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

#include <functional>
#include <utility>

namespace OHOS::Transport {

/**
 * Owns a file descriptor of the platform's: close-on-exec, above the standard streams, and closed in the child of a
 * fork. Any thread may make and destroy one; no fork happens meanwhile.
 */
class Descriptor {
public:
    Descriptor() = default;
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    ~Descriptor();

    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }

    /** From now on a fork's child is known to be one. The first descriptor sees to that, too. */
    static void WatchForks();

    /** Owns what `open` returns; none for a negative number, and `errno` says why. */
    static Descriptor Open(const std::function<int()>& open);

    /** Has `close` close it. */
    void CloseBy(const std::function<void()>& close);

    int Get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

} // namespace OHOS::Transport

#endif // DESCRIPTOR_H
