// SPDX-License-Identifier: Apache-2.0
#include "../unit/samples.h"
#include "bus_test.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <sstream>

namespace {

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;
using Clock = std::chrono::steady_clock;

// What listeners hear when the service calls them, after their names and kinds.
const std::string& INFOS = *new std::string(
    REMIND_INFO.text + " PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, remindFlag=0}");

/** Apps on the device's variant of the client, and their service. */
class ClientTest : public BusTest {
protected:
    ClientTest()
    {
        launcher_ = OnVariant("device");
    }

    Helper& StartService()
    {
        return Start({"serve"}, "service_process");
    }

    Helper& StartApp(std::initializer_list<std::string> commands = {})
    {
        return Start(commands, "app_process");
    }

    static std::string Of(const Helper& app, const std::string& text)
    {
        return std::to_string(app.Pid()) + " " + text;
    }

    // What `s` and `e` hear when the service goes.
    static std::vector<std::string> Removal()
    {
        std::vector<std::string> lines;
        std::string infos;
        for (const char* sensor : {"0", "1", "2"}) {
            lines.push_back(std::string("s switch Indicator{privacySensorType=") + sensor +
                            ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, height=0.000000, "
                            "color='#000000', animationType=0}");
            infos += std::string(" PrivacyEventRemindInfo='', uid=-1, privacySensorType=") + sensor +
                     ", privacyAccessState=2, remindFlag=0}";
        }
        lines.push_back("e sensorStateChange" + infos);
        return lines;
    }

