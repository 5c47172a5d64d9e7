// SPDX-License-Identifier: Apache-2.0
#include "message.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstring>
#include <iterator>

#include "transport_error.h"

namespace OHOS::Transport {

namespace {

bool IsWellFormed(const Header& header, size_t packetSize)
{
    const bool isCall = header.kind == Header::CALL;
    const bool isReply = header.kind == Header::REPLY;
    const bool isRelease = header.kind == Header::RELEASE;
    const bool isOneWay = isCall && header.flags == Header::ONE_WAY;
    const bool hasData = isCall || (isReply && header.code == 0);
    return (isCall || isReply || isRelease || header.kind == Header::RECEIPT) && (header.flags == 0 || isOneWay) &&
           (hasData || header.dataSize == 0) && (hasData || isRelease || header.handleCount == 0) &&
           (isCall || isReply || header.code == 0) && (isCall || header.objectId == 0) && header.dataSize % 4 == 0 &&
           ((isCall && !isOneWay) || isReply) == (header.number != 0) && packetSize <= MAX_MESSAGE_SIZE &&
           header.handleCount <= MAX_HANDLES &&
           packetSize == sizeof(Header) + header.handleCount * sizeof(Handle) + uint64_t{header.dataSize};
}

// Handles lie in the data, in rising order, and do not overlap. Those of a release are the peer's to give up.
bool AreWellFormed(const std::vector<Handle>& handles, const Header& header)
{
    uint64_t end = 0; // Wider than what a peer says, also on 32 bits.
    for (const Handle& handle : handles) {
        if (header.kind == Header::RELEASE) {
            if (handle.owner != Handle::RECEIVER || handle.position == 0) {
                return false;
            }
            continue;
        }
        if (handle.owner > Handle::RECEIVER || handle.position % 4 != 0 || handle.position < end ||
            uint64_t{handle.position} + OBJECT_SIZE > header.dataSize) {
            return false;
        }
        end = handle.position + OBJECT_SIZE;
    }
    return true;
}

} // namespace

bool Message::Parse(const uint8_t* packet, size_t size)
{
    if (size < sizeof(Header)) {
        return false;
    }
    std::memcpy(&header, packet, sizeof(Header));
    if (!IsWellFormed(header, size)) {
        return false;
    }
    handles.resize(header.handleCount);
    const size_t handlesSize = handles.size() * sizeof(Handle);
    if (!handles.empty()) {
        std::memcpy(handles.data(), packet + sizeof(Header), handlesSize);
    }
    data = packet + sizeof(Header) + handlesSize;
    return AreWellFormed(handles, header);
}

int Message::Send(int fd)
{
    const size_t handlesSize = handles.size() * sizeof(Handle);
    if (handles.size() > MAX_HANDLES || sizeof(Header) + handlesSize + header.dataSize > MAX_MESSAGE_SIZE) {
        return TOO_LARGE;
    }
    header.handleCount = static_cast<uint32_t>(handles.size());
    // The data is only read. NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    iovec parts[] = {
        {&header, sizeof(header)}, {handles.data(), handlesSize}, {const_cast<void*>(data), header.dataSize}};
    msghdr packet{};
    packet.msg_iov = parts;
    packet.msg_iovlen = std::size(parts);
    wasSent = sendmsg(fd, &packet, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    return wasSent ? 0 : ErrorOf(errno);
}

} // namespace OHOS::Transport
