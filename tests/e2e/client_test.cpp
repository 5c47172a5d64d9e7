// SPDX-License-Identifier: Apache-2.0
#include "../unit/samples.h"
#include "bus_test.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>

namespace {

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

const std::string& ACTIVE = *new std::string("0 " + DATA.text + " " + DATA.text);

/** Apps on the device's variant of the client, and their service. */
class ClientTest : public BusTest {
protected:
    ClientTest()
    {
        launcher_ = OnVariant("device");
    }

    Helper& StartService(const char* first = "serve")
    {
        return Start({first, "serve"}, "service_process");
    }

    Helper& StartApp(std::initializer_list<std::string> commands = {})
    {
        Helper& app = Start({"settle"}, "app_process"); // Else the news of the service registers what comes now again.
        for (const std::string& command : commands) {
            EXPECT_EQ(app.Ask(command), "0") << command;
        }
        return app;
    }

    static std::string Of(const Helper& app, const std::string& text)
    {
        return std::to_string(app.Pid()) + " " + text;
    }

    // What `switches` and `events` hear when the service goes.
    static void ExpectRemoval(Helper& app, const std::string& switches, const std::string& events)
    {
        std::string infos;
        for (const char* sensor : {"0", "1", "2"}) {
            EXPECT_EQ(app.Event(), switches + " switch Indicator{privacySensorType=" + sensor +
                                       ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, "
                                       "height=0.000000, color='#000000', animationType=0}");
            infos += std::string(" PrivacyEventRemindInfo='', uid=-1, privacySensorType=") + sensor +
                     ", privacyAccessState=2, remindFlag=0}";
        }
        app.Hears({events + " sensorStateChange" + infos});
    }
};

TEST_F(ClientTest, EveryRequestAndCallbackGoesBetweenProcesses)
{
    Helper& service = StartService("tell");
    Helper& app = StartApp();
    const auto twice = [](const std::string& text) { return " " + text + " " + text; };
    const std::vector<std::vector<std::string>> requests{// A command, its request, and the records that come back.
        {"listen switch s", "RegisterSwitch", ""}, {"listen camera a", "RegisterEvent camera", ""},
        {"events 100", "Details 100", twice(DETAIL.text)}, {"events -5 2", "Details -5 2", twice(DETAIL.text)},
        {"active", "Active", twice(DATA.text)}, {"usage", "Usage " + QUERY.text, twice(DURATION.text)},
        {"on 1 7", "On 1" + POSITION.text + SIZE.text + "7", ""}, {"off 2 -8", "Off 2 -8", ""},
        {"power 1", "Power 1", ""}, {"unlisten switch s", "UnregisterSwitch", ""},
        {"unlisten camera a", "UnregisterEvent", ""}};
    for (const char* result : {"0", "-77"}) {
        service.Do({std::string("result ") + result});
        for (const auto& request : requests) { // With an error come no records.
            EXPECT_EQ(app.Ask(request[0]), result + (*result == '0' ? request[2] : ""));
            service.Hears({Of(app, request[1])});
        }
    }
    EXPECT_EQ(app.Ask("listen switch s"), "-77"); // Registered all the same.
    EXPECT_EQ(app.Ask("listen camera a"), "-77");
    app.Do({"listen camera b"});
    EXPECT_EQ(service.Ask("held " + Of(app, "")), "camera switch");
    service.Do({"call all"});
    const std::string infos =
        REMIND_INFO.text +
        " PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, remindFlag=0}";
    EXPECT_EQ(
        app.Events(3), (std::vector<std::string>{"a camera " + infos, "b camera " + infos, "s switch " + DATA.text}));
}

TEST_F(ClientTest, ARestartedServiceIsUsedAndHoldsEveryStubAgain)
{
    Helper& first = StartService("tell");
    Helper* apps[] = {&StartApp(), &StartApp(), &StartApp()};
    for (Helper* app : apps) {
        for (const char* command : {"listen switch s", "listen sensorStateChange e", "listen camera c", "listen x x",
                 "unlisten x x"}) { // A stub is registered again though nobody listens any more.
            app->Do({command});
            first.Event();
        }
        EXPECT_EQ(first.Ask("held " + Of(*app, "")), "camera sensorStateChange switch");
    }
    Helper& caller = StartApp();
    first.Do({"hold"});
    caller.Do({"background active"});
    first.Hears({Of(caller, "Active")});
    first.Kill();
    caller.Hears({"done 32"});
    caller.AskUntil("0", "active"); // No service, no records.
    for (Helper* app : apps) {
        ExpectRemoval(*app, "s", "e");
    }
    Helper& second = StartService();
    EXPECT_EQ(caller.Ask("active"), ACTIVE); // Whether it has heard of it yet or not.
    for (Helper* app : apps) {
        second.AskUntil("camera sensorStateChange switch x", "held " + Of(*app, ""));
        second.Do({"call " + Of(*app, "switch")});
        app->Hears({"s switch " + DATA.text});
    }
}

TEST_F(ClientTest, ThePowerEventOfOneUserAloneIsReplayedAndBeforeTheStubs)
{
    const bool isRoot = getuid() == 0;
    if (!isRoot && std::system("unshare --map-user=3036 true 2>/dev/null") != 0) {
        GTEST_SKIP() << "A process of uid 3036 takes a user namespace or root, and neither is to be had.";
    }
    Helper& first = StartService();
    Helper& other = StartApp({"power 1", "listen switch s", "listen camera c"});
    if (!isRoot) {
        launcher_.insert(launcher_.end(), {"unshare", "--map-user=3036"});
    }
    Helper& reporter = StartApp({"become 3036", "listen switch s", "listen camera c", "listen sensorStateChange e"});
    reporter.Do({"power 0", "power 1"});
    EXPECT_EQ(reporter.Ask("power 2"), "-1");
    first.Kill();
    ExpectRemoval(reporter, "s", "e");
    Helper& second = StartService("tell");
    std::map<std::string, std::string> heard; // By the app.
    for (int i = 0; i < 6; ++i) {
        const std::string request = second.Event();
        const size_t blank = request.find(' ');
        heard[request.substr(0, blank)] += request.substr(blank);
    }
    EXPECT_EQ(heard[std::to_string(reporter.Pid())],
        " Power 1 RegisterSwitch RegisterEvent camera RegisterEvent sensorStateChange");
    EXPECT_EQ(heard[std::to_string(other.Pid())], " RegisterSwitch RegisterEvent camera");
}

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
        EXPECT_EQ(app.Ask("active"), ACTIVE);
    }
    stopped.Signal(SIGCONT);
    EXPECT_EQ(stopped.Event().substr(0, 9), "c camera ");
    service.Hears({"done 0"});
    service.Signal(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();
    stranger.Do({"background usage"});
    EXPECT_EQ(app.Ask("active"), "110");
    stranger.Hears({"done 110"});
    const auto time = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(time, std::chrono::milliseconds(7900));
    EXPECT_LE(time, std::chrono::seconds(10));
    service.Signal(SIGCONT); // It answers both now.
    for (Helper* asker : {&app, &stranger}) {
        EXPECT_EQ(asker->Ask("usage"), "0 " + DURATION.text + " " + DURATION.text);
        EXPECT_EQ(asker->Ask("active"), ACTIVE);
    }
    service.Do({"call " + Of(app, "camera")});
    EXPECT_EQ(app.Event().substr(0, 9), "c camera ");
}

