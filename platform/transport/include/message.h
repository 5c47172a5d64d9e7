// SPDX-License-Identifier: Apache-2.0
#ifndef MESSAGE_H
#define MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace OHOS::Transport {

/** A message is one packet: this header, `handleCount` handles, and `dataSize` bytes of a parcel. */
struct Header {
    enum Kind : uint32_t { CALL = 1, REPLY = 2, RELEASE = 3, RECEIPT = 4 };
    enum Flag : uint32_t { ONE_WAY = 1 };

    uint32_t kind;
    uint32_t code;  // A call's request code, or a reply's status; 0 otherwise.
    uint32_t flags; // Of a call; 0 otherwise.
    uint32_t handleCount;
    uint64_t objectId; // The object called; 0 otherwise.
    uint32_t dataSize; // A multiple of 4; 0 in a release, a receipt and a reply whose status is not 0.
    uint32_t number;   // Of a call on its connection, from 1 on, repeated in its reply; 0 otherwise.
};
static_assert(sizeof(Header) == 32);

/** A remote object in a message's parcel, or one that a release is about. */
struct Handle {
    enum Owner : uint32_t { SENDER = 0, RECEIVER = 1 };

    uint32_t owner;
    uint32_t position; // In the parcel, in bytes. In a release, how many references go.
    uint64_t id;
};
static_assert(sizeof(Handle) == 16);

/** Bytes that a remote object takes in a parcel. */
constexpr size_t OBJECT_SIZE = 24;

/** The largest message, on both sides: it bounds what a peer can make this process allocate. */
constexpr size_t MAX_MESSAGE_SIZE = 1 << 20;

/** The most handles in one message: likewise. */
constexpr size_t MAX_HANDLES = 1024;

/** A message, whose data belongs to somebody else: a parcel on its way out, a connection's buffer on its way in. */
struct Message {
    Header header{};
    std::vector<Handle> handles;
    const void* data = nullptr;
    bool wasSent = false;

    /** Reads a packet from a peer, which is hostile until checked. False, and the connection is of no use, if bad. */
    bool Parse(const uint8_t* packet, size_t size);

    /** Sends it as one packet, without waiting; the handle count is filled in here. 0 or an Error. */
    int Send(int fd);
};

} // namespace OHOS::Transport

#endif // MESSAGE_H
