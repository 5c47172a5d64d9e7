// SPDX-License-Identifier: Apache-2.0
#include "served_connection.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "introduction.h"
#include "notices.h"
#include "peer.h"
#include "process.h"
#include "transport_error.h"

namespace OHOS::Transport {

ServedConnection::ServedConnection(Descriptor socket) : connection(std::move(socket))
{
    socklen_t size = sizeof(maker);
    getsockopt(connection.Get(), SOL_SOCKET, SO_PEERCRED, &maker, &size);
    process_ = Descriptor::Open([this] { return static_cast<int>(syscall(SYS_pidfd_open, maker.pid, 0)); });
}

bool ServedConnection::IsMakerAlive() const
{
    pollfd end{process_.Get(), POLLIN, 0};
    return process_ && poll(&end, 1, 0) == 0;
}

void ServedConnection::Run(const Introduce& introduce, std::function<void()> awaitFormer)
{
    std::array<char, Introduction::MAX_NAME> name{};
    const size_t size = connection.ReceiveRaw(name.data(), name.size());
    const std::shared_ptr<Peer> peer = introduce(std::string(name.data(), size), maker.pid);
    const bool isMaker = IsMakerAlive(); // Else another process may have its pid by now, and its socket.
    process_ = {};
    if (peer == nullptr || !isMaker) {
        Refuse();
        return;
    }
    Message message;
    while (connection.Receive(message, Connection::NO_DEADLINE) == 0) {
        const bool isInOrder = message.header.kind == Header::RELEASE || message.header.flags == Header::ONE_WAY;
        if (isInOrder && awaitFormer != nullptr) {
            std::exchange(awaitFormer, nullptr)();
        }
        if (!Serve(peer, message)) {
            break;
        }
    }
    if (!kept_.empty() && !Process::IsForked()) {
        Notices::Post([kept = std::move(kept_)] {});
    }
}

bool ServedConnection::Serve(const std::shared_ptr<Peer>& peer, const Message& message)
{
    const Process::Activity activity;
    if (!activity || isStopped || message.header.kind == Header::REPLY) {
        return false;
    }
    kept_.clear(); // The peer has read its last reply.
    if (message.header.kind == Header::RELEASE) {
        for (const Handle& handle : message.handles) {
            peer->Unpin(handle.id, handle.position);
        }
    } else if (message.header.kind == Header::CALL) {
        Peer::calling = peer.get();
        kept_ = ObjectLayer::instance->Serve(peer, message, connection);
        Peer::calling = nullptr;
    }
    return !Process::IsForked(); // A handler may have forked, and have come back in the child.
}

void ServedConnection::Refuse()
{
    Message refusal;
    refusal.header.kind = Header::REPLY;
    refusal.header.code = REFUSED;
    refusal.header.number = 1;
    refusal.Send(connection.Get());
}

} // namespace OHOS::Transport
