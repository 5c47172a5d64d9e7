// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

namespace {

using ObjectTest = BusTest;

TEST_F(ObjectTest, AnObjectIsOnePointerHoweverItCame)
{
    Helper& service = Start({"serve 100", "make y"});
    Helper& caller = Start({"find s 100", "make x"});
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(caller.Ask("call s take x"), "0 same");
    EXPECT_EQ(caller.Ask("call s give x"), "0 same"); // It comes home.
    EXPECT_EQ(caller.Ask("call s give y"), "0 other");
    EXPECT_EQ(caller.Ask("call s give y"), "0 same");
    EXPECT_EQ(caller.Ask("call s take y"), "0 same");
    EXPECT_EQ(service.Ask("call y echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("find me 100"), "0");
    EXPECT_EQ(caller.Ask("call s give me"), "0 same"); // The service itself, found and handed over.
}

TEST_F(ObjectTest, AnObjectLivesAsLongAsAPeerHoldsIt)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    const auto handOver = [&] {
        EXPECT_EQ(caller.Ask("make x"), "0");
        EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
        EXPECT_EQ(caller.Ask("call s take x"), "0 same");
        EXPECT_EQ(caller.Ask("drop x"), "0");
        EXPECT_EQ(caller.Ask("alive"), "2");
    };
    handOver();
    EXPECT_EQ(service.Ask("drop x"), "0"); // Told by the bus.
    caller.AskUntil("1", "alive");
    handOver();
    EXPECT_EQ(service.Ask("send x 1"), "1 then 0"); // Behind which its release is told.
    EXPECT_EQ(service.Ask("drop x"), "0");
    EXPECT_EQ(caller.Event(), "x 0");
    caller.AskUntil("1", "alive");
    handOver();
    service.Kill();
    caller.AskUntil("1", "alive");
}

TEST_F(ObjectTest, AnObjectIsHandedOnByItsOwnerOnly)
{
    Start({"serve 100", "make x"});
    Helper& middle = Start({"serve 200", "find s 100"});
    Helper& caller = Start({"find s 100", "find m 200"});
    EXPECT_EQ(middle.Ask("call s give x"), "0 other");
    EXPECT_EQ(caller.Ask("call m take s"), "125");
    EXPECT_EQ(caller.Ask("call m give x"), "22"); // It could not be written into the reply.
    EXPECT_EQ(middle.Ask("call x echo hello"), "0 hello");
}

} // namespace
