// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <mutex>
#include <set>
#include <thread>
#include <tuple>

#include "../unit/fake_service.h"
#include "app.h"
#include "helper.h"
#include "ipc_skeleton.h"
#include "iservice_registry.h"
#include "peer.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace Service {

namespace {

// Whose it is, its data type or "switch", and the stub: there twice only if it is two objects.
using Held = std::set<std::tuple<int, std::string, sptr<IRemoteObject>>>;

// Never destroyed: requests may still come while the process exits.
struct State {
    std::mutex mutex;
    Held held;
    std::string generation;
    std::atomic<bool> isFlooding{false};
};
State& g_state = *new State();
thread_local bool t_failed = false; // This thread's last call back.

void CallBack(const std::string& kind, const sptr<IRemoteObject>& object)
{
    auto data = *Read<IndicatorData>(DATA.bytes);
    std::vector<PrivacyEventRemindInfo> infos{*Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes), {}};
    if (!g_state.generation.empty()) {
        data.color = infos[0].bundleName = g_state.generation;
    }
    if (kind == "switch") {
        iface_cast<Indicator::IndicatorSwitchListenerIntf>(object)->OnSwitchChanged(data);
    } else {
        iface_cast<Privacy::PrivacyEventListenerIntf>(object)->OnPrivacyEventChanged(kind, infos);
    }
}

void Forget(const sptr<IRemoteObject>& object)
{
    const std::lock_guard<std::mutex> lock(g_state.mutex);
    for (auto entry = g_state.held.begin(); entry != g_state.held.end();) {
        entry = std::get<2>(*entry) == object ? g_state.held.erase(entry) : std::next(entry);
    }
}

class Stub : public FakeService, public IRemoteObject::DeathRecipient {
public:
    int OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        const std::lock_guard<std::mutex> lock(serving_);
        elements = 2;
        const int error = FakeService::OnRemoteRequest(code, data, reply, option);
        for (const std::string& call : Take()) {
            if (call.rfind("Register", 0) == 0) {
                Keep(call == "RegisterSwitch" ? "switch" : call.substr(call.find(' ') + 1));
            } else if (call.rfind("Unregister", 0) == 0) {
                Forget(listenerObject);
                listenerObject->RemoveDeathRecipient(this);
            }
        }
        return error;
    }

    void OnRemoteDied(const wptr<IRemoteObject>& object) override
    {
        Forget(object.promote());
    }

private:
    void Keep(const std::string& kind)
    {
        if (!g_state.generation.empty() && kind == "switch") {
            CallBack(kind, listenerObject);
        } else if (!g_state.generation.empty() && kind == "sensorStateChange") {
            // Not from here: the app waits for this request with the lock that its listeners are called under.
            std::thread(CallBack, kind, listenerObject).detach();
        }
        const std::lock_guard<std::mutex> lock(g_state.mutex);
        const auto [entry, isNew] = g_state.held.emplace(IPCSkeleton::GetCallingPid(), kind, listenerObject);
        if (isNew && !listenerObject->AddDeathRecipient(this)) {
            g_state.held.erase(entry);
        }
    }

    std::mutex serving_; // One request at a time.
};

Held Choose(pid_t process, const std::string& kind)
{
    Held chosen;
    const std::lock_guard<std::mutex> lock(g_state.mutex);
    for (const auto& entry : g_state.held) {
        if ((process == 0 || process == std::get<0>(entry)) && (kind.empty() || kind == std::get<1>(entry))) {
            chosen.insert(entry);
        }
    }
    return chosen;
}

} // namespace

int Serve(int generation)
{
    LOG_SetCallback([](const LogType, const LogLevel level, const unsigned int, const char*, const char*) {
        t_failed = t_failed || level == LOG_ERROR;
    });
    g_state.generation = generation > 0 ? std::to_string(generation) : "";
    static const sptr<Stub>& stub = *new sptr<Stub>(new Stub());
    return Peer::Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, stub);
}

void Unserve()
{
    Peer::Manager()->RemoveSystemAbility(PRIVACY_INDICATOR_SA_ID);
}

std::string ShowHeld(pid_t process, const char* kind)
{
    std::string text;
    for (const auto& [pid, heldKind, object] : Choose(process, kind)) {
        text += (text.empty() ? "" : " ") + heldKind;
    }
    return text;
}

// The library keeps the result of these calls to itself, but for its log.
std::string CallAll(pid_t process, const char* kind)
{
    t_failed = false;
    for (const auto& [pid, heldKind, object] : Choose(process, kind)) {
        CallBack(heldKind, object);
    }
    return t_failed ? "failed" : "0";
}

void Flood(pid_t process)
{
    g_state.isFlooding = true;
    for (int rounds = 1; g_state.isFlooding && (g_state.generation.empty() || rounds < 40); ++rounds) {
        CallAll(process);
        if (rounds == 10) {
            Tell("flooding");
        }
    }
}

void Calm()
{
    g_state.isFlooding = false;
}

} // namespace Service