    static void ExpectRemoval(Helper& app)
    {
        for (const std::string& line : Removal()) {
            EXPECT_EQ(app.Event(), line);
        }
    }
};

TEST_F(ClientTest, TheServiceGoesOnWhileAppsEndAndAreKilled)
{
    Helper& service = StartService();
    Helper& ending = StartApp({"listen switch -", "listen camera -", "listen location -"});
    Helper& killed = StartApp({"listen camera c", "hold"});
    Helper& other = StartApp({"listen location c"});
    service.Do({"background call " + Of(killed, "camera")});
    EXPECT_EQ(killed.Event().substr(0, 9), "c camera "); // Where it stays.
    killed.Kill();
    service.Hears({"done failed"});
    service.Do({"background flood " + Of(ending, "")});
    service.Hears({"flooding"});
    ending.EndInput();
    EXPECT_EQ(ending.AwaitEnd(), 0);
    service.Do({"calm"});
    service.Hears({"done 0"});
    service.AskUntil("location", "held all"); // The other's.
    service.Do({"call all"});
    EXPECT_EQ(other.Event().substr(0, 11), "c location ");
}

TEST_F(ClientTest, WhoIsStoppedCostsACallItsWaitAndNobodyElseAnything)
{
    Helper& service = StartService();
    Helper& stopped = StartApp({"listen camera c", "listen switch s"});
    Helper& app = StartApp({"listen camera c", "listen switch s"});
    Helper& stranger = StartApp(); // Has yet to connect.
    stopped.Signal(SIGSTOP);
    service.Do({"background call " + Of(stopped, "camera")});
    for (int i = 0; i < 20; ++i) {
        service.Do({"call " + Of(app, "")});
        EXPECT_EQ(app.Events(2)[0].substr(0, 9), "c camera ");
        EXPECT_EQ(app.Ask("active"), "0 right");
    }
    stopped.Signal(SIGCONT);
    EXPECT_EQ(stopped.Event().substr(0, 9), "c camera ");
    service.Hears({"done 0"});
    service.Signal(SIGSTOP);
    const auto begin = Clock::now();
    stranger.Do({"background active"});
    EXPECT_EQ(app.Ask("active"), "110");
    stranger.Hears({"done 110"});
    const auto time = Clock::now() - begin;
    EXPECT_GE(time, std::chrono::milliseconds(7900));
    EXPECT_LE(time, std::chrono::seconds(15)); // Not twice its wait.
    service.Signal(SIGCONT);                   // It answers both now.
    for (Helper* asker : {&app, &stranger}) {
        EXPECT_EQ(asker->Ask("active"), "0 right");
    }
    service.Do({"call " + Of(app, "camera")});
    EXPECT_EQ(app.Event().substr(0, 9), "c camera ");
}

TEST_F(ClientTest, AnAppLivesOnWithoutABus)
{
    Helper& bereft = StartApp({"listen switch s", "listen sensorStateChange e"});
    StartService().AskUntil("sensorStateChange switch", "held all");
    EXPECT_EQ(bereft.Ask("active"), "0 right");
    daemon_->Kill();
    ExpectRemoval(bereft);
    busAddress_.clear();
    Helper& lone = StartApp();
    busAddress_ = "unix:path=/nowhere/bus";
    Helper& lost = StartApp();
    for (Helper* app : {&bereft, &lone, &lost}) {
        for (const char* command :
            {"active", "power 1", "listen switch t", "listen camera c", "unlisten switch t", "unlisten camera c"}) {
            EXPECT_EQ(app->Ask(command), "0") << command;
        }
        EXPECT_EQ(app->Ask("unlisten camera c"), "-1");
    }
}

TEST_F(ClientTest, AThousandListenersHearOnceAndInOrder)
{
    Helper& app = StartApp({"many 1000"});
    Helper& service = StartService();
    service.AskUntil("switch", "held all");
    service.Do({"call all"});
    service.Kill();
    for (const char* event : {"305419896", "0", "1", "2"}) { // The sensor that it is about.
        for (int i = 0; i < 1000; ++i) {
            const std::string expected = std::to_string(i) + " switch Indicator{privacySensorType=" + event + ",";
            ASSERT_EQ(app.Event().substr(0, expected.size()), expected);
        }
    }
}

TEST_F(ClientTest, AChildOfAnAppHasNoServiceAndLeavesTheAppItsOwn)
{
    launcher_.emplace_back("ASAN_OPTIONS=detect_leaks=0"); // What threads hold that the child does not have.
    Helper& app = StartApp({"listen switch s", "listen sensorStateChange e"});
    Helper& service = StartService();
    service.AskUntil("sensorStateChange switch", "held all");
    app.Do({"listen sensorStateChange e", "fork"}); // Once the client is through with the news of the service.
    app.Hears({"child: 32 32 32"});
    EXPECT_EQ(service.Ask("held all"), "sensorStateChange switch");
    service.Do({"call " + Of(app, "switch")});
    app.Hears({"s switch " + DATA.text});
    EXPECT_EQ(app.Ask("active"), "0 right");
    service.Kill();
    ExpectRemoval(app);
}

constexpr size_t KEEPERS = 4; // Apps whose listeners are always there, and check the order of what they hear.
constexpr long MEBIBYTE = 1 << 20;
constexpr long LONGEST_MS = 9000; // A call's wait, and a second for a busy machine.

int FromEnvironment(const char* name, int otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::atoi(value) : otherwise;
}

/** A service that is killed and started again and again, and apps that do not leave it in peace. */
class StormTest : public ClientTest {
protected:
    enum Way { AT_ANY_TIME, STOPPED, IN_ITS_EVENTS, EARLY, WAYS }; // How a service ends.

    StormTest()
    {
        for (size_t i = 0; i < KEEPERS + 2; ++i) {
            apps_.push_back(&StartApp());
            if (i < KEEPERS) { // In the order in which they register anew.
                apps_[i]->Do({"listen switch s", "listen a -", "listen sensorStateChange e"});
            }
            apps_[i]->Do({"storm"});
        }
        StartService();
    }

    // Waits until the keepers' stubs are there: at least the last one, or the first but one, that they register at the
    // news of it.
    void StartService()
    {
        service_.emplace(CommandFor("service_process"), busAddress_);
        service_->Do({"serve " + std::to_string(++generation_)});
        const std::string kind = generation_ % WAYS == EARLY ? "a" : "sensorStateChange";
        service_->AskUntil(kind + " " + kind + " " + kind + " " + kind, "held all " + kind);
    }

    void Restart()
    {
        const int way = generation_ % WAYS;
        if (way == STOPPED) {
            service_->Signal(SIGSTOP); // So that calls are under way.
        } else if (way == IN_ITS_EVENTS) {
            service_->Do({"background flood all"});
            service_->Hears({"flooding"});
        }
        service_->Kill();
        StartService();
        for (size_t i = 0; i < KEEPERS; ++i) {
            ExpectLife(*apps_[i]);
        }
    }

