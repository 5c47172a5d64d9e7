// SPDX-License-Identifier: Apache-2.0
#ifndef TRANSPORT_ERROR_H
#define TRANSPORT_ERROR_H

#include <cerrno>

namespace OHOS::Transport {

// What a call between processes can end with by itself, called an Error elsewhere: this host's errno values of the same
// meaning.
constexpr int NO_MEMORY = ENOMEM;         // For the message, here or at the peer.
constexpr int NO_DESCRIPTOR = EMFILE;     // For a connection, here.
constexpr int DEAD = EPIPE;               // The peer is gone or has hung up, or this process ends or is a fork's child.
constexpr int BAD_MESSAGE = EBADMSG;      // The peer answered with something that is no reply.
constexpr int TOO_LARGE = EMSGSIZE;       // The message is over 1 MiB, or over what the kernel takes as one packet.
constexpr int BUFFER_FULL = ENOBUFS;      // The peer does not read its one-way calls.
constexpr int TIMED_OUT = ETIMEDOUT;      // The wait time is over. The request may have been, or may yet be, served.
constexpr int REFUSED = ECONNREFUSED;     // The peer takes no more connections, or does not know the object.
constexpr int FOREIGN_OBJECT = ECANCELED; // The parcel holds an object of a third process.

/** What `errno` says of a packet socket. */
inline int ErrorOf(int systemError)
{
    switch (systemError) {
    case EAGAIN:
        return BUFFER_FULL;
    case EMSGSIZE:
        return TOO_LARGE;
    case EMFILE:
    case ENFILE:
        return NO_DESCRIPTOR;
    case ENOMEM:
    case ENOBUFS:
        return NO_MEMORY;
    default:
        return DEAD;
    }
}

} // namespace OHOS::Transport

#endif // TRANSPORT_ERROR_H
