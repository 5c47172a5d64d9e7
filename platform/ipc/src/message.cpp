// SPDX-License-Identifier: Apache-2.0
#include "message.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

#include "exports.h"
#include "ipc_object_proxy.h"
#include "notices.h"
#include "peer.h"

namespace OHOS::Transport {

namespace {

int ErrorOfSend(int error)
{
    switch (error) {
    case EAGAIN:
    case ENOBUFS:
        return ERR_BUFFER_FULL;
    case EMSGSIZE:
        return ERR_TOO_LARGE;
    case ENOMEM:
        return ERR_NO_MEMORY;
    default:
        return ERR_DEAD_OBJECT;
    }
}

bool IsWellFormed(const Header& header, size_t packetSize)
{
    const bool kindIsKnown = header.kind >= Header::CALL && header.kind <= Header::RELEASE;
    const bool flagsAreKnown = header.flags == 0 || (header.flags == 1 && header.kind == Header::CALL);
    const bool carriesData = header.kind == Header::CALL || (header.kind == Header::REPLY && header.code == 0);
    return kindIsKnown && flagsAreKnown && header.reserved == 0 && packetSize <= MAX_MESSAGE_SIZE &&
           (carriesData || header.dataSize == 0) && header.handleCount <= MAX_HANDLES &&
           packetSize == sizeof(Header) + header.handleCount * sizeof(Handle) + size_t{header.dataSize};
}

// Handles lie in the data, in rising order, and do not overlap.
bool AreWellFormed(const std::vector<Handle>& handles, size_t dataSize)
{
    size_t end = 0;
    for (const Handle& handle : handles) {
        if (handle.owner > Handle::RECEIVER || handle.position % 4 != 0 || handle.position < end ||
            handle.position + HANDLE_SIZE > dataSize) {
            return false;
        }
        end = handle.position + HANDLE_SIZE;
    }
    return true;
}

ssize_t ReceivePacket(int fd, iovec* parts, size_t count, int flags)
{
    msghdr packet{};
    packet.msg_iov = parts;
    packet.msg_iovlen = count;
    ssize_t size = -1;
    do {
        size = recvmsg(fd, &packet, flags);
    } while (size < 0 && errno == EINTR);
    // No descriptor is ever asked for; the kernel has closed those that came, and says so.
    return (packet.msg_flags & MSG_CTRUNC) == 0 ? size : -1;
}

} // namespace

Outgoing::Outgoing(const std::shared_ptr<Peer>& to, const MessageParcel* parcel) : to_(to), parcel_(parcel)
{
    if (parcel_ == nullptr || parcel_->objects_.empty()) {
        return;
    }
    handles_.reserve(parcel_->objects_.size());
    for (const auto& [position, object] : parcel_->objects_) {
        Handle handle{Handle::SENDER, static_cast<uint32_t>(position), 0};
        if (const auto* proxy = dynamic_cast<const IPCObjectProxy*>(object.GetRefPtr())) {
            if (proxy->peer_ != to_) {
                error_ = ERR_FOREIGN_OBJECT;
                return;
            }
            handle.owner = Handle::RECEIVER;
            handle.id = proxy->id_;
        } else if (!Exports::Get().Pin(*to_, object, handle.id)) {
            error_ = ERR_DEAD_OBJECT;
            return;
        }
        handles_.push_back(handle);
    }
}

Outgoing::~Outgoing()
{
    for (size_t i = 0; !sent_ && i < handles_.size(); ++i) {
        if (handles_[i].owner == Handle::SENDER) {
            // Another one perhaps than the parcel's, parked before: its end is not for this thread.
            const sptr<IRemoteObject> object = Exports::Get().Unpin(*to_, handles_[i].id, 1);
            if (object != nullptr) {
                Notices::Post([object] {});
            }
        }
    }
}

int Outgoing::Send(int fd, Header header)
{
    if (error_ != 0) {
        return error_;
    }
    const size_t dataSize = parcel_ != nullptr ? parcel_->GetDataSize() : 0;
    const size_t handlesSize = handles_.size() * sizeof(Handle);
    if (handles_.size() > MAX_HANDLES || sizeof(Header) + handlesSize + dataSize > MAX_MESSAGE_SIZE) {
        return ERR_TOO_LARGE;
    }
    header.handleCount = static_cast<uint32_t>(handles_.size());
    header.dataSize = static_cast<uint32_t>(dataSize);
    void* const data = // A parcel's address is a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
        dataSize > 0 ? reinterpret_cast<void*>(parcel_->GetData()) : nullptr;
    iovec parts[] = {{&header, sizeof(header)}, {handles_.data(), handlesSize}, {data, dataSize}};
    msghdr packet{};
    packet.msg_iov = parts;
    packet.msg_iovlen = std::size(parts);
    ssize_t size = -1;
    do {
        size = sendmsg(fd, &packet, MSG_DONTWAIT | MSG_NOSIGNAL);
    } while (size < 0 && errno == EINTR);
    if (size < 0) {
        return ErrorOfSend(errno);
    }
    sent_ = true;
    return ERR_NONE;
}

bool Incoming::Await(int fd, int flags)
{
    iovec part{&header_, sizeof(header_)};
    const ssize_t size = ReceivePacket(fd, &part, 1, MSG_PEEK | MSG_TRUNC | flags);
    if (size < static_cast<ssize_t>(sizeof(Header))) {
        return false;
    }
    size_ = static_cast<size_t>(size);
    return IsWellFormed(header_, size_);
}

int Incoming::Receive(int fd, const std::shared_ptr<Peer>& from, MessageParcel& parcel)
{
    handles_.resize(header_.handleCount);
    const size_t start = parcel.GetDataSize();
    // The sizes are known, so that the bytes go straight to where they stay.
    Header header{};
    iovec parts[] = {{&header, sizeof(header)}, {handles_.data(), handles_.size() * sizeof(Handle)}, {}};
    if (header_.dataSize > 0) {
        parcel.SetMaxCapacity(start + header_.dataSize + sizeof(uint32_t));
        parts[2] = {parcel.Extend(header_.dataSize), header_.dataSize};
        parcel.Truncate(start + header_.dataSize);
    }
    // Without memory for the data, that is cut off; the handles are wanted nonetheless.
    const bool hasMemory = header_.dataSize == 0 || parts[2].iov_base != nullptr;
    // A peer may have kept this end too, and taken the message back or put another in its place.
    const ssize_t size = ReceivePacket(fd, parts, std::size(parts) - (hasMemory ? 0 : 1), MSG_TRUNC | MSG_DONTWAIT);
    int error = ERR_BAD_MESSAGE;
    if (size == static_cast<ssize_t>(size_) && std::memcmp(&header, &header_, sizeof(header)) == 0 &&
        AreWellFormed(handles_, header_.dataSize)) {
        std::vector<MessageParcel::Entry> objects;
        error = !Resolve(from, start, objects) ? ERR_REFUSED : hasMemory ? ERR_NONE : ERR_NO_MEMORY;
        if (error == ERR_NONE) {
            std::move(objects.begin(), objects.end(), std::back_inserter(parcel.objects_));
            parcel.peer_ = from;
            parcel.SetReceived();
            return ERR_NONE;
        }
    }
    parcel.Truncate(start);
    return error;
}

bool Incoming::Resolve(
    const std::shared_ptr<Peer>& from, size_t start, std::vector<MessageParcel::Entry>& objects) const
{
    bool areKnown = true;
    for (const Handle& handle : handles_) {
        objects.push_back({start + handle.position, handle.owner == Handle::SENDER
                                                        ? sptr<IRemoteObject>(from->ProxyOf(handle.id, true))
                                                        : Exports::Get().Find(*from, handle.id)});
        areKnown = areKnown && objects.back().object != nullptr;
    }
    return areKnown;
}

} // namespace OHOS::Transport
