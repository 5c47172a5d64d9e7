// SPDX-License-Identifier: Apache-2.0
#include "system_ability_manager.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "iservice_registry.h"
#include "notices.h"
#include "peers.h"
#include "process.h"
#include "services.h"
#include "system_ability_id.h"

namespace OHOS {

using Transport::Bus;
using Transport::MutexLock;
using Transport::Notices;
using Transport::Peers;
using Transport::Services;

namespace {

constexpr int32_t ERR_NULL_ABILITY = 3; // As the manager of a device calls it.
const std::string NAME_PREFIX = "ohos.sa.SA";
const std::string THIS_PROCESS = "this process"; // Where there is no bus.

std::string NameOf(int32_t systemAbilityId) { return NAME_PREFIX + std::to_string(systemAbilityId); }

bool HasBus() { return Bus::GetAddress() == Bus::Address::GIVEN; }

sptr<IRemoteObject> AsRemote(const sptr<RefBase>& object) { return dynamic_cast<IRemoteObject*>(object.GetRefPtr()); }

// Makes `object` a service of this process, or with null takes it away. The former one's last reference, if it is one,
// goes to the notice thread: a destructor there holds up nobody. False if there was none.
bool Replace(int32_t systemAbilityId, const sptr<IRemoteObject>& object)
{
    sptr<RefBase> former = Services::Get().Set(static_cast<uint64_t>(systemAbilityId), object);
    if (former == nullptr) {
        return false;
    }
    Notices::Post([dropped = std::move(former)] {});
    return true;
}

} // namespace

SystemAbilityManager::SystemAbilityManager()
{
    Peers::Get(); // Which hears of everything first.
    Bus::Get().Observe(*this);
}

bool SystemAbilityManager::IsUsable()
{
    if (HasBus() && Transport::Process::IsUsable()) {
        Bus::Get().Start();
    }
    return Transport::Process::IsUsable() && Bus::GetAddress() != Bus::Address::MALFORMED;
}

sptr<IRemoteObject> SystemAbilityManager::GetSystemAbility(int32_t systemAbilityId)
{
    if (!IsSystemAbilityId(systemAbilityId) || !IsUsable()) {
        return nullptr;
    }
    const auto id = static_cast<uint64_t>(systemAbilityId);
    const sptr<RefBase> own = Services::Get().Find(id);
    if (!HasBus() || (own != nullptr && Bus::Get().IsUp())) {
        return AsRemote(own);
    }
    const auto owner = Bus::Get().Ask([&] {
        const std::string name = Bus::Get().OwnerOf(NameOf(systemAbilityId)).value_or("");
        return name.empty() ? nullptr : Peers::Get().Meet(name);
    });
    {
        const MutexLock lock(mutex_);
        if (owner == nullptr || removals_.count(systemAbilityId) > 0) {
            return nullptr; // Nobody hears from the next one before the former one's end.
        }
    }
    return AsRemote(owner->ProxyOf(id, false));
}

sptr<IRemoteObject> SystemAbilityManager::CheckSystemAbility(int32_t systemAbilityId)
{
    return GetSystemAbility(systemAbilityId);
}

int32_t SystemAbilityManager::AddSystemAbility(
    int32_t systemAbilityId, const sptr<IRemoteObject>& ability, const SAExtraProp& /* extraProp */)
{
    if (ability == nullptr) {
        return ERR_NULL_ABILITY;
    }
    if (!IsSystemAbilityId(systemAbilityId)) {
        return ERR_INVALID_VALUE;
    }
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    const MutexLock changing(changeMutex_);
    // There to be called before anyone can know of it.
    const int32_t error = Replace(systemAbilityId, ability) ? ERR_NONE : Own(systemAbilityId);
    if (error != ERR_NONE) {
        Replace(systemAbilityId, nullptr);
        // Should the name have been granted after all, or the bus have come meanwhile.
        Bus::Get().Ask([&] { return Bus::Get().ReleaseName(NameOf(systemAbilityId)); });
    }
    return error;
}

int32_t SystemAbilityManager::Own(int32_t systemAbilityId)
{
    const std::string name = NameOf(systemAbilityId);
    if (!HasBus()) {
        OnOwnerChange(name, "", THIS_PROCESS);
        return ERR_NONE;
    }
    const auto isOwn = Bus::Get().Ask([&] { return Bus::Get().RequestName(name); });
    return !isOwn.has_value() ? ERR_DEAD_OBJECT : *isOwn ? ERR_NONE : ERR_PERMISSION_DENIED;
}

int32_t SystemAbilityManager::RemoveSystemAbility(int32_t systemAbilityId)
{
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    const MutexLock changing(changeMutex_);
    const std::string name = NameOf(systemAbilityId);
    if (Services::Get().Find(static_cast<uint64_t>(systemAbilityId)) == nullptr) {
        return ERR_INVALID_VALUE;
    }
    Replace(systemAbilityId, nullptr); // First, so that it is not registered again with a bus that comes meanwhile.
    if (!HasBus()) {
        OnOwnerChange(name, THIS_PROCESS, "");
        return ERR_NONE;
    }
    return Bus::Get().Ask([&] { return Bus::Get().ReleaseName(name); }) ? ERR_NONE : ERR_DEAD_OBJECT;
}

int32_t SystemAbilityManager::SubscribeSystemAbility(
    int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener)
{
    if (!IsSystemAbilityId(systemAbilityId) || listener == nullptr) {
        return ERR_INVALID_VALUE;
    }
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    {
        const MutexLock lock(mutex_);
        Availability& availability = availabilities_[systemAbilityId];
        if (Find(availability, listener) != availability.subscriptions.end()) {
            return ERR_NONE;
        }
        availability.subscriptions.push_back({listener, ++lastSubscription_});
        if (availability.isUp) {
            Announce(systemAbilityId, true, availability.subscriptions.back());
        }
    }
    if (HasBus()) {
        Bus::Get().Ask([&] { // Where there is none yet, once there is.
            Watch(systemAbilityId);
            return true;
        });
    }
    return ERR_NONE;
}

int32_t SystemAbilityManager::UnSubscribeSystemAbility(
    int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener)
{
    if (!Transport::Process::IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    sptr<ISystemAbilityStatusChange> removed; // Destroyed after the lock.
    const MutexLock lock(mutex_);
    const auto known = availabilities_.find(systemAbilityId);
    if (known != availabilities_.end()) {
        const auto found = Find(known->second, listener);
        if (found != known->second.subscriptions.end()) {
            removed = std::move(found->listener);
            known->second.subscriptions.erase(found);
        }
    }
    return ERR_NONE;
}

bool SystemAbilityManager::OnJoined()
{
    for (const uint64_t number : Services::Get().GetNumbers()) {
        const auto id = static_cast<int32_t>(number);
        const auto isOwn = Bus::Get().RequestName(NameOf(id));
        if (!isOwn.has_value()) {
            return false;
        }
        if (!*isOwn) { // Another process is the service by now.
            Replace(id, nullptr);
        }
    }
    std::vector<int32_t> ids;
    {
        const MutexLock lock(mutex_);
        for (const auto& [id, availability] : availabilities_) {
            ids.push_back(id);
        }
    }
    for (const int32_t id : ids) {
        Watch(id);
    }
    return true;
}

void SystemAbilityManager::OnLost()
{
    const MutexLock lock(mutex_);
    for (const auto& [id, availability] : availabilities_) {
        SetAvailable(id, false);
    }
}

void SystemAbilityManager::OnOwnerChange(const std::string& name, const std::string& from, const std::string& to)
{
    if (name.rfind(NAME_PREFIX, 0) != 0) {
        return;
    }
    const int32_t id = std::stoi(name.substr(NAME_PREFIX.size()));
    const auto rest = Peers::Get().TakeLeave(from);
    const MutexLock lock(mutex_);
    if (!from.empty()) {
        SetAvailable(id, false, rest);
    }
    if (!to.empty()) {
        SetAvailable(id, true);
    }
}

void SystemAbilityManager::Watch(int32_t systemAbilityId)
{
    if (!Bus::Get().Watch(NameOf(systemAbilityId)).empty()) {
        const MutexLock lock(mutex_);
        SetAvailable(systemAbilityId, true);
    }
}

std::vector<SystemAbilityManager::Subscription>::iterator SystemAbilityManager::Find(
    Availability& availability, const sptr<ISystemAbilityStatusChange>& listener)
{
    return std::find_if(availability.subscriptions.begin(), availability.subscriptions.end(),
        [&listener](const Subscription& subscription) { return subscription.listener == listener; });
}

void SystemAbilityManager::SetAvailable(int32_t systemAbilityId, bool isUp, const Transport::Inbound::Rest& rest)
{
    Availability& availability = availabilities_[systemAbilityId];
    if (std::exchange(availability.isUp, isUp) == isUp) {
        return;
    }
    if (!isUp) { // What the service has sent comes before the news of its end.
        removals_.insert(systemAbilityId);
        Notices::Post([rest] { Transport::Inbound::Get().Await(rest); });
    }
    for (const Subscription& subscription : availability.subscriptions) {
        Announce(systemAbilityId, isUp, subscription);
    }
    if (!isUp) {
        Notices::Post([this, systemAbilityId] {
            const MutexLock lock(mutex_);
            removals_.erase(removals_.find(systemAbilityId));
        });
    }
}

void SystemAbilityManager::Announce(int32_t systemAbilityId, bool isUp, const Subscription& subscription)
{
    Notices::Post([this, systemAbilityId, isUp, subscription] {
        if (IsSubscribed(systemAbilityId, subscription)) {
            const auto announce = isUp ? &ISystemAbilityStatusChange::OnAddSystemAbility
                                       : &ISystemAbilityStatusChange::OnRemoveSystemAbility;
            (*subscription.listener.*announce)(systemAbilityId, "");
        }
    });
}

bool SystemAbilityManager::IsSubscribed(int32_t systemAbilityId, const Subscription& subscription)
{
    const MutexLock lock(mutex_);
    Availability& availability = availabilities_[systemAbilityId];
    const auto found = Find(availability, subscription.listener);
    return found != availability.subscriptions.end() && found->number == subscription.number;
}

SystemAbilityManagerClient& SystemAbilityManagerClient::GetInstance()
{
    static SystemAbilityManagerClient client;
    return client;
}

sptr<ISystemAbilityManager> SystemAbilityManagerClient::GetSystemAbilityManager()
{
    static const auto& manager = *new sptr<ISystemAbilityManager>(new SystemAbilityManager());
    return SystemAbilityManager::IsUsable() ? manager : nullptr;
}

} // namespace OHOS
