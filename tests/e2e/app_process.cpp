// SPDX-License-Identifier: Apache-2.0
// An app: a process that knows the service through the client alone, and tells what its listeners hear.
#include <malloc.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "../unit/samples.h"
#include "command_loop.h"
#include "ipc_object_stub.h"
#include "iservice_registry.h"
#include "notify_power_event.h"
#include "privacy_indicator_client.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;
using Clock = std::chrono::steady_clock;

namespace {

PrivacyIndicatorClient& Client()
{
    return PrivacyIndicatorClient::GetInstance();
}

/** Tells what it hears; one named "-" keeps it to itself. */
class Listener : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    explicit Listener(std::string name) : name_(std::move(name)) {}

    void OnSwitchChanged(const IndicatorData& data) override
    {
        TellOf("switch " + data.ToString());
    }

    void OnPrivacyEventChanged(const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        std::string text = dataType;
        for (const PrivacyEventRemindInfo& info : infos) {
            text += " " + info.ToString();
        }
        TellOf(text);
    }

private:
    void TellOf(const std::string& text)
    {
        WaitWhileHeld(name_ != "-" ? name_ + " " + text : "");
    }

    const std::string name_;
};

/** Checks that it hears of each service in turn: of its generation, counted from 1, then of its removal, each once. */
class Keeper : public Listener {
public:
    Keeper() : Listener("-") {}

    void OnSwitchChanged(const IndicatorData& data) override
    {
        const int step = switches_ % 4;
        const bool isOff = data.state == Indicator::IndicatorState::OFF;
        if (data.state != Indicator::IndicatorState::ON && !isOff) {
            wrong_ += !(step == 1); // Any other event is of a service that is there.
            return;
        }
        wrong_ += !(step == 0 ? !isOff && data.color == std::to_string(switches_ / 4 + 1)
                              : isOff && static_cast<int>(data.privacySensorType) == step - 1);
        ++switches_;
    }

    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        if (infos.at(0).uid < 0) {
            wrong_ += !(infos.size() == 3);
            ++removals_;
        } else if (infos[0].bundleName != "com.example") {
            const int generation = std::stoi(infos[0].bundleName); // One or the other may have been killed before.
            wrong_ += !(generation == removals_ + 1 && generation > generation_);
            generation_ = generation;
        }
    }

    // How many services are gone as switches have it, and as events have it, the last one that came, and what was
    // wrong.
    std::string Show() const
    {
        std::ostringstream text;
        text << (switches_ - 1) / 4 << ' ' << removals_ << ' ' << generation_ << ' ' << wrong_;
        return text.str();
    }

private:
    std::atomic<int> switches_{0}; // For a service one, and three for its removal.
    std::atomic<int> removals_{0};
    std::atomic<int> generation_{0};
    std::atomic<int> wrong_{0};
};
const auto& g_keeper = *new std::shared_ptr<Keeper>(std::make_shared<Keeper>());

// What this process does all the time in a storm.
std::atomic<bool> g_isStorm{false};
std::atomic<uint64_t> g_answered{0};
std::vector<std::future<int64_t>> g_loads;                    // The longest call of each, in ms.
std::map<std::string, std::shared_ptr<Listener>> g_listeners; // As an app's, it goes at exit.

std::string Listen(bool begins, const std::string& kind, const std::shared_ptr<Listener>& listener)
{
    return std::to_string(kind == "switch" ? begins ? Client().RegisterPrivacyIndicatorSwitchListener(listener)
                                                    : Client().UnregisterPrivacyIndicatorSwitchListener(listener)
                          : begins ? Client().RegisterPrivacyEventListener(kind, listener)
                                           : Client().UnregisterPrivacyEventListener(listener));
}

// listen KIND NAME, unlisten KIND NAME
std::string ListenByName(const Words& words)
{
    auto& listener = g_listeners[words[1] + words[2]];
    listener = listener != nullptr ? listener : std::make_shared<Listener>(words[2]);
    return Listen(words[0] == "listen", words[1], listener);
}

// The result and the records of a query.
template <typename Record, typename Query>
std::string Show(Query query)
{
    std::vector<Record> records;
    std::string text = std::to_string(query(records));
    for (const Record& record : records) {
        text += " " + record.ToString();
    }
    return text;
}

// events USER [SENSOR]
std::string GetDetails(const Words& words)
{
    const int32_t user = std::stoi(words[1]);
    return Show<PrivacyEventDetail>([&](auto& details) {
        return words[2].empty() ? Client().GetPrivacyEventDetails(user, details)
                                : Client().GetPrivacyEventDetailsByPrivacySensorType(
                                      user, PrivacySensorType(std::stoi(words[2])), details);
    });
}

std::string GetActive(const Words& /* words */)
{
    return Show<IndicatorData>([](auto& indicators) { return Client().GetActiveIndicators(indicators); });
}

std::string GetUsage(const Words& /* words */)
{
    return Show<PermissionUsageDuration>([](auto& durations) {
        return Client().GetPermissionUsageDurationSummary(*Read<PermissionUsageDurationQuery>(QUERY.bytes), durations);
    });
}

