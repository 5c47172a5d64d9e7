// SPDX-License-Identifier: Apache-2.0
#ifndef MESSAGE_H
#define MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "message_parcel.h"

namespace OHOS::Transport {

class Peer;

/** Bytes that a remote object takes in a parcel. */
constexpr size_t HANDLE_SIZE = 24;

/** A message is one packet: this header, `handleCount` handles, and `dataSize` bytes of a parcel. */
struct Header {
    enum Kind : uint32_t { CALL = 1, REPLY = 2, RELEASE = 3 };

    uint32_t kind;
    uint32_t code;  // A call's request code, a reply's status, how many references a release takes off.
    uint32_t flags; // A call's message option; 0 otherwise.
    uint32_t handleCount;
    uint64_t objectId; // The object called or released; 0 in a reply.
    uint32_t dataSize;
    uint32_t reserved; // 0
};
static_assert(sizeof(Header) == 32);

/** A remote object in a message's parcel. */
struct Handle {
    enum Owner : uint32_t { SENDER = 0, RECEIVER = 1 };

    uint32_t owner;
    uint32_t position; // In the parcel, in bytes.
    uint64_t id;
};
static_assert(sizeof(Handle) == 16);

/** The largest message, on both sides: it bounds what a peer can make this process allocate. */
constexpr size_t MAX_MESSAGE_SIZE = 1 << 20;

/** The most remote objects in one message: likewise. */
constexpr size_t MAX_HANDLES = 1024;

/** A message on its way out. While it lives unsent, its local objects are pinned for the peer. */
class Outgoing {
public:
    /** `parcel` may be null; it must outlive this. */
    Outgoing(const std::shared_ptr<Peer>& to, const MessageParcel* parcel);
    Outgoing(const Outgoing&) = delete;
    Outgoing& operator=(const Outgoing&) = delete;
    ~Outgoing();

    /** Sends it as one packet, without waiting; `header`'s sizes are filled in here. 0, or a code of ipc_types.h. */
    int Send(int fd, Header header);

private:
    const std::shared_ptr<Peer> to_;
    const MessageParcel* const parcel_;
    std::vector<Handle> handles_;
    int error_ = 0;
    bool sent_ = false;
};

/** A message from a peer, which is hostile until checked. */
class Incoming {
public:
    /**
     * Waits for a message, or with MSG_DONTWAIT in `flags` does not, and looks at its header. False at the connection's
     * end and for anything malformed: the connection is of no use then.
     */
    bool Await(int fd, int flags = 0);

    /**
     * Takes that message: its bytes and its objects into `parcel`, after what is there already. 0; ERR_BAD_MESSAGE as
     * above; or, the connection being as good as before and the message lost, ERR_NO_MEMORY, or ERR_REFUSED if `from`
     * names an object that it cannot know. `parcel` is as it was then, and what the message hands over is released.
     */
    int Receive(int fd, const std::shared_ptr<Peer>& from, MessageParcel& parcel);

    const Header& GetHeader() const
    {
        return header_;
    }

private:
    bool Resolve(const std::shared_ptr<Peer>& from, size_t start, std::vector<MessageParcel::Entry>& objects) const;

    Header header_{};
    size_t size_ = 0; // Of the whole packet.
    std::vector<Handle> handles_;
};

} // namespace OHOS::Transport

#endif // MESSAGE_H
