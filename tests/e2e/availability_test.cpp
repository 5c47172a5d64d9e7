// SPDX-License-Identifier: Apache-2.0
#include "peer_test.h"

namespace {

using AvailabilityTest = PeerTest;

TEST_F(AvailabilityTest, EverySubscriberIsNotifiedOfEveryChangeAndFindsTheNextServiceAfterTheFormerOnesEnd)
{
    Helper& watcher = Start([] { Watch(100), Watch(100, "too"); });
    Helper& service = Start([] { Watch(100), Serve(100), Unserve(100), Serve(100); });
    service.ExpectEvents({"up 100", "down 100", "up 100"});
    watcher.ExpectEvents({"up 100", "up 100too", "down 100", "down 100too", "up 100", "up 100too"});
    watcher.Ask(Hold);
    service.Kill();
    watcher.ExpectEvents({"down 100"}); // One of its two notices is under way.
    Start([] { Serve(100), Watch(100); }).ExpectEvents({"up 100"});
    watcher.Expect("null", [] { return Find("s", 100); });
    watcher.Ask(Release);
    watcher.ExpectEvents({"down 100too", "up 100", "up 100too"});
    watcher.Expect("0", [] { return Find("s", 100); });
}

TEST_F(AvailabilityTest, NothingIsAnnouncedAfterUnsubscribing)
{
    Helper& watcher = Start([] { Watch(100), Watch(100, "once"), Watch(200); });
    Helper& service = Start([] { Serve(100); });
    watcher.ExpectEvents({"up 100", "up 100once"}); // Unsubscribes in there.
    watcher.Expect("0", [] { return Unwatch(100); });
    watcher.Expect("0", [] { return Unwatch(100); });
    service.Ask([] { Unserve(100), Serve(100), Serve(200); });
    watcher.ExpectEvents({"up 200"});
    watcher.Ask([] { Watch(100); }); // Notified at once, though it is subscribed already.
    watcher.ExpectEvents({"up 100"});
    watcher.Ask(Hold);
    service.Ask([] { Unserve(200); });
    watcher.ExpectEvents({"down 200"}); // This notice is still under way.
    service.Ask([] { Unserve(100); });
    watcher.Expect("null", [] { return Find("s", 300); }); // By now its removal waits to be announced.
    watcher.Ask([] { Unwatch(100), Watch(100), Release(); });
    service.Ask([] { Serve(200); });
    watcher.ExpectEvents({"up 200"});
}

TEST_F(AvailabilityTest, AServiceIsOfOneProcessAtATime)
{
    Helper& service = Start([] { Serve(100), Serve(100); });
    Helper& rival = Start();
    Helper& caller = Start([] { Find("s", 100), Make("x"); });
    rival.Expect("1", [] { return Serve(100); });
    rival.Expect("22", [] { return Unserve(100); });
    rival.Expect("3", [] { return Manager()->AddSystemAbility(100, nullptr); });
    rival.Expect("0", [] { return Find("s", 100); });
    rival.Expect("0 remote", [] { return Call("s", TAKE, "me"); }); // It is the other's.
    service.Ask([] { Unserve(100); });
    caller.Expect("null", [] { return Find("s", 100); });
    rival.Expect("0", [] { return Serve(100); });
    caller.Expect("0", [] { return Find("s", 100); });
    caller.Expect("0 remote", [] { return Call("s", TAKE, "x"); });
    rival.Expect("0 hello", [] { return Call("x", REPEAT, "hello"); });
}

TEST_F(AvailabilityTest, WithoutABusAProcessHasItsOwnServicesAndWithAMalformedAddressNone)
{
    busAddress_.clear();
    Helper& lone = Start([] { Watch(100), Serve(100), Find("s", 100); });
    lone.ExpectEvents({"up 100"});
    lone.Expect("0 same", [] { return Call("s", TAKE, "me"); });
    lone.Expect("0", [] { return Mourn("s"); });
    lone.Expect("0", [] {
        if (fork() == 0) {
            _exit(Manager() == nullptr ? 0 : 1); // Nothing works in the child.
        }
        int status = 1;
        return wait(&status), status;
    });
    lone.Ask([] { Unserve(100); });
    lone.ExpectEvents({"down 100"});
    lone.Expect("null", [] { return Find("s", 100); });
    for (const char* address : {"unix:", "unix:path=", "unixexec:path=/bin/true", "tcp:host=localhost,port=1",
             "unix:path=/nowhere;unix:path=/bus"}) {
        busAddress_ = address;
        Start().Expect("no manager", [] { return Find("s", 100); });
    }
}

TEST_F(AvailabilityTest, ABusThatComesLateEndsAndComesBackIsJoined)
{
    KillDaemon();
    Helper& service = Start([] { Watch(100), Watch(200); });
    Helper& caller = Start([] { Watch(100); });
    caller.Expect("null", [] { return Find("s", 100); });
    service.Expect("32", [] { return Serve(100); });
    StartDaemon();
    Start([] { Serve(200); });
    service.ExpectEvents({"up 200"}); // It has joined.
    service.Ask([] { Unwatch(200), Serve(100); });
    for (int i = 0; i < 2; ++i) {
        caller.ExpectEvents({"up 100"}); // The second time the service has registered itself.
        service.ExpectEvents({"up 100"});
        caller.Await("0", [] { return Find("s", 100); });
        caller.Expect("1", [] { return Mourn("s"); });
        service.Ask(Hold);
        caller.Begin([] { return Call("s", EVENT, "waits"); });
        service.ExpectEvents({"me waits"});
        KillDaemon();
        EXPECT_EQ(caller.Events(3), (std::vector<std::string>{"dead s", "done 32", "down 100"}));
        service.ExpectEvents({"down 100"});
        service.Ask(Release);
        for (Helper* helper : {&service, &caller}) {
            helper->Expect("null", [] { return Find("s", 100); });
        }
        StartDaemon();
    }
    service.ExpectEvents({"up 100"});
    service.Signal(SIGSTOP);
    KillDaemon();
    StartDaemon();
    Start([] { Serve(100), Make("x"); }); // Takes its place.
    service.Signal(SIGCONT);
    service.ExpectEvents({"down 100", "up 100"});
    service.Expect("0", [] { return Find("s", 100); });
    service.Expect("0 other", [] { return Call("s", GIVE, "x"); });
}

TEST_F(AvailabilityTest, AnUnreachableBusCostsEveryThreadItsWaitOnce)
{
    daemon_->Signal(SIGSTOP);
    const auto begin = Clock::now();
    Helper& app = Start();
    for (int i = 0; i < 6; ++i) {
        app.Begin([] { return Find("s", 100); });
    }
    EXPECT_EQ(app.Events(6), std::vector<std::string>(6, "done null"));
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(15)); // 8 for all.
    const auto later = Clock::now();
    app.Expect("null", [] { return Find("s", 100); }); // Nobody waits for the next try.
    EXPECT_LT(Clock::now() - later, std::chrono::seconds(4));
    daemon_->Signal(SIGCONT);
    Start([] { Serve(100); });
    app.Await("0", [] { return Find("s", 100); });
}

} // namespace
