// SPDX-License-Identifier: Apache-2.0
#ifndef TRANSPORT_ERROR_H
#define TRANSPORT_ERROR_H

namespace OHOS::Transport {

// What a call between processes can end with by itself, called an Error elsewhere: this host's errno values of the same
// meaning.
constexpr int NO_MEMORY = 12;       // For the message, here or at the peer.
constexpr int NO_DESCRIPTOR = 24;   // For a connection, here.
constexpr int DEAD = 32;            // The peer is gone or has hung up, or this process ends or is a fork's child.
constexpr int BAD_MESSAGE = 74;     // The peer answered with something that is no reply.
constexpr int TOO_LARGE = 90;       // The message is over 1 MiB, or over what the kernel takes as one packet.
constexpr int BUFFER_FULL = 105;    // The peer does not read its one-way calls.
constexpr int TIMED_OUT = 110;      // The wait time is over. The request may have been, or may yet be, served.
constexpr int REFUSED = 111;        // The peer takes no more connections, or does not know the object.
constexpr int FOREIGN_OBJECT = 125; // The parcel holds an object of a third process.

/** What `errno` says of a packet socket. */
int ErrorOf(int systemError);

} // namespace OHOS::Transport

#endif // TRANSPORT_ERROR_H
