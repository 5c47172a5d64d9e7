// SPDX-License-Identifier: Apache-2.0
// Apps on the device's variant of the client, and their service, which is the test kit's.
#include <malloc.h>

#include <optional>
#include <sstream>
#include <thread>

#include "in_memory_service.h"
#include "peer_test.h"
#include "privacy_indicator_client.h"

namespace {

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

// What helpers do that are apps.

PrivacyIndicatorClient& Client() { return PrivacyIndicatorClient::GetInstance(); }

/**
 * Reports "s SENSOR STATE GENERATION NUMBER" of a switch, and "e", then "SENSOR STATE GENERATION NUMBER" of each use,
 * which are Push's, or nothing.
 */
class Listener : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    explicit Listener(bool isSilent = false) : isSilent_(isSilent) {}

    void OnSwitchChanged(const Indicator::IndicatorData& data) override
    {
        Say("s " + std::to_string(static_cast<int>(data.privacySensorType)) + " " +
            std::to_string(static_cast<int>(data.state)) + " " + std::to_string(static_cast<int>(data.positionX)) +
            " " + std::to_string(data.animationType));
    }

    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override
    {
        std::ostringstream text("e", std::ios::ate);
        for (const auto& info : infos) {
            text << " " << info.privacySensorType << " " << info.privacyAccessState << " " << info.bundleName << " "
                 << info.uid;
        }
        Say(text.str());
    }

private:
    void Say(const std::string& text) const { PeerTest::WaitWhileHeld(isSilent_ ? "" : text); }

    const bool isSilent_;
};

// What they are called with when the service is gone.
const std::vector<std::string>& SWITCHES_OFF = *new std::vector<std::string>{"s 0 1 0 0", "s 1 1 0 0", "s 2 1 0 0"};
constexpr const char* USES_OFF = "e 0 2  -1 1 2  -1 2 2  -1";

// For "switch" or a data type.
void Register(const std::string& kind, const std::shared_ptr<Listener>& listener)
{
    kind == "switch" ? Client().RegisterPrivacyIndicatorSwitchListener(listener)
                     : Client().RegisterPrivacyEventListener(kind, listener);
}

void ListenToAll()
{
    static std::vector<std::shared_ptr<Listener>> listeners; // As an app's, they go at exit.
    for (const char* kind : {"switch", "a", Privacy::SENSOR_STATE_CHANGE}) {
        Register(kind, listeners.emplace_back(std::make_shared<Listener>()));
    }
}

// What helpers do that are the service.

Testing::InMemoryService& Service()
{
    static const auto& service = *new OHOS::sptr<Testing::InMemoryService>(new Testing::InMemoryService());
    return *service;
}

// How many listeners of each kind there are.
std::map<std::string, size_t> Registered()
{
    std::map<std::string, size_t> counts;
    for (const auto& registration : Service().GetRegistrations()) {
        ++counts[registration.dataType.empty() ? "switch" : registration.dataType];
    }
    return counts;
}

// Has every listener called with a switch and a use of that generation and number: with `count` of them.
void Push(int generation, int first, int count)
{
    Indicator::IndicatorPosition position;
    position.positionX = static_cast<float>(generation);
    for (int number = first; number < first + count; ++number) {
        Service().TurnOnIndicator(0, position, {}, number);
        Service().BeginUse({PrivacySensorType::CAMERA, std::to_string(generation), number});
    }
}

// The storm: a service that ends and is started again and again, and apps that do not leave it in peace.

std::atomic<bool> g_isStorm{false};
std::atomic<long> g_answered{0};
std::vector<std::future<long>> g_loads; // The longest call of each, in ms.

