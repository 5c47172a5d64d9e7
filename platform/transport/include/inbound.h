// SPDX-License-Identifier: Apache-2.0
#ifndef INBOUND_H
#define INBOUND_H

#include <memory>
#include <vector>

#include "mutex.h"
#include "served_connection.h"

namespace OHOS::Transport {

/** The listener, and all connections of peers into this process. Any thread may call anything. */
class Inbound {
public:
    // Connections beyond these are refused. The kernel says who has made one.
    static constexpr size_t MAX_OF_PROCESS = 32;
    static constexpr size_t MAX_OF_USER = 512;
    static constexpr size_t MAX = 1024;

    /** What a process has sent before it left, and the time by which that is to be read. */
    struct Rest {
        std::vector<std::shared_ptr<ServedConnection>> connections;
        Clock::time_point deadline;
    };

    static Inbound& Get();

    /** Has a thread serve whoever connects, each on a thread of its own. False if there is none to be had. */
    bool Listen(Descriptor socket, const ServedConnection::Introduce& introduce);

    /** From now on the kernel refuses connections. */
    void StopListening();

    /** What has come from a process is read to its end on its connections; what it sends later comes on new ones. */
    Rest HangUpReading(pid_t pid);

    /** Waits until a rest has been read and served. At its deadline it is dropped. */
    void Await(const Rest& rest);

private:
    struct Listener {
        const Descriptor socket;
        const ServedConnection::Introduce introduce;
    };

    void Run(const Listener& listener);
    bool AcceptAll(const Listener& listener) REQUIRES(mutex_);
    bool Serve(const std::shared_ptr<ServedConnection>& connection, const Listener& listener) REQUIRES(mutex_);
    void Remove(const std::shared_ptr<ServedConnection>& connection);

    Mutex mutex_;
    Condition removed_;
    std::shared_ptr<const Listener> listener_ GUARDED_BY(mutex_); // Null while there is none.
    std::vector<std::shared_ptr<ServedConnection>> connections_ GUARDED_BY(mutex_);
};

} // namespace OHOS::Transport

#endif // INBOUND_H