    // A keeper has heard of the last service but one, then of its end, and nothing else.
    void ExpectLife(Helper& keeper) const
    {
        const auto told = [this](std::string text, const std::string& what) {
            return text.replace(text.find(what), what.size(), std::to_string(generation_ - 1));
        };
        const std::vector<std::string> removal = Removal();
        const std::string change = told("s switch " + DATA.text, "#00ff7f");
        const std::string event = told("e sensorStateChange " + INFOS, "com.example");
        std::vector<std::string> changes;
        std::vector<std::string> events{event}; // Which may have come to nothing.
        while (changes.empty() || changes.back() != removal[2] || events.back() != removal[3]) {
            const std::string line = keeper.Event();
            ASSERT_NE(line, "");
            std::vector<std::string>& heard = line[0] == 's' ? changes : events;
            if (heard.size() != 1 || line != heard[0]) { // The service may say it again.
                heard.push_back(line);
            }
        }
        EXPECT_EQ(changes, (std::vector<std::string>{change, removal[0], removal[1], removal[2]}));
        EXPECT_EQ(events, (std::vector<std::string>{event, removal[3]}));
    }

    // Ends the storm with one more service, which must get every stub that was ever made.
    void Calm()
    {
        for (Helper* app : apps_) {
            long answered = 0;
            long longest = 0;
            std::istringstream(app->Ask("calm")) >> answered >> longest;
            answered_ += answered;
            longest_ = std::max(longest_, longest);
        }
        Restart();
        for (size_t i = 0; i < apps_.size() && !HasFailure(); ++i) {
            service_->AskUntil(i < KEEPERS ? "a camera location sensorStateChange switch" : "camera location switch",
                "held " + std::to_string(apps_[i]->Pid()));
        }
        const std::string held = service_->Ask("held all");
        EXPECT_EQ(std::count(held.begin(), held.end(), ' '), 25); // Nobody else's.
    }

    // An app's threads and descriptors, once those that served former services are gone, and its heap's bytes in use.
    static std::array<long, 3> Count(Helper& app)
    {
        std::array<long, 3> last{};
        for (int same = 0; same < 100; ++same) {
            const long bytes = std::stol(app.Ask("heap"));
            const std::array<long, 3> next{
                static_cast<long>(app.Count("task")), static_cast<long>(app.Count("fd")), bytes};
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

TEST_F(StormTest, NothingIsLostDoubledOrLeftHoweverOftenTheServiceDies)
{
    const int restarts = FromEnvironment("STORM_RESTARTS", 10);
    const std::chrono::seconds least(FromEnvironment("STORM_SECONDS", 0));
    for (int i = 0; i < WAYS; ++i) {
        Restart();
    }
    Calm();
    ASSERT_FALSE(HasFailure());
    std::vector<std::array<long, 3>> before;
    for (Helper* app : apps_) {
        before.push_back(Count(*app));
        app->Do({"storm"});
    }
    const Clock::time_point begin = Clock::now();
    answered_ = 0;
    int done = 0;
    for (; !HasFailure() && (done < restarts || Clock::now() - begin < least); ++done) {
        Restart();
        if (done == restarts / 2) { // An app comes and goes, too.
            apps_.back()->Kill();
            apps_.back() = &StartApp({"storm"});
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    Calm();
    const double rate = static_cast<double>(answered_) / seconds;
    std::printf("%d restarts in %.1f s; %ld calls answered, %.0f a second, the longest call took %ld ms\n", done,
        seconds, answered_, rate, longest_);
    EXPECT_LT(longest_, LONGEST_MS);
    EXPECT_GE(rate, least.count() > 0 ? 200 : 1);
    for (size_t i = 0; i < apps_.size() - 1; ++i) {
        const auto [threads, descriptors, bytes] = Count(*apps_[i]);
        std::printf("app %zu: %d removals, %ld threads, then %ld; %ld descriptors, then %ld; %ld bytes, then %ld\n",
            i + 1, i < KEEPERS ? generation_ - 1 : 0, before[i][0], threads, before[i][1], descriptors, before[i][2],
            bytes);
        EXPECT_EQ(threads, before[i][0]);
        EXPECT_EQ(descriptors, before[i][1]);
        EXPECT_LE(bytes - before[i][2], MEBIBYTE);
    }
}

} // namespace
