// SPDX-License-Identifier: Apache-2.0
#ifndef FEED_H
#define FEED_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <string>

#include "if_system_ability_manager.h"
#include "system_ability_status_change_stub.h"
#include "view.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Brings the calls of the client's listeners, and the service's state, to the main thread: as calls of a view, in a
 * queue. The client's requests are made on a thread of the feed's own, since each of them blocks as long as the
 * service takes. The state is asked for whenever the service has come, and again while that fails.
 */
class Feed : public SystemAbilityStatusChangeStub {
public:
    /**
     * `user` is the user whose uses are asked for; the state is asked for at all only if `asksState`. Throws
     * std::system_error if no descriptor is left.
     */
    Feed(int32_t user, bool asksState);
    ~Feed() override;
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    /** Registers the listeners, on the feed's thread. Throws std::system_error if that cannot be started. */
    void Start(ISystemAbilityManager& manager);

    /**
     * Unregisters the listeners. False if the service does not answer a request, which still runs then: the program
     * must end without its exit handlers, because they would destroy the client.
     */
    bool Stop(ISystemAbilityManager& manager);

    /** A descriptor that can be read while a call is waiting. */
    int GetFd() const;

    /** Makes the calls that are waiting. */
    void ShowIn(View& view);

    void OnAddSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;
    void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string& deviceId) override;

private:
    class Listener;
    using Call = std::function<void(View&)>;

    void Push(Call call);

    /** The thread's function. */
    void Run();

    /** Waits until the state is to be asked for, or for a moment if the last request failed. False after Stop. */
    bool AwaitTurn(bool hasFailed);

    /** Returns whether the service answered. */
    bool AskState();

    const int32_t user_;
    const bool asksState_;
    const int fd_;

    std::mutex mutex_; // For the next four.
    std::condition_variable changed_;
    std::deque<Call> calls_;
    bool isAskWanted_ = false;
    bool isStopped_ = false;

    std::future<void> thread_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // FEED_H
