// SPDX-License-Identifier: Apache-2.0
#include "descriptor.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <mutex>
#include <set>

#include "process.h"

namespace OHOS::Transport {

namespace {

// What a fork's child has to close. A std::mutex: the checker cannot follow it through a fork.
struct Table {
    std::mutex mutex;
    std::set<int> open;
};

Table& GetTable()
{
    static Table& table = *new Table();
    static const int IS_WATCHED = pthread_atfork([] { GetTable().mutex.lock(); }, [] { GetTable().mutex.unlock(); },
        [] {
            Process::MarkForked();
            for (const int fd : GetTable().open) {
                close(fd);
            }
            GetTable().mutex.unlock();
        });
    static_cast<void>(IS_WATCHED);
    return table;
}

} // namespace

void Descriptor::WatchForks() { GetTable(); }

Descriptor::~Descriptor()
{
    CloseBy([this] { close(fd_); });
}

void Descriptor::CloseBy(const std::function<void()>& close)
{
    // In a fork's child the number was closed already, and may be somebody else's now.
    if (fd_ >= 0 && !Process::IsForked()) {
        const std::lock_guard<std::mutex> lock(GetTable().mutex);
        close();
        GetTable().open.erase(std::exchange(fd_, -1));
    }
}

Descriptor Descriptor::Open(const std::function<int()>& open)
{
    Descriptor descriptor;
    const std::lock_guard<std::mutex> lock(GetTable().mutex);
    descriptor.fd_ = open();
    if (descriptor.fd_ >= 0 && descriptor.fd_ <= STDERR_FILENO) { // Where a program has closed its standard streams.
        const int low = std::exchange(descriptor.fd_, fcntl(descriptor.fd_, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        close(low); // Which leaves errno alone.
    }
    if (descriptor.fd_ >= 0) {
        GetTable().open.insert(descriptor.fd_);
    }
    return descriptor;
}

} // namespace OHOS::Transport
