// SPDX-License-Identifier: Apache-2.0
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "availability.h"
#include "bus.h"
#include "iservice_registry.h"
#include "peers.h"
#include "process.h"
#include "services.h"
#include "system_ability_id.h"

namespace OHOS {

using Transport::Bus;
using Transport::MutexLock;
using Transport::Peers;
using Transport::Services;

namespace {

constexpr int32_t ERR_NULL_ABILITY = 3;                // As the manager of a device calls it.
constexpr std::string_view NAME_PREFIX = "ohos.sa.SA"; // No object: the bus's thread runs on at exit.

std::string NameOf(int32_t systemAbilityId) { return std::string(NAME_PREFIX) + std::to_string(systemAbilityId); }

bool HasBus() { return Bus::GetAddress() == Bus::Address::GIVEN; }

// Whether there can be services at all. Has the bus joined if need be.
bool IsUsable()
{
    if (HasBus() && Transport::Process::IsUsable()) {
        Bus::Get().Start();
    }
    return Transport::Process::IsUsable() && Bus::GetAddress() != Bus::Address::MALFORMED;
}

sptr<IRemoteObject> AsRemote(const sptr<RefBase>& object) { return dynamic_cast<IRemoteObject*>(object.GetRefPtr()); }

// Makes `object` a service of this process, or with null takes it away. The former one's last reference, if it is one,
// goes to the notice thread: a destructor there holds up nobody. False if there was none.
bool Replace(int32_t systemAbilityId, const sptr<IRemoteObject>& object)
{
    sptr<RefBase> former = Services::Get().Set(static_cast<uint64_t>(systemAbilityId), object);
    if (former == nullptr) {
        return false;
    }
    Transport::Notices::Post([dropped = std::move(former)] {});
    return true;
}

// This process's view of the services: its own, and, where there is a bus, everybody's as bus names. Every change of a
// name's owner is announced as what it is: a removal, an addition, or one after the other. Any thread may call what is
// of ISystemAbilityManager.
class SystemAbilityManager : public ISystemAbilityManager, private Bus::Observer {
public:
    SystemAbilityManager()
    {
        Transport::Descriptor::WatchForks(); // Also where there is no bus.
        Peers::Get();                        // Which is notified first.
        Bus::Get().Observe(*this);
    }

    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) override
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
        if (owner == nullptr || availability_.IsLeaving(systemAbilityId)) {
            return nullptr; // Nobody meets the next one before the former one's end is announced.
        }
        return AsRemote(owner->ProxyOf(id, false));
    }

    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) override
    {
        return GetSystemAbility(systemAbilityId);
    }

    int32_t AddSystemAbility(
        int32_t systemAbilityId, const sptr<IRemoteObject>& ability, const SAExtraProp& /* extraProp */) override
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
        int32_t error = Replace(systemAbilityId, ability) ? ERR_NONE : Own(systemAbilityId);
        if (Services::Get().Find(static_cast<uint64_t>(systemAbilityId)) == nullptr) {
            error = ERR_PERMISSION_DENIED; // On a bus that came meanwhile another process had the number.
        }
        if (error != ERR_NONE) {
            Replace(systemAbilityId, nullptr);
            // Should the name have been granted after all, or the bus have come meanwhile.
            Bus::Get().AskOrRejoin([&] { return Bus::Get().ReleaseName(NameOf(systemAbilityId)); });
        }
        return error;
    }

    int32_t RemoveSystemAbility(int32_t systemAbilityId) override
    {
        if (!IsUsable()) {
            return ERR_DEAD_OBJECT;
        }
        const MutexLock changing(changeMutex_);
        // First, so that it is not registered again with a bus that comes meanwhile.
        if (!Replace(systemAbilityId, nullptr)) {
            return ERR_INVALID_VALUE;
        }
        if (!HasBus()) {
            availability_.Set(systemAbilityId, false);
            return ERR_NONE;
        }
        const bool isReleased = Bus::Get().AskOrRejoin([&] { return Bus::Get().ReleaseName(NameOf(systemAbilityId)); });
        return isReleased ? ERR_NONE : ERR_DEAD_OBJECT;
    }

    int32_t SubscribeSystemAbility(int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) override
    {
        if (!IsSystemAbilityId(systemAbilityId) || listener == nullptr) {
            return ERR_INVALID_VALUE;
        }
        if (!IsUsable()) {
            return ERR_DEAD_OBJECT;
        }
        if (availability_.Subscribe(systemAbilityId, listener) && HasBus()) {
            // Where there is none yet, once there is.
            Bus::Get().AskOrRejoin(
                [&] { return Bus::Get().IsWatched(NameOf(systemAbilityId)) || Watch(systemAbilityId); });
        }
        return ERR_NONE;
    }

    int32_t UnSubscribeSystemAbility(int32_t systemAbilityId, const sptr<ISystemAbilityStatusChange>& listener) override
    {
        if (!Transport::Process::IsUsable()) {
            return ERR_DEAD_OBJECT;
        }
        availability_.Unsubscribe(systemAbilityId, listener);
        return ERR_NONE;
    }

    // Null: there is no such object on this host.
    sptr<IRemoteObject> AsObject() override { return nullptr; }

private:
    int32_t Own(int32_t systemAbilityId)
    {
        if (!HasBus()) {
            availability_.Set(systemAbilityId, true);
            return ERR_NONE;
        }
        const auto isOwn = Bus::Get().Ask([&] { return Bus::Get().RequestName(NameOf(systemAbilityId)); });
        return !isOwn.has_value() ? ERR_DEAD_OBJECT : *isOwn ? ERR_NONE : ERR_PERMISSION_DENIED;
    }

    // The rest runs in a turn with the bus.

    bool OnJoined() override
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
        for (const int32_t id : availability_.GetSubscribed()) {
            Watch(id);
        }
        return true;
    }

    void OnLost() override
    {
        for (const int32_t id : availability_.GetUp()) {
            availability_.Set(id, false);
        }
    }

    void OnOwnerChange(const std::string& name, const std::string& from, const std::string& to) override
    {
        if (name.rfind(NAME_PREFIX, 0) != 0) {
            return;
        }
        const int32_t id = std::stoi(name.substr(NAME_PREFIX.size()));
        if (!from.empty()) {
            availability_.Set(id, false, Peers::Get().TakeLeave(from));
        }
        if (!to.empty()) {
            availability_.Set(id, true);
        }
    }

    // True if the service is up already.
    bool Watch(int32_t systemAbilityId)
    {
        const bool isUp = !Bus::Get().Watch(NameOf(systemAbilityId)).empty();
        if (isUp) {
            availability_.Set(systemAbilityId, true);
        }
        return isUp;
    }

    Availability availability_;
    Transport::Mutex changeMutex_; // Held while a service of this process comes or goes.
};

} // namespace

SystemAbilityManagerClient& SystemAbilityManagerClient::GetInstance()
{
    static SystemAbilityManagerClient client;
    return client;
}

sptr<ISystemAbilityManager> SystemAbilityManagerClient::GetSystemAbilityManager()
{
    static const auto& manager = *new sptr<ISystemAbilityManager>(new SystemAbilityManager());
    return IsUsable() ? manager : nullptr;
}

} // namespace OHOS
