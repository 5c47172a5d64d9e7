// SPDX-License-Identifier: Apache-2.0
#include "one_way_connection.h"

#include <algorithm>

#include "transport_error.h"

namespace OHOS::Transport {

int OneWayConnection::Send(Message& call)
{
    const MutexLock lock(mutex_);
    const int error = SendReleases();
    return error == 0 ? SendOne(call) : error;
}

void OneWayConnection::Release(uint64_t id, uint32_t count)
{
    const MutexLock lock(mutex_);
    if (!isClosed_ && releases_.size() < MAX_RELEASES) {
        releases_.push_back({Handle::RECEIVER, count, id});
        SendReleases();
    }
}

int OneWayConnection::SendReleases()
{
    int error = 0;
    while (error == 0 && !releases_.empty()) {
        const auto end = releases_.begin() + static_cast<std::ptrdiff_t>(std::min(releases_.size(), MAX_HANDLES));
        Message release;
        release.header.kind = Header::RELEASE;
        release.handles.assign(releases_.begin(), end);
        error = SendOne(release);
        if (error == 0) {
            releases_.erase(releases_.begin(), end);
        }
    }
    return error;
}

int OneWayConnection::SendOne(Message& message)
{
    int error = DEAD;
    if (socket_) {
        error = message.Send(socket_.Get());
    }
    if (error != DEAD || isClosed_) {
        return error;
    }
    // There is none yet, or the peer has hung up, so that nothing was sent. A new one it hangs up on only to refuse it.
    socket_ = connect_(error);
    if (socket_) {
        error = message.Send(socket_.Get());
        return error == DEAD ? REFUSED : error;
    }
    return error;
}

void OneWayConnection::Close()
{
    const MutexLock lock(mutex_);
    isClosed_ = true;
    socket_ = {};
    releases_.clear();
}

} // namespace OHOS::Transport
