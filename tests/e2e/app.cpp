// SPDX-License-Identifier: Apache-2.0
#include "app.h"

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <map>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "../unit/samples.h"
#include "helper.h"
#include "notify_power_event.h"
#include "peer.h"
#include "privacy_indicator_client.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;
using Clock = std::chrono::steady_clock;

namespace App {

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
        Say("switch " + data.ToString());
    }

    void OnPrivacyEventChanged(const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        std::string text = dataType;
        for (const PrivacyEventRemindInfo& info : infos) {
            text += " " + info.ToString();
        }
        Say(text);
    }

private:
    void Say(const std::string& text)
    {
        Peer::WaitWhileHeld(name_ != "-" ? name_ + " " + text : "");
    }

    const std::string name_;
};

// As an app's, they go at exit.
std::map<std::string, std::shared_ptr<Listener>> g_listeners;

std::atomic<bool> g_isStorm{false};
std::atomic<uint64_t> g_answered{0};
std::vector<std::future<int64_t>> g_loads; // The longest call of each, in ms.

int Register(const std::string& kind, const std::shared_ptr<Listener>& listener)
{
    return kind == "switch" ? Client().RegisterPrivacyIndicatorSwitchListener(listener)
                            : Client().RegisterPrivacyEventListener(kind, listener);
}

int Unregister(const std::string& kind, const std::shared_ptr<Listener>& listener)
{
    return kind == "switch" ? Client().UnregisterPrivacyIndicatorSwitchListener(listener)
                            : Client().UnregisterPrivacyEventListener(listener);
}

std::shared_ptr<Listener> ListenerOf(const char* kind, const char* name)
{
    auto& listener = g_listeners[std::string(kind) + name];
    listener = listener != nullptr ? listener : std::make_shared<Listener>(name);
    return listener;
}

// Asks, or registers and unregisters, again and again. The longest time that it took, in ms.
int64_t RunLoad(const std::string& what)
{
    const auto listener = std::make_shared<Listener>("-");
    Clock::duration longest{};
    while (g_isStorm) {
        const Clock::time_point begin = Clock::now();
        if (what == "active") {
            const std::string answer = GetActive();
            g_answered += answer == "0 right" ? 1 : 0;
            if (answer.find("wrong") != std::string::npos) {
                std::abort();
            }
        } else {
            Register(what, listener);
            Unregister(what, listener);
        }
        longest = std::max(longest, Clock::now() - begin);
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // Else the service would get no time to start.
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(longest).count();
}

} // namespace

int Listen(const char* kind, const char* name)
{
    return Register(kind, ListenerOf(kind, name));
}

int Unlisten(const char* kind, const char* name)
{
    return Unregister(kind, ListenerOf(kind, name));
}

std::string GetActive()
{
    std::vector<IndicatorData> indicators;
    const int32_t result = Client().GetActiveIndicators(indicators);
    const bool isRight = indicators.size() == 2 && indicators[0].ToString() == DATA.text;
    return std::to_string(result) + (isRight ? " right" : indicators.empty() ? "" : " wrong");
}

void ListenAsMany(size_t count)
{
    static std::vector<Listener> listeners;
    listeners.reserve(count);
    while (listeners.size() < count) {
        listeners.emplace_back(std::to_string(listeners.size()));
    }
    std::vector<std::future<void>> threads(8);
    for (size_t first = 0; first < threads.size(); ++first) {
        threads[first] = std::async(std::launch::async, [first] {
            for (size_t i = first; i < listeners.size(); i += 8) {
                Register("switch", std::shared_ptr<Listener>(std::shared_ptr<void>(), &listeners[i]));
            }
        });
    }
}

int NotifyPower(int32_t event)
{
    return NotifyPowerEvent(event);
}

int Fork()
{
    const pid_t child = fork();
    if (child == 0) {
        Tell("child: " + GetActive() + " " + std::to_string(NotifyPowerEvent(1)) + " " +
             std::to_string(Register("child", std::make_shared<Listener>("child"))));
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

void Storm()
{
    g_isStorm = true;
    for (const char* what : {"active", "active", "switch", "camera", "location"}) {
        g_loads.push_back(std::async(std::launch::async, RunLoad, what));
    }
}

std::string Calm()
{
    g_isStorm = false;
    int64_t longest = 0;
    for (auto& thread : std::exchange(g_loads, {})) {
        longest = std::max(longest, thread.get());
    }
    return std::to_string(g_answered.exchange(0)) + " " + std::to_string(longest);
}

long CountHeap()
{
    malloc_trim(0);
    return static_cast<long>(mallinfo2().uordblks);
}

} // namespace App
