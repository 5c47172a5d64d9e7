// SPDX-License-Identifier: Apache-2.0
#include "system_ability_manager.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "message_parcel.h"
#include "notices.h"
#include "peers.h"
#include "process.h"
#include "services.h"
#include "system_ability_id.h"

namespace OHOS {

using Transport::Bus;
using Transport::MutexLock;
using Transport::Services;

namespace {

constexpr int32_t ERR_NULL_ABILITY = 3; // As the manager of a device calls it.
const char* const NAME_PREFIX = "ohos.sa.SA";

std::string NameOf(int32_t systemAbilityId)
{
    return NAME_PREFIX + std::to_string(systemAbilityId);
}

bool HasBus()
{
    return Bus::GetAddress() == Bus::Address::GIVEN;
}

sptr<IRemoteObject> AsRemote(const sptr<RefBase>& object)
{
    return dynamic_cast<IRemoteObject*>(object.GetRefPtr());
}

// Has this process own a name.
int32_t Request(const std::string& name)
{
    const auto result = Bus::Get().Ask<std::optional<bool>>([name] { return Bus::Get().RequestName(name); });
    if (!result.has_value()) {
        Bus::Get().Post([name] { Bus::Get().ReleaseName(name); }); // Should it be granted after all.
        return ERR_DEAD_OBJECT;
    }
    return *result ? ERR_NONE : ERR_PERMISSION_DENIED;
}

// Gives the object's last reference, if it is one, to the notice thread: a destructor there holds up nobody.
void Drop(sptr<RefBase> object)
{
    if (object != nullptr) {
        Transport::Notices::Post([dropped = std::move(object)] {});
    }
}

} // namespace

SystemAbilityManager& SystemAbilityManager::Get()
{
    static const auto& manager = *new sptr<SystemAbilityManager>(new SystemAbilityManager());
    return *manager;
}

SystemAbilityManager::SystemAbilityManager()
{
    Transport::Peers::Get(); // Which hears of everything first.
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
    const auto owner = Bus::Get().Ask<std::shared_ptr<Transport::Peer>>([name = NameOf(systemAbilityId)] {
        const std::string uniqueName = Bus::Get().OwnerOf(name);
        return uniqueName.empty() ? nullptr : Transport::Peers::Get().Meet(uniqueName);
    });
    // Nobody hears from the next one before the former one's end.
    return owner != nullptr && !HasRemovals(systemAbilityId) ? AsRemote(owner->ProxyOf(id, false)) : nullptr;
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
    const auto id = static_cast<uint64_t>(systemAbilityId);
    sptr<RefBase> former = Services::Get().Set(id, ability);
    int32_t error = ERR_NONE;
    if (former == nullptr && HasBus()) {
        error = Request(NameOf(systemAbilityId));
    } else if (former == nullptr) {
        const MutexLock lock(mutex_);
        AnnounceAddition(systemAbilityId);
    }
    Drop(error != ERR_NONE ? Services::Get().Set(id, nullptr) : std::move(former));
    return error;
}

int32_t SystemAbilityManager::RemoveSystemAbility(int32_t systemAbilityId)
{
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    const MutexLock changing(changeMutex_);
    const auto id = static_cast<uint64_t>(systemAbilityId);
    if (Services::Get().Find(id) == nullptr) {
        return ERR_INVALID_VALUE;
    }
    const bool isReleased = !HasBus() || Bus::Get().Ask<bool>([name = NameOf(systemAbilityId)] {
        Bus::Get().ReleaseName(name);
        return true;
    });
    Drop(Services::Get().Set(id, nullptr));
    if (!HasBus()) {
        const MutexLock lock(mutex_);
        AnnounceRemoval(systemAbilityId, {});
    }
    return isReleased ? ERR_NONE : ERR_DEAD_OBJECT;
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
        const auto [known, isNew] = availabilities_.try_emplace(systemAbilityId);
        Availability& availability = known->second;
        if (FindListener(availability, listener) != availability.subscriptions.end()) {
            return ERR_NONE;
        }
        availability.subscriptions.push_back({listener, ++lastSubscription_});
        if (availability.isUp) {
            Announce(
                systemAbilityId, availability.subscriptions.back(), ISystemAbilityStatusChange::ON_ADD_SYSTEM_ABILITY);
        } else if (isNew && !HasBus() && Services::Get().Find(static_cast<uint64_t>(systemAbilityId)) != nullptr) {
            AnnounceAddition(systemAbilityId);
        }
    }
    Bus::Get().Post([this, systemAbilityId] {
        if (Bus::Get().IsUp()) { // Else once it is.
            Watch(systemAbilityId);
        }
    });
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
        const auto found = FindListener(known->second, listener);
        if (found != known->second.subscriptions.end()) {
            removed = std::move(found->listener);
            known->second.subscriptions.erase(found);
        }
    }
    return ERR_NONE;
}