std::string TurnOn(const Words& words)
{
    return std::to_string(Client().TurnOnIndicator(PrivacySensorType(std::stoi(words[1])),
        *Read<IndicatorPosition>(POSITION.bytes), *Read<IndicatorSize>(SIZE.bytes), std::stoi(words[2])));
}

// many COUNT: registers that many listeners, named in the order of their addresses, on eight threads, which may be the
// first that need the client.
std::string ListenAsMany(const Words& words)
{
    static std::vector<Listener> listeners;
    const size_t count = std::stoul(words[1]);
    listeners.reserve(count);
    while (listeners.size() < count) {
        listeners.emplace_back(std::to_string(listeners.size()));
    }
    std::vector<std::future<void>> threads(8);
    for (size_t first = 0; first < threads.size(); ++first) {
        threads[first] = std::async(std::launch::async, [first] {
            for (size_t i = first; i < listeners.size(); i += 8) {
                Listen(true, "switch", std::shared_ptr<Listener>(std::shared_ptr<void>(), &listeners[i]));
            }
        });
    }
    return "0";
}

// fork: what a child without exec gets from the client, and how it ends.
std::string Fork(const Words& /* words */)
{
    const pid_t child = fork();
    if (child == 0) {
        Tell("child: " + TurnOn({"", "0", "0"}) + " " + GetActive({}) + " " + std::to_string(NotifyPowerEvent(1)) +
             " " + Listen(true, "child", std::make_shared<Listener>("child")));
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return std::to_string(status);
}

// become UID: in this process's own eyes. Its peers go by what the bus has known it as.
std::string Become(const Words& words)
{
    const int error = setuid(static_cast<uid_t>(std::stoi(words[1])));
    prctl(PR_SET_DUMPABLE, 1); // As before, for a sanitizer that looks at the process in the end.
    return std::to_string(error);
}

// Asks, or registers and unregisters, again and again. The longest time that it took, in ms.
int64_t RunLoad(const std::string& what)
{
    const std::string right = "0 " + DATA.text + " " + DATA.text;
    const auto listener = std::make_shared<Listener>("-");
    Clock::duration longest{};
    while (g_isStorm) {
        const Clock::time_point begin = Clock::now();
        if (what == "active") {
            const std::string answer = GetActive({});
            g_answered += answer == right ? 1 : 0;
            if (answer != right && answer.find(' ') != std::string::npos) {
                std::abort(); // With a failure come no records, nor where there is no service.
            }
        } else {
            Listen(true, what, listener);
            Listen(false, what, listener);
        }
        longest = std::max(longest, Clock::now() - begin);
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // Else the service would get no time to start.
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(longest).count();
}

// storm: until `calm`.
std::string Storm(const Words& /* words */)
{
    g_isStorm = true;
    for (const char* what : {"active", "active", "switch", "camera", "location"}) {
        g_loads.push_back(std::async(std::launch::async, RunLoad, what));
    }
    return "0";
}

// calm: how many calls were answered in this storm, and what the longest took, in ms.
std::string Calm(const Words& /* words */)
{
    g_isStorm = false;
    int64_t longest = 0;
    for (auto& thread : std::exchange(g_loads, {})) {
        longest = std::max(longest, thread.get());
    }
    return std::to_string(g_answered.exchange(0)) + " " + std::to_string(longest);
}

// keep: of the kinds that a service is told of first, second and last.
std::string Keep(const Words& /* words */)
{
    return Listen(true, "switch", g_keeper) + Listen(true, "a", g_keeper) + Listen(true, "sensorStateChange", g_keeper);
}

/** Its notice comes behind all that this process has yet to hear of services. */
class Fence : public SystemAbilityStatusChangeStub {
public:
    void OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override
    {
        reached.set_value();
    }

    void OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string& /* deviceId */) override {}

    std::promise<void> reached;
};

// settle: waits until the client is through with all news of the service so far.
std::string Settle(const Words& /* words */)
{
    Client();
    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        return "0";
    }
    const sptr<Fence> fence(new Fence());
    manager->AddSystemAbility(getpid(), new IPCObjectStub());
    manager->SubscribeSystemAbility(getpid(), fence);
    fence->reached.get_future().wait();
    return std::to_string(manager->UnSubscribeSystemAbility(getpid(), fence));
}

} // namespace

int main()
{
    ServeCommands({{"listen", ListenByName}, {"unlisten", ListenByName}, {"events", GetDetails}, {"active", GetActive},
        {"usage", GetUsage}, {"on", TurnOn}, {"many", ListenAsMany}, {"fork", Fork}, {"become", Become},
        {"heap",
            [](auto&) {
                malloc_trim(0);
                return std::to_string(mallinfo2().uordblks);
            }}, // 0 under a sanitizer.
        {"keep", Keep}, {"storm", Storm}, {"calm", Calm}, {"settle", Settle},
        {"order", [](auto&) { return g_keeper->Show(); }},
        {"off",
            [](auto& w) {
                return std::to_string(Client().TurnOffIndicator(PrivacySensorType(std::stoi(w[1])), std::stoi(w[2])));
            }},
        {"power", [](auto& w) { return std::to_string(NotifyPowerEvent(std::stoi(w[1]))); }}});
    return 0;
}
