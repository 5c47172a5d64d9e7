// SPDX-License-Identifier: Apache-2.0
#ifndef SERVED_CONNECTION_H
#define SERVED_CONNECTION_H

#include <sys/socket.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "connection.h"
#include "object_layer.h"

namespace OHOS::Transport {

/** A connection of a peer's into this process. One thread serves it; any thread may hang it up. */
class ServedConnection {
public:
    /** How long the end of a process or of its service waits for what was under way. */
    static constexpr std::chrono::seconds PATIENCE{2};

    /** The peer of that unique name, if the kernel's pid for it is the bus's too; else null. */
    using Introduce = std::function<std::shared_ptr<Peer>(const std::string& name, pid_t pid)>;

    explicit ServedConnection(Descriptor socket);

    /**
     * Serves it to its end. Before a message that is served in order, `awaitFormer` waits for what the process had sent
     * on other connections.
     */
    void Run(const Introduce& introduce, const std::function<void()>& awaitFormer);

    /** Answers the first call, whether it has come or not. */
    void Refuse();

    Connection connection;
    ucred maker{};                      // The process that has made it, by the kernel's word.
    std::atomic<bool> isHungUp{false};  // For reading: what comes later comes on another connection.
    std::atomic<bool> isStopped{false}; // Nothing more is served: what was not read is dropped.

private:
    std::string ReceiveName();
    bool Serve(const std::shared_ptr<Peer>& peer, const Message& message);

    ObjectLayer::Objects kept_; // Until the peer has read the reply that they go home in. The thread's own.
};

} // namespace OHOS::Transport

#endif // SERVED_CONNECTION_H
