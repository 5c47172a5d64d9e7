// SPDX-License-Identifier: Apache-2.0
// A process that is the service: it knows which stubs it holds, and calls them back.
#include <atomic>
#include <set>
#include <thread>
#include <tuple>

#include "../unit/fake_service.h"
#include "command_loop.h"
#include "ipc_skeleton.h"
#include "iservice_registry.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

// Whose it is, its data type or "switch", and the stub: there twice only if it is two objects.
using Held = std::set<std::tuple<int, std::string, sptr<IRemoteObject>>>;

// Never destroyed: requests may still come while the process exits.
struct State {
    std::mutex mutex;
    Held held;
    std::string generation; // Is in every event. Who registers hears one at once, unless it is empty.
    std::atomic<bool> flooding{false};
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

void LetGo(const sptr<IRemoteObject>& object)
{
    std::lock_guard<std::mutex> lock(g_state.mutex);
    for (auto entry = g_state.held.begin(); entry != g_state.held.end();) {
        entry = std::get<2>(*entry) == object ? g_state.held.erase(entry) : std::next(entry);
    }
}

class Service : public FakeService, public IRemoteObject::DeathRecipient {
public:
    int OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        std::lock_guard<std::mutex> lock(serving_);
        elements = 2;
        const int error = FakeService::OnRemoteRequest(code, data, reply, option);
        for (const std::string& call : Take()) {
            if (call.rfind("Register", 0) == 0) {
                Hold(call == "RegisterSwitch" ? "switch" : call.substr(call.find(' ') + 1));
            } else if (call.rfind("Unregister", 0) == 0) {
                LetGo(listenerObject);
                listenerObject->RemoveDeathRecipient(this);
            }
        }
        return error;
    }

    void OnRemoteDied(const wptr<IRemoteObject>& object) override
    {
        LetGo(object.promote());
    }

private:
    void Hold(const std::string& kind)
    {
        if (!g_state.generation.empty() && kind == "switch") {
            CallBack(kind, listenerObject);
        } else if (!g_state.generation.empty() && kind == "sensorStateChange") {
            // Not from here: the app waits for this request with the lock that its listeners are called under.
            std::thread(CallBack, kind, listenerObject).detach();
        }
        std::lock_guard<std::mutex> lock(g_state.mutex);
        const auto [entry, isNew] = g_state.held.emplace(IPCSkeleton::GetCallingPid(), kind, listenerObject);
        if (isNew && !listenerObject->AddDeathRecipient(this)) {
            g_state.held.erase(entry);
        }
    }

    std::mutex serving_; // One request at a time.
};
const sptr<Service>& g_service = *new sptr<Service>(new Service());

// serve [GENERATION]
std::string Serve(const Words& words)
{
    g_state.generation = words[1];
    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    return std::to_string(manager->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, g_service));
}

// ... PID|all [KIND]
Held Choose(const Words& words)
{
    Held chosen;
    std::lock_guard<std::mutex> lock(g_state.mutex);
    for (const auto& entry : g_state.held) {
        if ((words[1] == "all" || words[1] == std::to_string(std::get<0>(entry))) &&
            (words[2].empty() || words[2] == std::get<1>(entry))) {
            chosen.insert(entry);
        }
    }
    return chosen;
}

std::string ShowHeld(const Words& words)
{
    std::string text;
    for (const auto& [pid, kind, object] : Choose(words)) {
        text += (text.empty() ? "" : " ") + kind;
    }
    return text;
}

// The library keeps the result of these calls to itself, but for its log.
std::string CallAll(const Words& words)
{
    t_failed = false;
    for (const auto& [pid, kind, object] : Choose(words)) {
        CallBack(kind, object);
    }
    return t_failed ? "failed" : "0";
}

// The same again and again, until `calm`. In a storm for a while only: nobody reads meanwhile what the listeners tell.
std::string Flood(const Words& words)
{
    g_state.flooding = true;
    for (int rounds = 1; g_state.flooding && (g_state.generation.empty() || rounds < 40); ++rounds) {
        CallAll(words);
        if (rounds == 10) {
            Tell("flooding");
        }
    }
    return "0";
}

} // namespace

int main()
{
    LOG_SetCallback([](const LogType, const LogLevel level, const unsigned int, const char*, const char*) {
        t_failed = t_failed || level == LOG_ERROR;
    });
    ServeCommands({{"serve", Serve}, {"held", ShowHeld}, {"call", CallAll}, {"flood", Flood},
        {"calm", [](auto&) { return std::to_string(g_state.flooding = false); }}});
    return 0;
}
