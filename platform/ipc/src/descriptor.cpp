// SPDX-License-Identifier: Apache-2.0
#include "descriptor.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <set>
#include <utility>

#include "process.h"

namespace OHOS::Transport {

namespace {

// A packet must fit into the socket's buffer whole; the kernel gives what it allows to this process.
constexpr int SOCKET_BUFFER_SIZE = (1 << 20) + 4096;

// A program that has closed its standard streams may still write to them.
constexpr int FIRST = STDERR_FILENO + 1;

// What a fork's child has to close. Never destroyed.
struct Registry {
    std::mutex forkGate; // Taken before the next one.
    std::mutex mutex;
    std::set<int> open;
};

Registry& GetRegistry();

void BeforeFork()
{
    GetRegistry().forkGate.lock();
    GetRegistry().mutex.lock();
}

void AfterForkInParent()
{
    GetRegistry().mutex.unlock();
    GetRegistry().forkGate.unlock();
}

void AfterForkInChild()
{
    Process::MarkForked();
    for (const int fd : GetRegistry().open) {
        close(fd);
    }
    AfterForkInParent();
}

Registry& GetRegistry()
{
    static auto& registry = []() -> Registry& {
        pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild);
        return *new Registry();
    }();
    return registry;
}

// Registers a new descriptor, if it is one, under a number from FIRST on: -1 if there is none left.
int Own(int fd)
{
    if (fd >= 0 && fd < FIRST) {
        const int low = std::exchange(fd, fcntl(fd, F_DUPFD_CLOEXEC, FIRST));
        close(low);
    }
    if (fd >= 0) {
        GetRegistry().open.insert(fd);
    }
    return fd;
}

} // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        Close();
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

Descriptor::~Descriptor()
{
    Close();
}

void Descriptor::Close()
{
    // In a fork's child the number was closed already, and may be somebody else's now.
    if (fd_ >= 0 && !Process::IsForked()) {
        std::lock_guard<std::mutex> lock(GetRegistry().mutex);
        GetRegistry().open.erase(fd_);
        close(fd_);
    }
    fd_ = -1;
}

Descriptor Descriptor::Copy(int fd)
{
    std::lock_guard<std::mutex> lock(GetRegistry().mutex);
    return Descriptor(Own(fcntl(fd, F_DUPFD_CLOEXEC, FIRST)));
}

Descriptor Descriptor::Event()
{
    std::lock_guard<std::mutex> lock(GetRegistry().mutex);
    return Descriptor(Own(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)));
}

bool Descriptor::MakePair(Descriptor& one, Descriptor& other)
{
    std::lock_guard<std::mutex> lock(GetRegistry().mutex);
    int fds[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, fds) != 0) {
        return false;
    }
    for (const int fd : fds) {
        setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &SOCKET_BUFFER_SIZE, sizeof(SOCKET_BUFFER_SIZE));
    }
    one.fd_ = Own(fds[0]);
    other.fd_ = Own(fds[1]);
    return one && other;
}

bool Descriptor::Become(int fd)
{
    return dup3(fd, fd_, O_CLOEXEC) == fd_;
}

void Descriptor::CloseAtFork(int fd)
{
    std::lock_guard<std::mutex> lock(GetRegistry().mutex);
    GetRegistry().open.insert(fd);
}

void Descriptor::Disown(int fd)
{
    std::lock_guard<std::mutex> lock(GetRegistry().mutex);
    GetRegistry().open.erase(fd);
}

std::mutex& Descriptor::ForkGate()
{
    return GetRegistry().forkGate;
}

} // namespace OHOS::Transport
