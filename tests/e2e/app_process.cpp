// SPDX-License-Identifier: Apache-2.0
// An app: a process that knows the service through the client alone, and tells what its listeners hear.
#include <malloc.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "../unit/samples.h"
#include "command_loop.h"
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

// The result, and whether the records are right. With a failure come none, nor where there is no service.
std::string GetActive(const Words& /* words */)
{
    std::vector<IndicatorData> indicators;
    const int32_t result = Client().GetActiveIndicators(indicators);
    const bool isRight = indicators.size() == 2 && indicators[0].ToString() == DATA.text;
    return std::to_string(result) + (isRight ? " right" : indicators.empty() ? "" : " wrong");
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
        Tell("child: " + GetActive({}) + " " + std::to_string(NotifyPowerEvent(1)) + " " +
             Listen(true, "child", std::make_shared<Listener>("child")));
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return std::to_string(status);
}

// Asks, or registers and unregisters, again and again. The longest time that it took, in ms.
int64_t RunLoad(const std::string& what)
{
    const auto listener = std::make_shared<Listener>("-");
    Clock::duration longest{};
    while (g_isStorm) {
        const Clock::time_point begin = Clock::now();
        if (what == "active") {
            const std::string answer = GetActive({});
            g_answered += answer == "0 right" ? 1 : 0;
            if (answer.find("wrong") != std::string::npos) {
                std::abort();
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

} // namespace

int main()
{
    ServeCommands({{"listen", ListenByName}, {"unlisten", ListenByName}, {"active", GetActive}, {"many", ListenAsMany},
        {"fork", Fork}, {"storm", Storm}, {"calm", Calm},
        {"heap",
            [](auto&) {
                malloc_trim(0);
                return std::to_string(mallinfo2().uordblks);
            }}, // 0 under a sanitizer.
        {"power", [](auto& w) { return std::to_string(NotifyPowerEvent(std::stoi(w[1]))); }}});
    return 0;
}
