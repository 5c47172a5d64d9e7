// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_MANAGER_H
#define SYSTEM_ABILITY_MANAGER_H

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "if_system_ability_manager.h"

namespace OHOS {

/**
 * This process's view of the services: its own, and, where there is a bus, everybody's as bus names. Availability is
 * told as changes of what was told last; what it is told from is the owner of the service's name.
 */
class SystemAbilityManager : public ISystemAbilityManager {
public:
    /** Never destroyed. */
    static SystemAbilityManager& Get();

    /** Whether services can be reached at all; connects to the bus if need be. */
    bool IsUsable();

    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) override;
    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) override;
    int32_t AddSystemAbility(
        int32_t systemAbilityId, const sptr<IRemoteObject>& ability, const SAExtraProp& extraProp) override;
    int32_t RemoveSystemAbility(int32_t systemAbilityId) override;
    int32_t SubscribeSystemAbility(int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) override;
    int32_t UnSubscribeSystemAbility(
        int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) override;

    /** Null: there is no such object on this host. */
    sptr<IRemoteObject> AsObject() override;

private:
    struct Subscription {
        sptr<ISystemAbilityStatusChange> listener;
        uint64_t number; // A later one of the same listener has another.
    };

    /** What is known of a service that was ever subscribed to. An owner is a unique bus name; empty for none. */
    struct Availability {
        std::string owner;
        std::string told;
        int leaving = 0; // Owners whose last words are awaited before anything is told.
        int untold = 0;  // Removals that a listener is yet to hear of.
        std::vector<Subscription> subscriptions;
    };

    SystemAbilityManager();

    static std::vector<Subscription>::iterator FindListener(
        Availability& availability, const sptr<ISystemAbilityStatusChange>& listener);
    void ChangeOwner(int32_t systemAbilityId, const std::string& from, const std::string& to);
    void LoseAll();
    void TellChanges(int32_t systemAbilityId, Availability& availability);
    void Tell(int32_t systemAbilityId, const Subscription& subscription, uint32_t code);
    bool IsSubscribed(int32_t systemAbilityId, const Subscription& subscription);
    bool IsEndTold(int32_t systemAbilityId);

    std::mutex changeMutex_; // Held while a service of this process comes or goes.
    std::mutex mutex_;       // Guards what follows.
    std::map<int32_t, Availability> availabilities_;
    uint64_t lastSubscription_ = 0;
};

} // namespace OHOS

#endif // SYSTEM_ABILITY_MANAGER_H
