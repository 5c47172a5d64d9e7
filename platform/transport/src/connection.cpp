// SPDX-License-Identifier: Apache-2.0
#include "connection.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "transport_error.h"

namespace OHOS::Transport {

namespace {

constexpr int64_t SECOND = 1'000'000;
constexpr int64_t LEAST_TIMEOUT = 1000;
// A timeout as near as this to what is left is not set anew.
constexpr int64_t TOLERANCE = 20'000;

} // namespace

Connection::Connection(Descriptor socket) : socket_(std::move(socket))
{
    // Memory that nobody has touched costs nothing, so that there is room for the largest message.
    void* const memory =
        mmap(nullptr, MAX_MESSAGE_SIZE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    buffer_ = memory != MAP_FAILED ? static_cast<uint8_t*>(memory) : nullptr;
}

Connection::~Connection()
{
    if (buffer_ != nullptr) {
        munmap(buffer_, MAX_MESSAGE_SIZE);
    }
}

int Connection::Receive(Message& message, Clock::time_point deadline)
{
    if (buffer_ == nullptr) {
        return NO_MEMORY;
    }
    if (touched_ > KEPT_SIZE) {
        madvise(buffer_ + KEPT_SIZE, touched_ - KEPT_SIZE, MADV_DONTNEED);
    }
    iovec part{buffer_, MAX_MESSAGE_SIZE};
    msghdr packet{};
    packet.msg_iov = &part;
    packet.msg_iovlen = 1;
    ssize_t received = -1;
    do {
        if (!SetTimeout(deadline)) {
            return TIMED_OUT;
        }
        received = recvmsg(Get(), &packet, 0);
        // The peer hung up without reading all, which is said once, before what it has sent.
        const bool isReset = received < 0 && errno == ECONNRESET && !std::exchange(isReset_, true);
        const bool isNothing = received < 0 && (errno == EINTR || errno == EAGAIN || isReset);
        if (received <= 0 && !isNothing) {
            return received == 0 ? DEAD : ErrorOf(errno);
        }
    } while (received < 0);
    touched_ = static_cast<size_t>(received);
    // No descriptor is ever asked for; the kernel has closed those that came, and says so.
    const bool isWhole = (packet.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
    return isWhole && message.Parse(buffer_, touched_) ? 0 : BAD_MESSAGE;
}

bool Connection::SetTimeout(Clock::time_point deadline)
{
    int64_t wanted = 0;
    if (deadline != NO_DEADLINE) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            return false;
        }
        wanted = std::max<int64_t>(left, LEAST_TIMEOUT);
    }
    if (std::abs(wanted - timeout_) >= TOLERANCE || (wanted == 0) != (timeout_ == 0)) {
        timeout_ = wanted;
        const timeval time{static_cast<time_t>(timeout_ / SECOND), static_cast<suseconds_t>(timeout_ % SECOND)};
        setsockopt(Get(), SOL_SOCKET, SO_RCVTIMEO, &time, sizeof(time));
    }
    return true;
}

void Connection::HangUpReading() { shutdown(Get(), SHUT_RD); }

void Connection::HangUp() { shutdown(Get(), SHUT_RDWR); }

} // namespace OHOS::Transport