// Asks, or registers and unregisters, again and again. The longest time that it took, in ms.
long RunLoad(const std::string& what)
{
    const auto listener = std::make_shared<Listener>(true);
    Clock::duration longest{};
    while (g_isStorm) {
        const Clock::time_point begin = Clock::now();
        if (what == "active") {
            std::vector<Indicator::IndicatorData> on;
            const bool isAnswered = Client().GetActiveIndicators(on) == 0;
            if (!on.empty() && (!isAnswered || on.size() > 1 || on[0].color != "#00ff00")) {
                std::abort();
            }
            g_answered += isAnswered ? 1 : 0;
        } else {
            Register(what, listener);
            what == "switch" ? Client().UnregisterPrivacyIndicatorSwitchListener(listener)
                             : Client().UnregisterPrivacyEventListener(listener);
        }
        longest = std::max(longest, Clock::now() - begin);
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // Else the service would get no time to start.
    }
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(longest).count());
}

void BeginStorm()
{
    g_isStorm = true;
    for (const char* what : {"active", "active", "switch", "camera", "location"}) {
        g_loads.push_back(std::async(std::launch::async, RunLoad, what));
    }
}

// How many calls were answered, and what the longest took, in ms.
std::string Calm()
{
    g_isStorm = false;
    long longest = 0;
    for (auto& load : std::exchange(g_loads, {})) {
        longest = std::max(longest, load.get());
    }
    return std::to_string(g_answered.exchange(0)) + " " + std::to_string(longest);
}

class StormTest : public PeerTest {
protected:
    enum Way { AT_ANY_TIME, STOPPED, IN_ITS_EVENTS, EARLY, CLEANLY, SLOWLY, WAYS }; // How a service ends.

    static constexpr size_t KEEPERS = 4;   // Apps whose listeners are always there, and check their calls.
    static constexpr int MORE = 40;        // Calls of keepers after the first, at most.
    static constexpr long LOADS = 5;       // Threads that call at once, with a connection each.
    static constexpr long LONGEST = 16000; // In ms: a call's wait and the look-up before it.

    StormTest()
    {
        for (size_t i = 0; i < KEEPERS + 2; ++i) {
            apps_.push_back(i < KEEPERS ? &Start(ListenToAll) : &Start());
            apps_.back()->Ask(BeginStorm);
        }
        StartService();
    }

    int TheWay() const { return generation_ % WAYS; }

    // Waits until the keepers' stubs are there: at least the last one, or the first but one, that they register at the
    // news of it.
    void StartService()
    {
        service_.emplace(std::vector<std::string>(), busAddress_);
        ++generation_;
        service_->Ask([] { Manager()->AddSystemAbility(PRIVACY_INDICATOR_SA_ID, &Service()); });
        const char* const last = TheWay() == EARLY ? "a" : Privacy::SENSOR_STATE_CHANGE;
        service_->Await("1", [last] { return Registered()[last] == KEEPERS; });
        if (TheWay() != EARLY) {
            service_->Ask([generation = generation_] { Push(generation, 0, 1), Service().AwaitDelivery(); });
        }
    }

    void Restart()
    {
        const int ended = TheWay();
        if (ended == STOPPED) {
            service_->Signal(SIGSTOP); // So that calls are under way.
        } else if (ended == SLOWLY) {  // A keeper does not answer for a while.
            apps_[0]->Ask(Hold);
        }
        if (ended == IN_ITS_EVENTS || ended == SLOWLY || ended == CLEANLY) {
            service_->Ask([generation = generation_] { Push(generation, 1, MORE); });
        }
        if (ended == CLEANLY) {
            service_->Ask([] { Service().AwaitDelivery(), Unserve(PRIVACY_INDICATOR_SA_ID); });
        }
        service_->Kill();
        apps_[0]->Ask(Release);
        StartService();
        for (size_t i = 0; i < KEEPERS; ++i) {
            ExpectLife(*apps_[i], ended);
        }
    }