sptr<IRemoteObject> SystemAbilityManager::AsObject()
{
    return nullptr;
}

bool SystemAbilityManager::OnJoined()
{
    for (const auto& [number, service] : Services::Get().GetAll()) {
        if (!Bus::Get().RequestName(NameOf(static_cast<int32_t>(number)))) { // Another process is the service by now.
            Drop(Services::Get().Set(number, nullptr));
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
    for (auto& [id, availability] : availabilities_) {
        availability.isWatched = false;
        AnnounceRemoval(id, {});
    }
}

void SystemAbilityManager::OnOwnerChange(const std::string& name, const std::string& from, const std::string& to)
{
    if (name.rfind(NAME_PREFIX, 0) != 0) {
        return;
    }
    const int32_t id = std::stoi(name.substr(std::string(NAME_PREFIX).size()));
    const auto rest = from.empty() ? Transport::Inbound::Rest() : Transport::Peers::Get().TakeLeave(from);
    const MutexLock lock(mutex_);
    if (!from.empty()) {
        AnnounceRemoval(id, rest);
    }
    if (!to.empty()) {
        AnnounceAddition(id);
    }
}

void SystemAbilityManager::Watch(int32_t systemAbilityId)
{
    {
        const MutexLock lock(mutex_);
        if (std::exchange(availabilities_.at(systemAbilityId).isWatched, true)) {
            return;
        }
    }
    if (!Bus::Get().Watch(NameOf(systemAbilityId)).empty()) {
        const MutexLock lock(mutex_);
        AnnounceAddition(systemAbilityId);
    }
}

std::vector<SystemAbilityManager::Subscription>::iterator SystemAbilityManager::FindListener(
    Availability& availability, const sptr<ISystemAbilityStatusChange>& listener)
{
    return std::find_if(availability.subscriptions.begin(), availability.subscriptions.end(),
        [&listener](const Subscription& subscription) { return subscription.listener == listener; });
}

void SystemAbilityManager::AnnounceAddition(int32_t systemAbilityId)
{
    const auto known = availabilities_.find(systemAbilityId);
    if (known == availabilities_.end() || std::exchange(known->second.isUp, true)) {
        return;
    }
    for (const Subscription& subscription : known->second.subscriptions) {
        Announce(systemAbilityId, subscription, ISystemAbilityStatusChange::ON_ADD_SYSTEM_ABILITY);
    }
}

void SystemAbilityManager::AnnounceRemoval(int32_t systemAbilityId, const Transport::Inbound::Rest& rest)
{
    const auto known = availabilities_.find(systemAbilityId);
    if (known == availabilities_.end() || !std::exchange(known->second.isUp, false)) {
        return;
    }
    Availability& availability = known->second;
    ++availability.removals;
    // What the service has sent comes before the news of its end.
    Transport::Notices::Post([rest] { Transport::Inbound::Get().Await(rest); });
    for (const Subscription& subscription : availability.subscriptions) {
        Announce(systemAbilityId, subscription, ISystemAbilityStatusChange::ON_REMOVE_SYSTEM_ABILITY);
    }
    Transport::Notices::Post([this, &availability] {
        const MutexLock lock(mutex_);
        --availability.removals;
    });
}

void SystemAbilityManager::Announce(int32_t systemAbilityId, const Subscription& subscription, uint32_t code)
{
    Transport::Notices::Post([this, systemAbilityId, subscription, code] {
        const sptr<IRemoteObject> object = subscription.listener->AsObject();
        if (object == nullptr || !IsSubscribed(systemAbilityId, subscription)) {
            return;
        }
        MessageParcel data;
        MessageParcel reply;
        MessageOption option;
        data.WriteInterfaceToken(ISystemAbilityStatusChange::GetDescriptor());
        data.WriteInt32(systemAbilityId);
        data.WriteString("");
        object->SendRequest(code, data, reply, option);
    });
}

bool SystemAbilityManager::IsSubscribed(int32_t systemAbilityId, const Subscription& subscription)
{
    const MutexLock lock(mutex_);
    Availability& availability = availabilities_.at(systemAbilityId);
    const auto found = FindListener(availability, subscription.listener);
    return found != availability.subscriptions.end() && found->number == subscription.number;
}

bool SystemAbilityManager::HasRemovals(int32_t systemAbilityId)
{
    const MutexLock lock(mutex_);
    const auto known = availabilities_.find(systemAbilityId);
    return known != availabilities_.end() && known->second.removals > 0;
}

} // namespace OHOS
