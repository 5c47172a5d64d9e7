// SPDX-License-Identifier: Apache-2.0
#ifndef AVAILABILITY_H
#define AVAILABILITY_H

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "inbound.h"
#include "isystem_ability_status_change.h"
#include "mutex.h"
#include "notices.h"

namespace OHOS {

/** Which services are up, and their subscribers, who are called on the notice thread. Any thread may call anything. */
class Availability {
public:
    using Listener = sptr<ISystemAbilityStatusChange>;

    /** Has `listener`, which is held strongly, notified of a service. False if it is already. */
    bool Subscribe(int32_t systemAbilityId, const Listener& listener)
    {
        const Transport::MutexLock lock(mutex_);
        if (Find(systemAbilityId, listener) != subscriptions_.end()) {
            return false;
        }
        subscriptions_.push_back(std::make_shared<const Subscription>(Subscription{systemAbilityId, listener}));
        if (up_.count(systemAbilityId) > 0) {
            Announce(subscriptions_.back(), true);
        }
        return true;
    }

    /** No notice to `listener` begins any more. */
    void Unsubscribe(int32_t systemAbilityId, const Listener& listener)
    {
        Listener removed; // Destroyed after the lock. The subscription is not: a notice could find it still.
        const Transport::MutexLock lock(mutex_);
        const auto found = Find(systemAbilityId, listener);
        if (found != subscriptions_.end()) {
            removed = (*found)->listener;
            subscriptions_.erase(found);
        }
    }

    /** Announces that a service has come, or has gone and left a rest, which is read first. Nothing if it is so. */
    void Set(int32_t systemAbilityId, bool isUp, const Transport::Inbound::Rest& rest = {})
    {
        const Transport::MutexLock lock(mutex_);
        if (isUp ? !up_.insert(systemAbilityId).second : up_.erase(systemAbilityId) == 0) {
            return;
        }
        if (!isUp) {
            leaving_.insert(systemAbilityId);
            Transport::Notices::Post([rest] { Transport::Inbound::Get().Await(rest); });
        }
        for (const auto& subscription : subscriptions_) {
            if (subscription->systemAbilityId == systemAbilityId) {
                Announce(subscription, isUp);
            }
        }
        if (!isUp) {
            Transport::Notices::Post([this, systemAbilityId] {
                const Transport::MutexLock relock(mutex_);
                leaving_.erase(leaving_.find(systemAbilityId));
            });
        }
    }

    /** Whether a subscriber is yet to be notified of the service's end. */
    bool IsLeaving(int32_t systemAbilityId)
    {
        const Transport::MutexLock lock(mutex_);
        return leaving_.count(systemAbilityId) > 0;
    }

    /** The services that are up, as was last announced or is about to be. */
    std::set<int32_t> GetUp()
    {
        const Transport::MutexLock lock(mutex_);
        return up_;
    }

    /** The services that have a subscriber. */
    std::set<int32_t> GetSubscribed()
    {
        const Transport::MutexLock lock(mutex_);
        std::set<int32_t> subscribed;
        for (const auto& subscription : subscriptions_) {
            subscribed.insert(subscription->systemAbilityId);
        }
        return subscribed;
    }

private:
    struct Subscription {
        int32_t systemAbilityId;
        Listener listener;
    };
    using Subscriptions = std::vector<std::shared_ptr<const Subscription>>;

    Subscriptions::iterator Find(int32_t systemAbilityId, const Listener& listener) REQUIRES(mutex_)
    {
        return std::find_if(subscriptions_.begin(), subscriptions_.end(), [&](const auto& subscription) {
            return subscription->systemAbilityId == systemAbilityId && subscription->listener == listener;
        });
    }

    static void Announce(const std::shared_ptr<const Subscription>& subscribed, bool isUp)
    {
        Transport::Notices::Post([weak = std::weak_ptr<const Subscription>(subscribed), isUp] {
            if (const auto subscription = weak.lock()) { // Else it has been removed meanwhile.
                const auto announce = isUp ? &ISystemAbilityStatusChange::OnAddSystemAbility
                                           : &ISystemAbilityStatusChange::OnRemoveSystemAbility;
                (*subscription->listener.*announce)(subscription->systemAbilityId, "");
            }
        });
    }

    Transport::Mutex mutex_;
    Subscriptions subscriptions_ GUARDED_BY(mutex_);
    std::set<int32_t> up_ GUARDED_BY(mutex_);
    std::multiset<int32_t> leaving_ GUARDED_BY(mutex_); // Once for each end that is yet to be announced.
};

} // namespace OHOS

#endif // AVAILABILITY_H