    // A keeper was called for the last service but one, in order, then for its end, and for nothing else.
    void ExpectLife(Helper& keeper, int ended) const
    {
        std::vector<std::string> switches;
        std::vector<std::string> uses;
        while (switches.empty() || switches.back() != SWITCHES_OFF.back() || uses.empty() || uses.back() != USES_OFF) {
            const std::string line = keeper.Event();
            ASSERT_NE(line, "");
            (line[0] == 's' ? switches : uses).push_back(line);
        }
        const auto expected = [&](const char* kind, size_t count, const std::vector<std::string>& end) {
            EXPECT_GE(count, ended == EARLY ? 0U : ended == CLEANLY ? MORE + 1U : 1U) << ended;
            std::vector<std::string> all;
            for (size_t i = 0; i < count; ++i) {
                all.push_back(kind + std::to_string(generation_ - 1) + " " + std::to_string(i));
            }
            all.insert(all.end(), end.begin(), end.end());
            return all;
        };
        EXPECT_EQ(switches, expected("s 0 0 ", switches.size() - SWITCHES_OFF.size(), SWITCHES_OFF));
        EXPECT_EQ(uses, expected("e 0 1 ", uses.size() - 1, {USES_OFF}));
    }

    // Ends the storm with one more service, which must get every stub that was ever made, and nobody else's.
    void EndStorm()
    {
        for (Helper* app : apps_) {
            long answered = 0;
            long longest = 0;
            std::istringstream(app->Ask(Calm)) >> answered >> longest;
            answered_ += answered;
            longest_ = std::max(longest_, longest);
        }
        Restart();
        const std::map<std::string, size_t> all{
            {"a", 4}, {"camera", 6}, {"location", 6}, {"sensorStateChange", 4}, {"switch", 6}};
        service_->Await(testing::PrintToString(all), [] { return testing::PrintToString(Registered()); });
    }

    // An app's threads and descriptors, once those that served former services are gone, and its heap's bytes in use.
    static std::array<long, 3> Count(Helper& app)
    {
        std::array<long, 3> last{};
        for (int same = 0; same < 100; ++same) {
            const std::string bytes = app.Ask([] { return malloc_trim(0), static_cast<long>(mallinfo2().uordblks); });
            const std::array<long, 3> next{app.Count("task"), app.Count("fd"), std::stol(bytes)};
            same = next[0] == last[0] && next[1] == last[1] ? same : 0;
            last = next;
        }
        return last;
    }

    std::optional<Helper> service_;
    std::vector<Helper*> apps_;
    int generation_ = 0;
    long answered_ = 0;
    long longest_ = 0;
};

TEST_F(StormTest, NothingIsLostDoubledOrLeftHoweverOftenTheServiceEnds)
{
    const int restarts = FromEnvironment("STORM_RESTARTS", 12);
    const std::chrono::seconds least(FromEnvironment("STORM_SECONDS", 0));
    for (int i = 0; i < WAYS; ++i) {
        Restart();
    }
    EndStorm();
    ASSERT_FALSE(HasFailure());
    std::vector<std::array<long, 3>> before;
    for (Helper* app : apps_) {
        before.push_back(Count(*app));
        app->Ask(BeginStorm);
    }
    const Clock::time_point begin = Clock::now();
    answered_ = 0;
    int done = 0;
    for (; !HasFailure() && (done < restarts || Clock::now() - begin < least); ++done) {
        Restart();
        if (done == restarts / 2) { // An app comes and goes, too.
            apps_.back()->Kill();
            apps_.back() = &Start(BeginStorm);
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    EndStorm();
    std::printf("%d restarts in %.1f s; %ld calls answered, the longest call took %ld ms\n", done, seconds, answered_,
        longest_);
    EXPECT_LT(longest_, LONGEST);
    EXPECT_GE(answered_, 1);
    for (size_t i = 0; i < apps_.size() - 1; ++i) {
        const auto [threads, descriptors, bytes] = Count(*apps_[i]);
        std::printf("app %zu: %ld threads, then %ld; %ld descriptors, then %ld; %ld bytes, then %ld\n", i + 1,
            before[i][0], threads, before[i][1], descriptors, before[i][2], bytes);
        EXPECT_LE(threads, before[i][0] + LOADS);
        EXPECT_LE(descriptors, before[i][1] + 2 * LOADS); // Its own connections, and the service's.
        EXPECT_LE(bytes - before[i][2], 1 << 20);
    }
}

} // namespace
