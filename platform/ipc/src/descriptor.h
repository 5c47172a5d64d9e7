// SPDX-License-Identifier: Apache-2.0
#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

#include <mutex>

namespace OHOS::Transport {

/** Owns a file descriptor of the platform's: close-on-exec, and closed in the child of a fork. */
class Descriptor {
public:
    Descriptor() = default;
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    /** A second descriptor of the same file; none if the table is full. */
    static Descriptor Copy(int fd);

    /** An eventfd that never blocks; none on failure. */
    static Descriptor Event();

    /** Two connected packet sockets. False on failure. */
    static bool MakePair(Descriptor& one, Descriptor& other);

    /** Makes this descriptor, which must be open, one of the same file as `fd`. Needs no room in the table. */
    bool Become(int fd);

    /** Has `fd`, which somebody else closes, closed in the child of a fork too. */
    static void CloseAtFork(int fd);

    /** Takes that back, before it is closed. */
    static void Disown(int fd);

    /** Held while descriptors exist that nobody owns yet, so that no fork copies them. */
    static std::mutex& ForkGate();

    int Get() const
    {
        return fd_;
    }

    explicit operator bool() const
    {
        return fd_ >= 0;
    }

private:
    explicit Descriptor(int fd) : fd_(fd) {}

    void Close();

    int fd_ = -1;
};

} // namespace OHOS::Transport

#endif // DESCRIPTOR_H
