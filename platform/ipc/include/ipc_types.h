// SPDX-License-Identifier: Apache-2.0
#ifndef IPC_TYPES_H
#define IPC_TYPES_H

namespace OHOS {

/**
 * What SendRequest returns by itself. Any other value is what the target's OnRemoteRequest returned. The values from
 * ERR_NO_DESCRIPTOR on are this host's errno values of the same meaning.
 */
enum {
    ERR_NONE = 0,
    ERR_DEAD_OBJECT = 32,     // The object's process is gone, or this process is at its end or a fork's child.
    ERR_UNKNOWN_CODE = 305,   // IPCObjectStub has no such request.
    ERR_NO_MEMORY = 12,       // No memory for a message, here or at the peer.
    ERR_INVALID_VALUE = 22,   // A null object, or a number out of range.
    ERR_NO_DESCRIPTOR = 24,   // No descriptor for a connection, here.
    ERR_BAD_MESSAGE = 74,     // The peer answered with something that is no reply.
    ERR_TOO_LARGE = 90,       // The message is over 1 MiB, or over what the kernel takes as one packet.
    ERR_BUFFER_FULL = 105,    // The peer does not read its one-way calls.
    ERR_TIMED_OUT = 110,      // The wait time is over. The request may have been, or may yet be, served.
    ERR_REFUSED = 111,        // The peer grants no connection, or does not know the object.
    ERR_FOREIGN_OBJECT = 125, // The parcel holds a proxy of a third process.
};

} // namespace OHOS

#endif // IPC_TYPES_H