TEST_F(ClientTest, AnAppLivesOnWithoutABus)
{
    StartService();
    Helper& bereft = StartApp({"listen switch s", "listen sensorStateChange e"});
    EXPECT_EQ(bereft.Ask("active"), ACTIVE);
    daemon_->Kill();
    ExpectRemoval(bereft, "s", "e");
    busAddress_.clear();
    Helper& lone = StartApp();
    busAddress_ = "unix:path=/nowhere/bus";
    Helper& lost = StartApp();
    for (Helper* app : {&bereft, &lone, &lost}) {
        for (const char* command : {"active", "usage", "events 1", "on 0 0", "power 1", "listen switch t",
                 "listen camera c", "unlisten switch t", "unlisten camera c"}) {
            EXPECT_EQ(app->Ask(command), "0") << command;
        }
        EXPECT_EQ(app->Ask("unlisten camera c"), "-1");
    }
}

TEST_F(ClientTest, OnAnEmulatorNoRequestReachesTheServiceButItsRemovalIsHeardOf)
{
    Helper& service = StartService("tell");
    Helper& real = StartApp();
    launcher_ = OnVariant("emulator");
    Helper& app = StartApp({"listen switch s", "listen sensorStateChange e", "listen camera c", "unlisten camera c",
        "events 100", "events 100 1", "active", "usage", "on 0 0", "off 0 0", "power 1"});
    EXPECT_EQ(app.Ask("power 2"), "-1");
    EXPECT_EQ(real.Ask("active"), ACTIVE);
    service.Hears({Of(real, "Active")}); // The first it hears.
    service.Kill();
    ExpectRemoval(app, "s", "e");
}

TEST_F(ClientTest, AThousandListenersHearOnceAndInOrder)
{
    Helper& service = StartService();
    Helper& app = Start({"many 1000"}, "app_process");
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
    Helper& service = StartService();
    launcher_.emplace_back("ASAN_OPTIONS=detect_leaks=0"); // What threads hold that the child does not have.
    Helper& app = StartApp({"listen switch s", "listen sensorStateChange e", "fork"});
    app.Hears({"child: 32 32 32 32"});
    EXPECT_EQ(service.Ask("held all"), "sensorStateChange switch");
    service.Do({"call " + Of(app, "switch")});
    app.Hears({"s switch " + DATA.text});
    EXPECT_EQ(app.Ask("active"), ACTIVE);
    service.Kill();
    ExpectRemoval(app, "s", "e");
}

} // namespace
