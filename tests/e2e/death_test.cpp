// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

namespace {

using DeathTest = BusTest;

TEST_F(DeathTest, EveryRecipientHearsOfItAsOftenAsItWasAdded)
{
    Helper& service = Start({"serve 100", "make x"});
    Helper& caller = Start({"find s 100", "mourn s", "mourn s", "mourn s", "unmourn s"});
    EXPECT_EQ(caller.Ask("call s give x"), "0 other");
    caller.Do({"mourn x", "unmourn x"});
    EXPECT_EQ(caller.Ask("unmourn x"), "refused");
    caller.Do({"mourn x"});
    EXPECT_EQ(caller.Ask("dead s"), "no");
    service.Kill();
    EXPECT_EQ(caller.Events(3), (std::vector<std::string>{"dead s", "dead s", "dead x"}));
    EXPECT_EQ(caller.Ask("mourn s"), "refused");
    EXPECT_EQ(caller.Ask("unmourn s"), "refused");
    EXPECT_EQ(caller.Ask("call s echo hello"), "32");
    EXPECT_EQ(caller.Ask("send s 1"), "0 then 32");
    EXPECT_EQ(caller.Ask("find s 100"), "null");
}

TEST_F(DeathTest, LastEventsComeBeforeTheNewsOfADeathAndOfASuccessor)
{
    Helper& service = Start({"serve 100"});
    Helper& successor = Start();
    Helper& caller = Start({"find s 100", "watch 100", "mourn s", "make x"});
    Helper& other = Start({"find s 100", "make y"});
    caller.Hears({"up 100"});
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(other.Ask("call s take y"), "0 remote");
    const auto dieUnheard = [](Helper& sender, const std::string& events, Helper& receiver, const std::string& name) {
        receiver.Do({"hold"});
        EXPECT_EQ(sender.Ask(events), "50 then 0");
        sender.Kill();
        receiver.AskUntil("yes", "dead " + name);
    };
    const auto hearAll = [](Helper& receiver, const std::string& object) {
        receiver.Do({"release"});
        for (int i = 0; i < 50; ++i) {
            ASSERT_EQ(receiver.Event(), object + " " + std::to_string(i));
        }
    };
    service.Do({"mourn y"});
    dieUnheard(other, "send s 50", service, "y");
    hearAll(service, "me");
    service.Hears({"dead y"});
    dieUnheard(service, "send x 50", caller, "s");
    EXPECT_EQ(caller.Ask("call s echo hello"), "32"); // Calls do not wait for that.
    successor.AskUntil("0", "serve 100");
    hearAll(caller, "x");
    caller.Hears({"dead s", "down 100", "up 100"});
}

TEST_F(DeathTest, TheNewsOfADeathDoesNotWaitForeverForAReaderOfLastEvents)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100", "mourn s", "watch 100", "make x"});
    caller.Hears({"up 100"});
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    caller.Do({"hold"});
    EXPECT_EQ(service.Ask("send x 2"), "2 then 0");
    service.Kill();
    caller.Hears({"dead s", "down 100"});
    caller.Do({"release"});
    caller.Hears({"x 0"}); // It was under way. The other one is dropped.
    caller.Do({"drop x"});
    caller.AskUntil("1", "alive");
    EXPECT_EQ(caller.Ask("send me 1"), "1 then 0");
    caller.Hears({"me 0"});
}

TEST_F(DeathTest, DeathsWhoseLastWordsTakeTooLongAreAllTold)
{
    Helper& service = Start({"serve 100", "hold"});
    Helper* dying[] = {&Start({"find s 100", "make a"}), &Start({"find s 100", "make b"})};
    EXPECT_EQ(dying[0]->Ask("call s take a"), "0 remote");
    EXPECT_EQ(dying[1]->Ask("call s take b"), "0 remote");
    service.Do({"mourn a", "mourn b"});
    for (Helper* caller : dying) {
        caller->Do({"background call s wait long"});
        service.Hears({"waiting"}); // Is being served, and stays so.
    }
    for (Helper* caller : dying) {
        caller->Kill();
    }
    EXPECT_EQ(service.Events(2), (std::vector<std::string>{"dead a", "dead b"}));
    service.Do({"release"});
}

TEST_F(DeathTest, WithoutTheBusEverybodyIsDeadForGood)
{
    Helper& service = Start({"serve 100", "watch 100"});
    Helper& caller = Start({"find s 100", "mourn s", "watch 100"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    caller.Hears({"up 100"});
    service.Hears({"up 100"});
    service.Do({"hold"});
    caller.Do({"background call s wait long"});
    service.Hears({"waiting"});
    daemon_->Kill();
    EXPECT_EQ(caller.Events(3), (std::vector<std::string>{"dead s", "done 32", "down 100"}));
    service.Hears({"down 100"});
    service.Do({"release"});
    for (Helper* helper : {&service, &caller}) {
        EXPECT_EQ(helper->Ask("find s 100"), "no manager");
    }
    EXPECT_EQ(caller.Ask("call s echo hello"), "32");
}

} // namespace
