// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

namespace {

using DeathTest = BusTest;

TEST_F(DeathTest, EveryRecipientHearsOfItAsOftenAsItWasAdded)
{
    Helper& service = Start({"serve 100", "make x"});
    Helper& caller = Start({"find s 100", "mourn s", "mourn s", "mourn s", "unmourn s"});
    EXPECT_EQ(caller.Ask("call s give x"), "0 other");
    EXPECT_EQ(caller.Ask("mourn x"), "0");
    EXPECT_EQ(caller.Ask("unmourn x"), "0");
    EXPECT_EQ(caller.Ask("unmourn x"), "refused");
    EXPECT_EQ(caller.Ask("mourn x"), "0");
    EXPECT_EQ(caller.Ask("dead s"), "no");
    service.Kill();
    EXPECT_EQ(caller.Events(3), "dead s, dead s, dead x");
    EXPECT_EQ(caller.Ask("mourn s"), "refused");
    EXPECT_EQ(caller.Ask("unmourn s"), "refused");
    EXPECT_EQ(caller.Ask("call s echo hello"), "32");
    EXPECT_EQ(caller.Ask("send s 1"), "0 then 32");
    EXPECT_EQ(caller.Ask("find s 100"), "null");
}

TEST_F(DeathTest, AServicesLastEventsComeBeforeTheNewsOfItsDeathAndOfItsSuccessor)
{
    Helper& service = Start({"serve 100"});
    Helper& successor = Start();
    Helper& caller = Start({"find s 100", "watch 100", "mourn s", "make x"});
    EXPECT_EQ(caller.Event(), "up 100");
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(caller.Ask("hold"), "0");
    EXPECT_EQ(service.Ask("send x 50"), "50 then 0");
    service.Kill();
    caller.AskUntil("yes", "dead s");
    EXPECT_EQ(caller.Ask("call s echo hello"), "32"); // Calls do not wait for that.
    successor.AskUntil("0", "serve 100");
    EXPECT_EQ(caller.Ask("release"), "0");
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(caller.Event(), "x " + std::to_string(i));
    }
    EXPECT_EQ(caller.Event(), "dead s");
    EXPECT_EQ(caller.Event(), "down 100");
    EXPECT_EQ(caller.Event(), "up 100");
}

TEST_F(DeathTest, ACallersLastEventsComeBeforeTheNewsOfItsDeath)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100", "make x"});
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(service.Ask("mourn x"), "0");
    EXPECT_EQ(service.Ask("hold"), "0");
    EXPECT_EQ(caller.Ask("send s 50"), "50 then 0");
    caller.Kill();
    service.AskUntil("yes", "dead x");
    EXPECT_EQ(service.Ask("release"), "0");
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(service.Event(), "me " + std::to_string(i));
    }
    EXPECT_EQ(service.Event(), "dead x");
}

TEST_F(DeathTest, TheNewsOfADeathDoesNotWaitForeverForAReaderOfLastEvents)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100", "mourn s", "watch 100", "make x"});
    EXPECT_EQ(caller.Event(), "up 100");
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(caller.Ask("hold"), "0");
    EXPECT_EQ(service.Ask("send x 2"), "2 then 0");
    service.Kill();
    EXPECT_EQ(caller.Event(), "dead s");
    EXPECT_EQ(caller.Event(), "down 100");
    EXPECT_EQ(caller.Ask("release"), "0");
    EXPECT_EQ(caller.Event(), "x 0"); // It was under way. The other one is dropped.
    EXPECT_EQ(caller.Ask("drop x"), "0");
    caller.AskUntil("1", "alive");
    EXPECT_EQ(caller.Ask("send me 1"), "1 then 0");
    EXPECT_EQ(caller.Event(), "me 0");
}

TEST_F(DeathTest, DeathsWhoseLastWordsTakeTooLongAreAllTold)
{
    Helper& service = Start({"serve 100", "hold"});
    Helper* dying[] = {&Start({"find s 100", "make a"}), &Start({"find s 100", "make b"})};
    EXPECT_EQ(dying[0]->Ask("call s take a"), "0 remote");
    EXPECT_EQ(dying[1]->Ask("call s take b"), "0 remote");
    EXPECT_EQ(service.Ask("mourn a"), "0");
    EXPECT_EQ(service.Ask("mourn b"), "0");
    for (Helper* caller : dying) {
        EXPECT_EQ(caller->Ask("background call s wait long"), "0");
        EXPECT_EQ(service.Event(), "waiting"); // Is being served, and stays so.
    }
    for (Helper* caller : dying) {
        caller->Kill();
    }
    EXPECT_EQ(service.Events(2), "dead a, dead b");
    EXPECT_EQ(service.Ask("release"), "0");
}

TEST_F(DeathTest, WithoutTheBusEverybodyIsDeadForGood)
{
    Helper& service = Start({"serve 100", "watch 100"});
    Helper& caller = Start({"find s 100", "mourn s", "watch 100"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    EXPECT_EQ(caller.Event(), "up 100");
    EXPECT_EQ(service.Event(), "up 100");
    EXPECT_EQ(service.Ask("hold"), "0");
    EXPECT_EQ(caller.Ask("background call s wait long"), "0");
    EXPECT_EQ(service.Event(), "waiting");
    daemon_->Kill();
    EXPECT_EQ(caller.Events(3), "dead s, done 32, down 100");
    EXPECT_EQ(service.Event(), "down 100");
    EXPECT_EQ(service.Ask("release"), "0");
    for (Helper* helper : {&service, &caller}) {
        EXPECT_EQ(helper->Ask("manager"), "null");
    }
    EXPECT_EQ(caller.Ask("call s echo hello"), "32");
    EXPECT_EQ(caller.Ask("find s 100"), "null");
}

} // namespace
