// SPDX-License-Identifier: Apache-2.0
#include <csignal>

#include "bus_test.h"
#include "peer.h"

namespace {

using namespace Peer;
using DeathTest = BusTest;

void ExpectEvents(Helper& helper, const std::string& object, int count)
{
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(helper.Event(), object + " " + std::to_string(i));
    }
}

TEST_F(DeathTest, EveryRecipientHearsOfItAsOftenAsItWasAdded)
{
    Helper& service = Start([] { Serve(100), Make("x"); });
    Helper& caller = Start([] { Find("s", 100), Mourn("s"), Mourn("s"), Mourn("s"), Unmourn("s"); });
    caller.Expect("0 other", [] { return Call("s", GIVE, "x"); });
    caller.Expect("1", [] { return Mourn("x"); });
    caller.Expect("1", [] { return Unmourn("x"); });
    caller.Expect("0", [] { return Unmourn("x"); });
    caller.Expect("1", [] { return Mourn("x"); });
    caller.Expect("0", [] { return IsDead("s"); });
    service.Kill();
    EXPECT_EQ(caller.Events(3), (std::vector<std::string>{"dead s", "dead s", "dead x"}));
    caller.Expect("0", [] { return Mourn("s"); });
    caller.Expect("0", [] { return Unmourn("s"); });
    caller.Expect("32", [] { return Call("s", ECHO); });
    caller.Expect("0 then 32", [] { return Send("s", 1); });
    caller.Expect("null", [] { return Find("s", 100); });
}

TEST_F(DeathTest, LastEventsComeBeforeTheNewsOfADeathAndOfASuccessor)
{
    Helper& service = Start([] { Serve(100); });
    Helper& successor = Start();
    Helper& caller = Start([] { Find("s", 100), Watch(100), Mourn("s"), Make("x"), Call("s", TAKE, "x"); });
    Helper& other = Start([] { Find("s", 100), Make("y"), Call("s", TAKE, "y"); });
    caller.Hears({"up 100"});
    service.Ask([] { Mourn("y"), Hold(); });
    other.Expect("50 then 0", [] { return Send("s", 50); });
    other.Kill();
    service.Await("1", [] { return IsDead("y"); });
    service.Ask(Release);
    ExpectEvents(service, "me", 50);
    service.Hears({"dead y"});

    caller.Ask(Hold);
    service.Expect("50 then 0", [] { return Send("x", 50); });
    service.Kill();
    caller.Await("1", [] { return IsDead("s"); });
    caller.Expect("32", [] { return Call("s", ECHO); }); // Calls do not wait for that.
    successor.Await("0", [] { return Serve(100); });
    caller.Ask(Release);
    ExpectEvents(caller, "x", 50);
    caller.Hears({"dead s", "down 100", "up 100"});
}

TEST_F(DeathTest, LastEventsOfAServiceThatEndsCleanlyComeBeforeTheNewsOfItsEnd)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), Watch(100), Make("x"), Call("s", TAKE, "x"); });
    caller.Hears({"up 100"});
    for (int i = 0; i < 5; ++i) { // The process lives on, and its connections with it.
        caller.Ask(Hold);
        service.Expect("50 then 0", [] { return Send("x", 50); });
        service.Ask([] { Unserve(100), Serve(100); });
        caller.Ask(Release);
        ExpectEvents(caller, "x", 50);
        caller.Hears({"down 100", "up 100"});
    }
    service.Expect("1 then 0", [] { return Send("x", 1); });
    caller.Hears({"x 0"});
    caller.Await("0", [] { return Find("s", 100); });
    caller.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
    service.Expect("0 hello", [] { return Call("x", ECHO, "hello"); });
}

TEST_F(DeathTest, TheNewsOfAnEndDoesNotWaitForeverForAReaderOfLastEvents)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), Watch(100), Mourn("s"), Make("x"), Call("s", TAKE, "x"), Hold(); });
    caller.Hears({"up 100"});
    service.Expect("2 then 0", [] { return Send("x", 2); });
    service.Kill();
    caller.Hears({"dead s", "down 100"});
    caller.Ask(Release);
    caller.Hears({"x 0"}); // It was under way. The other one is dropped.
    caller.Ask([] { Drop("x"); });
    caller.Await("0", Alive);

    Helper& next = Start([] { Serve(100); });
    caller.Hears({"up 100"});
    caller.Ask([] { Find("s", 100), Make("x"), Call("s", TAKE, "x"), Hold(); });
    next.Expect("2 then 0", [] { return Send("x", 2); });
    next.Expect("0", [] { return Unserve(100); });
    caller.Hears({"down 100"});
    caller.Ask(Release);
    caller.Hears({"x 0"});
    next.Expect("1 then 0", [] { return Send("x", 1); }); // On a new connection.
    caller.Hears({"x 0"});
}

TEST_F(DeathTest, DeathsWhoseLastWordsTakeTooLongAreAllAnnounced)
{
    Helper& service = Start([] { Serve(100), Hold(); });
    Helper& first = Start([] { Find("s", 100), Make("a"), Call("s", TAKE, "a"); });
    Helper& second = Start([] { Find("s", 100), Make("b"), Call("s", TAKE, "b"); });
    service.Ask([] { Mourn("a"), Mourn("b"); });
    for (Helper* caller : {&first, &second}) {
        caller->Begin([] { return Call("s", WAIT); });
        service.Hears({"waiting"}); // Is being served, and stays so.
    }
    first.Kill();
    second.Kill();
    EXPECT_EQ(service.Events(2), (std::vector<std::string>{"dead a", "dead b"}));
    service.Ask(Release);
}

TEST_F(DeathTest, ARefusedConnectionProvesADeath)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), Mourn("s"); });
    daemon_->Signal(SIGSTOP); // So that it brings no news.
    service.Kill();
    caller.Expect("32", [] { return Call("s", ECHO); });
    caller.Expect("1", [] { return IsDead("s"); });
    caller.Hears({"dead s"});
    daemon_->Signal(SIGCONT);
}

} // namespace
