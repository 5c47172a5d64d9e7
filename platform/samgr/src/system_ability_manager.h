// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_MANAGER_H
#define SYSTEM_ABILITY_MANAGER_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "bus.h"
#include "if_system_ability_manager.h"
#include "inbound.h"
#include "mutex.h"

namespace OHOS {

/**
 * This process's view of the services: its own, and, where there is a bus, everybody's as bus names. Every change of a
 * name's owner is announced as what it is: a removal, an addition, or one after the other. Any thread may call what is
 * of ISystemAbilityManager.
 */
class SystemAbilityManager : public ISystemAbilityManager, private Transport::Bus::Observer {
public:
    SystemAbilityManager();

    /** Whether there can be services at all. Has the bus joined if need be. */
    static bool IsUsable();

    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) override;
    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) override;
    int32_t AddSystemAbility(
        int32_t systemAbilityId, const sptr<IRemoteObject>& ability, const SAExtraProp& extraProp) override;
    int32_t RemoveSystemAbility(int32_t systemAbilityId) override;
    int32_t SubscribeSystemAbility(int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) override;
    int32_t UnSubscribeSystemAbility(
        int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) override;

    /** Null: there is no such object on this host. */
    sptr<IRemoteObject> AsObject() override { return nullptr; }

private:
    struct Subscription {
        sptr<ISystemAbilityStatusChange> listener;
        uint64_t number; // A later one of the same listener has another.
    };

    struct Availability {
        bool isUp = false; // As was last announced, or is about to be.
        std::vector<Subscription> subscriptions;
    };

    // In a turn with the bus; without one, on the thread that adds or removes.
    bool OnJoined() override;
    void OnLost() override;
    void OnOwnerChange(const std::string& name, const std::string& from, const std::string& to) override;
    void Watch(int32_t systemAbilityId);

    static std::vector<Subscription>::iterator Find(
        Availability& availability, const sptr<ISystemAbilityStatusChange>& listener);
    int32_t Own(int32_t systemAbilityId);
    void SetAvailable(int32_t systemAbilityId, bool isUp, const Transport::Inbound::Rest& rest = {}) REQUIRES(mutex_);
    void Announce(int32_t systemAbilityId, bool isUp, const Subscription& subscription);
    bool IsSubscribed(int32_t systemAbilityId, const Subscription& subscription);

    Transport::Mutex changeMutex_; // Held while a service of this process comes or goes.
    Transport::Mutex mutex_;
    std::map<int32_t, Availability> availabilities_ GUARDED_BY(mutex_);
    std::multiset<int32_t> removals_ GUARDED_BY(mutex_); // That a listener is yet to hear of.
    uint64_t lastSubscription_ GUARDED_BY(mutex_) = 0;
};

} // namespace OHOS

#endif // SYSTEM_ABILITY_MANAGER_H
