// SPDX-License-Identifier: Apache-2.0
#include "client_test.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "../unit/samples.h"
#include "app.h"
#include "peer.h"

namespace {

using namespace App;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;
using Clock = std::chrono::steady_clock;

TEST_F(ClientTest, TheServiceGoesOnWhileAppsEndAndAreKilled)
{
    Helper& service = Start([] { Service::Serve(); });
    Helper& ending = Start([] { Listen("switch", "-"), Listen("camera", "-"), Listen("location", "-"); });
    Helper& killed = Start([] { Listen("camera", "c"), Peer::Hold(); });
    Helper& other = Start([] { Listen("location", "c"); });
    service.Begin([pid = killed.Pid()] { return Service::CallAll(pid, "camera"); });
    EXPECT_EQ(killed.Event().substr(0, 9), "c camera "); // Where it stays.
    killed.Kill();
    service.Hears({"done failed"});
    service.Begin([pid = ending.Pid()] { Service::Flood(pid); });
    service.Hears({"flooding"});
    ending.EndInput();
    EXPECT_EQ(ending.AwaitEnd(), 0);
    service.Ask(Service::Calm);
    service.Hears({"done "});
    service.Await("location", [] { return Service::ShowHeld(); }); // The other's.
    service.Expect("0", [] { return Service::CallAll(); });
    EXPECT_EQ(other.Event().substr(0, 11), "c location ");
}

TEST_F(ClientTest, WhoIsStoppedCostsACallItsWaitAndNobodyElseAnything)
{
    Helper& service = Start([] { Service::Serve(); });
    Helper& stopped = Start([] { Listen("camera", "c"), Listen("switch", "s"); });
    Helper& app = Start([] { Listen("camera", "c"), Listen("switch", "s"); });
    Helper& stranger = Start(); // Has yet to connect.
    stopped.Signal(SIGSTOP);
    service.Begin([pid = stopped.Pid()] { return Service::CallAll(pid, "camera"); });
    for (int i = 0; i < 20; ++i) {
        service.Expect("0", [pid = app.Pid()] { return Service::CallAll(pid); });
        EXPECT_EQ(app.Events(2)[0].substr(0, 9), "c camera ");
        app.Expect("0 right", GetActive);
    }
    stopped.Signal(SIGCONT);
    EXPECT_EQ(stopped.Event().substr(0, 9), "c camera ");
    service.Hears({"done 0"});
    service.Signal(SIGSTOP);
    const auto begin = Clock::now();
    stranger.Begin(GetActive);
    app.Expect("110", GetActive);
    stranger.Hears({"done 110"});
    const auto time = Clock::now() - begin;
    EXPECT_GE(time, std::chrono::milliseconds(7900));
    EXPECT_LE(time, std::chrono::seconds(15)); // Not twice its wait.
    service.Signal(SIGCONT);                   // It answers both now.
    app.Expect("0 right", GetActive);
    stranger.Expect("0 right", GetActive);
    service.Ask([pid = app.Pid()] { Service::CallAll(pid, "camera"); });
    EXPECT_EQ(app.Event().substr(0, 9), "c camera ");
}

TEST_F(ClientTest, AnAppLivesOnWithoutABusAndGoesOnWithTheNextOne)
{
    Helper& app = Start([] { Listen("switch", "s"), Listen("sensorStateChange", "e"); });
    Helper& service = Start([] { Service::Serve(); });
    service.Await("sensorStateChange switch", [] { return Service::ShowHeld(); });
    app.Expect("0 right", GetActive);
    KillDaemon();
    ExpectRemoval(app);
    const std::string address = std::exchange(busAddress_, "");
    Helper& lone = Start();
    busAddress_ = "unix:path=/nowhere/bus";
    Helper& lost = Start();
    for (Helper* helper : {&app, &lone, &lost}) {
        helper->Expect("0", GetActive);
        helper->Expect("0", [] { return NotifyPower(1); });
        helper->Expect("0", [] { return Listen("location", "c"), Unlisten("location", "c"); });
        helper->Expect("-1", [] { return Unlisten("location", "c"); });
    }
    StartDaemon();
    service.Await("location sensorStateChange switch", [] { return Service::ShowHeld(); });
    app.Expect("0 right", GetActive);
    service.Expect("0", [] { return Service::CallAll(0, "switch"); });
    app.Hears({"s switch " + DATA.text});
}

TEST_F(ClientTest, AThousandListenersHearOnceAndInOrder)
{
    Helper& app = Start([] { ListenAsMany(1000); });
    Helper& service = Start([] { Service::Serve(); });
    service.Await("switch", [] { return Service::ShowHeld(); });
    service.Ask([] { Service::CallAll(); });
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
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // What threads hold that the child does not have.
    Helper& app = Start([] { Listen("switch", "s"), Listen("sensorStateChange", "e"); });
    Helper& service = Start([] { Service::Serve(); });
    service.Await("sensorStateChange switch", [] { return Service::ShowHeld(); });
    app.Ask([] { Listen("sensorStateChange", "e"); }); // Once the client is through with the news of the service.
    app.Expect("0", Fork);
    app.Hears({"child: 32 32 32"});
    service.Expect("sensorStateChange switch", [] { return Service::ShowHeld(); });
    service.Ask([] { Service::CallAll(0, "switch"); });
    app.Hears({"s switch " + DATA.text});
    app.Expect("0 right", GetActive);
    service.Kill();
    ExpectRemoval(app);
}

} // namespace
