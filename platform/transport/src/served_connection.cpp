// SPDX-License-Identifier: Apache-2.0
#include "served_connection.h"

#include <poll.h>

#include <array>
#include <cstring>
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
}

// The first packet, which is no message. Empty unless its maker sent it itself: a process that shares the socket may
// outlive the maker, whose pid may be another's by then.
std::string ServedConnection::ReceiveName()
{
    std::array<char, Introduction::MAX_NAME> name{};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
    iovec part{name.data(), name.size()};
    msghdr packet{};
    packet.msg_iov = &part;
    packet.msg_iovlen = 1;
    packet.msg_control = control.data();
    packet.msg_controllen = control.size();
    const ssize_t size = recvmsg(connection.Get(), &packet, 0); // A platform's thread takes no signal meanwhile.
    const int off = 0;
    setsockopt(connection.Get(), SOL_SOCKET, SO_PASSCRED, &off, sizeof(off));
    const bool isWhole = size > 0 && (packet.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
    const cmsghdr* const header = isWhole ? CMSG_FIRSTHDR(&packet) : nullptr;
    ucred sender{};
    if (header != nullptr && header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_CREDENTIALS) {
        std::memcpy(&sender, CMSG_DATA(header), sizeof(sender));
    }
    return sender.pid != 0 && sender.pid == maker.pid ? std::string(name.data(), static_cast<size_t>(size)) : "";
}

void ServedConnection::Run(const Introduce& introduce, const std::function<void()>& awaitFormer)
{
    const std::shared_ptr<Peer> peer = introduce(ReceiveName(), maker.pid);
    if (peer == nullptr) {
        if (!isHungUp) { // Otherwise nothing was read, not even the name.
            Refuse();
        }
        return;
    }
    Message message;
    while (connection.Receive(message, Connection::NO_DEADLINE) == 0) {
        const bool isInOrder = message.header.kind == Header::RELEASE || message.header.flags == Header::ONE_WAY;
        if (isInOrder) {
            awaitFormer();
        }
        if (!Serve(peer, message)) {
            break;
        }
    }
    if (!kept_.empty() && !Process::IsForked()) {
        // Where reading was hung up, the peer may have yet to read the reply. It closes the connection after that.
        pollfd closed{connection.Get(), 0, 0};
        poll(&closed, 1, static_cast<int>(std::chrono::milliseconds(PATIENCE).count()));
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
