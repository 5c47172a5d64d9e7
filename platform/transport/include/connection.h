// SPDX-License-Identifier: Apache-2.0
#ifndef CONNECTION_H
#define CONNECTION_H

#include <cstddef>
#include <cstdint>

#include "descriptor.h"
#include "message.h"
#include "mutex.h"

namespace OHOS::Transport {

/** A connected packet socket, and the buffer that its messages come in by. For one thread, but for hanging up. */
class Connection {
public:
    static constexpr Clock::time_point NO_DEADLINE = Clock::time_point::max();

    /** Of the buffer, no more than this stays in memory between messages. */
    static constexpr size_t KEPT_SIZE = 16 << 10;

    explicit Connection(Descriptor socket);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /** Waits for a message, whose data stays until the next one. 0, DEAD, TIMED_OUT, BAD_MESSAGE or NO_MEMORY. */
    int Receive(Message& message, Clock::time_point deadline);

    /** What has come is still there to be read; nothing more comes. */
    void HangUpReading();

    /** Ends both directions, at once. */
    void HangUp();

    int Get() const { return socket_.Get(); }

    uint32_t calls = 0; // Sent on it, for their numbers.

private:
    bool SetTimeout(Clock::time_point deadline);

    const Descriptor socket_;
    uint8_t* buffer_ = nullptr;
    size_t touched_ = 0;   // Of the buffer.
    int64_t timeout_ = 0;  // The socket's own, in microseconds; 0 for none.
    bool isReset_ = false; // The peer has hung up without reading all; what it sent before is still there.
};

} // namespace OHOS::Transport

#endif // CONNECTION_H
