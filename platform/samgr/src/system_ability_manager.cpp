// SPDX-License-Identifier: Apache-2.0
#include "system_ability_manager.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "bus.h"
#include "exports.h"
#include "notices.h"
#include "peer.h"
#include "process.h"

namespace OHOS {

using Transport::Bus;
using Transport::Exports;

namespace {

constexpr int32_t LAST_SYSTEM_ABILITY_ID = 0x00ffffff;
constexpr const char* NAME_PREFIX = "ohos.sa.SA";

// The owner of every service where there is no bus.
constexpr const char* THIS_PROCESS = "this";

bool IsValid(int32_t systemAbilityId)
{
    return systemAbilityId >= 0 && systemAbilityId <= LAST_SYSTEM_ABILITY_ID;
}

std::string NameOf(int32_t systemAbilityId)
{
    return NAME_PREFIX + std::to_string(systemAbilityId);
}

// -1 for a name that is no service's.
int32_t NumberOf(const std::string& name)
{
    const std::string prefix = NAME_PREFIX;
    if (name.compare(0, prefix.size(), prefix) != 0) {
        return -1;
    }
    const long number = std::strtol(name.c_str() + prefix.size(), nullptr, 10);
    const bool isExact = number >= 0 && number <= LAST_SYSTEM_ABILITY_ID && name == prefix + std::to_string(number);
    return isExact ? static_cast<int32_t>(number) : -1;
}

// Gives the object's last reference, if it is one, to the notice thread: a destructor there holds up nobody.
void LetGo(sptr<IRemoteObject> object)
{
    if (object != nullptr) {
        Transport::Notices::Post([released = std::move(object)] {});
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
    Bus::Get().SetObservers(
        [this](const std::string& name, const std::string& from, const std::string& to) {
            const int32_t systemAbilityId = NumberOf(name);
            if (systemAbilityId >= 0) {
                ChangeOwner(systemAbilityId, from, to);
            }
        },
        [this] { LoseAll(); });
}

bool SystemAbilityManager::IsUsable()
{
    return Transport::Process::IsUsable() && (!Bus::IsConfigured() || Bus::Get().Connect());
}

sptr<IRemoteObject> SystemAbilityManager::GetSystemAbility(int32_t systemAbilityId)
{
    if (!IsValid(systemAbilityId) || !IsUsable()) {
        return nullptr;
    }
    sptr<IRemoteObject> object = Exports::Get().FindService(systemAbilityId);
    if (object == nullptr && Bus::IsConfigured()) {
        const auto owner = Bus::Get().OwnerOf(NameOf(systemAbilityId));
        // Who has yet to hear of the former one's end would hear from the next one before.
        if (owner != nullptr && IsEndTold(systemAbilityId)) {
            object = owner->ProxyOf(static_cast<uint64_t>(systemAbilityId), false);
        }
    }
    return object;
}

sptr<IRemoteObject> SystemAbilityManager::CheckSystemAbility(int32_t systemAbilityId)
{
    return GetSystemAbility(systemAbilityId);
}

int32_t SystemAbilityManager::AddSystemAbility(
    int32_t systemAbilityId, const sptr<IRemoteObject>& ability, const SAExtraProp& /* extraProp */)
{
    if (!IsValid(systemAbilityId) || ability == nullptr) {
        return ERR_INVALID_VALUE;
    }
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    std::lock_guard<std::mutex> lock(changeMutex_);
    // There to be called before anyone can know of it.
    sptr<IRemoteObject> former = Exports::Get().AddService(systemAbilityId, ability);
    int error = ERR_NONE;
    if (!Bus::IsConfigured()) {
        ChangeOwner(systemAbilityId, "", THIS_PROCESS);
    } else if (former == nullptr) { // Else the name is this process's already.
        error = Bus::Get().RequestName(NameOf(systemAbilityId));
    }
    LetGo(error != ERR_NONE ? Exports::Get().RemoveService(systemAbilityId) : std::move(former));
    return error;
}

int32_t SystemAbilityManager::RemoveSystemAbility(int32_t systemAbilityId)
{
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    std::lock_guard<std::mutex> lock(changeMutex_);
    if (Exports::Get().FindService(systemAbilityId) == nullptr) {
        return ERR_INVALID_VALUE;
    }
    const int error = Bus::IsConfigured() ? Bus::Get().ReleaseName(NameOf(systemAbilityId)) : ERR_NONE;
    LetGo(Exports::Get().RemoveService(systemAbilityId));
    if (!Bus::IsConfigured()) {
        ChangeOwner(systemAbilityId, THIS_PROCESS, "");
    }
    return error;
}

int32_t SystemAbilityManager::SubscribeSystemAbility(
    int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener)
{
    if (!IsValid(systemAbilityId) || listener == nullptr) {
        return ERR_INVALID_VALUE;
    }
    if (!IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    const auto [known, isNew] = availabilities_.try_emplace(systemAbilityId);
    Availability& availability = known->second;
    if (FindListener(availability, listener) != availability.subscriptions.end()) {
        return ERR_NONE;
    }
    availability.subscriptions.push_back({listener, ++lastSubscription_});
    if (!availability.told.empty()) {
        Tell(systemAbilityId, availability.subscriptions.back(), ISystemAbilityStatusChange::ON_ADD_SYSTEM_ABILITY);
    } else if (isNew && Bus::IsConfigured()) {
        Bus::Get().Post([this, systemAbilityId] {
            Bus::Get().AskOwner(NameOf(systemAbilityId),
                [this, systemAbilityId](const std::string& owner) { ChangeOwner(systemAbilityId, "", owner); });
        });
    } else if (isNew && Exports::Get().FindService(systemAbilityId) != nullptr) {
        availability.owner = THIS_PROCESS;
        TellChanges(systemAbilityId, availability);
    }
    return ERR_NONE;
}

int32_t SystemAbilityManager::UnSubscribeSystemAbility(
    int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener)
{
    if (!Transport::Process::IsUsable()) {
        return ERR_DEAD_OBJECT;
    }
    sptr<ISystemAbilityStatusChange> removed; // Destroyed after the lock is released.
    std::lock_guard<std::mutex> lock(mutex_);
    const auto known = availabilities_.find(systemAbilityId);
    if (known == availabilities_.end()) {
        return ERR_INVALID_VALUE;
    }
    const auto found = FindListener(known->second, listener);
    if (found == known->second.subscriptions.end()) {
        return ERR_INVALID_VALUE;
    }
    removed = std::move(found->listener);
    known->second.subscriptions.erase(found);
    return ERR_NONE;
}

std::vector<SystemAbilityManager::Subscription>::iterator SystemAbilityManager::FindListener(
    Availability& availability, const sptr<ISystemAbilityStatusChange>& listener)
{
    return std::find_if(availability.subscriptions.begin(), availability.subscriptions.end(),
        [&listener](const Subscription& subscription) { return subscription.listener == listener; });
}

sptr<IRemoteObject> SystemAbilityManager::AsObject()
{
    return nullptr;
}

void SystemAbilityManager::ChangeOwner(int32_t systemAbilityId, const std::string& from, const std::string& to)
{
    const bool mayHaveDied = !from.empty() && Bus::IsConfigured();
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto known = availabilities_.find(systemAbilityId);
        if (known == availabilities_.end()) {
            return;
        }
        known->second.owner = to;
        known->second.leaving += mayHaveDied ? 1 : 0;
        TellChanges(systemAbilityId, known->second);
    }
    if (!mayHaveDied) {
        return;
    }
    // No event of a service that died may come after the news of its removal.
    Bus::Get().AfterLastWords(from, [this, systemAbilityId] {
        std::lock_guard<std::mutex> lock(mutex_);
        Availability& availability = availabilities_.at(systemAbilityId);
        --availability.leaving;
        TellChanges(systemAbilityId, availability);
    });
}

void SystemAbilityManager::LoseAll()
{
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto& [systemAbilityId, availability] : availabilities_) {
        availability.owner.clear();
        TellChanges(systemAbilityId, availability);
    }
}

void SystemAbilityManager::TellChanges(int32_t systemAbilityId, Availability& availability)
{
    if (availability.leaving > 0 || availability.told == availability.owner) {
        return;
    }
    const auto tellAll = [&](uint32_t code) {
        for (const Subscription& subscription : availability.subscriptions) {
            Tell(systemAbilityId, subscription, code);
        }
    };
    if (!availability.told.empty()) {
        tellAll(ISystemAbilityStatusChange::ON_REMOVE_SYSTEM_ABILITY);
        ++availability.untold;
        Transport::Notices::Post([this, &availability] { // Availabilities stay where they are, for good.
            std::lock_guard<std::mutex> lock(mutex_);
            --availability.untold;
        });
    }
    if (!availability.owner.empty()) {
        tellAll(ISystemAbilityStatusChange::ON_ADD_SYSTEM_ABILITY);
    }
    availability.told = availability.owner;
}

void SystemAbilityManager::Tell(int32_t systemAbilityId, const Subscription& subscription, uint32_t code)
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

bool SystemAbilityManager::IsEndTold(int32_t systemAbilityId)
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto known = availabilities_.find(systemAbilityId);
    return known == availabilities_.end() || (known->second.leaving == 0 && known->second.untold == 0);
}

bool SystemAbilityManager::IsSubscribed(int32_t systemAbilityId, const Subscription& subscription)
{
    std::lock_guard<std::mutex> lock(mutex_);
    Availability& availability = availabilities_.at(systemAbilityId);
    const auto found = FindListener(availability, subscription.listener);
    return found != availability.subscriptions.end() && found->number == subscription.number;
}

} // namespace OHOS
