// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

namespace {

using AvailabilityTest = BusTest;

TEST_F(AvailabilityTest, EverySubscriberHearsOfEveryChange)
{
    Helper& early = Start({"watch 100", "watch 100 too"});
    Helper& service = Start({"watch 100"});
    EXPECT_EQ(service.Ask("serve 100"), "0");
    Helper& late = Start({"watch 100"});
    const auto expect = [&](const std::string& change) {
        EXPECT_EQ(early.Event(), change);
        EXPECT_EQ(early.Event(), change + "too");
        EXPECT_EQ(late.Event(), change);
    };
    expect("up 100");
    EXPECT_EQ(service.Event(), "up 100");
    EXPECT_EQ(service.Ask("unserve 100"), "0");
    expect("down 100");
    EXPECT_EQ(service.Event(), "down 100");
    EXPECT_EQ(service.Ask("serve 100"), "0");
    expect("up 100");
    service.Kill();
    expect("down 100");
    Start({"serve 100"});
    expect("up 100");
}

TEST_F(AvailabilityTest, TheNextServiceIsFoundWhenTheFormerOnesEndIsTold)
{
    Helper& service = Start({"serve 100"});
    Helper& watcher = Start({"hold", "watch 100"});
    EXPECT_EQ(watcher.Event(), "up 100"); // Is told, and not yet heard out.
    service.Kill();
    Start({"serve 100"});
    EXPECT_EQ(watcher.Ask("find s 100"), "null");
    EXPECT_EQ(Start().Ask("find s 100"), "0"); // Who does not watch has nothing to wait for.
    EXPECT_EQ(watcher.Ask("release"), "0");
    EXPECT_EQ(watcher.Event(), "down 100");
    EXPECT_EQ(watcher.Event(), "up 100");
    EXPECT_EQ(watcher.Ask("find s 100"), "0");
}

TEST_F(AvailabilityTest, NothingIsToldAfterUnsubscribing)
{
    Helper& watcher = Start({"watch 100", "watch 100 once", "watch 200"});
    Helper& service = Start({"serve 100"});
    EXPECT_EQ(watcher.Event(), "up 100");
    EXPECT_EQ(watcher.Event(), "up 100once"); // Unsubscribes in there.
    EXPECT_EQ(watcher.Ask("unwatch 100"), "0");
    EXPECT_EQ(watcher.Ask("unwatch 100"), "22");
    EXPECT_EQ(service.Ask("unserve 100"), "0");
    EXPECT_EQ(service.Ask("serve 100"), "0");
    EXPECT_EQ(service.Ask("serve 200"), "0");
    EXPECT_EQ(watcher.Event(), "up 200");
    EXPECT_EQ(watcher.Ask("watch 100"), "0"); // Told at once, though it knows.
    EXPECT_EQ(watcher.Event(), "up 100");
}

TEST_F(AvailabilityTest, AServiceIsOfOneProcessAtATime)
{
    Helper& service = Start({"serve 100", "serve 100"});
    Helper& rival = Start();
    Helper& caller = Start({"find s 100", "make x"});
    EXPECT_EQ(rival.Ask("serve 100"), "111");
    EXPECT_EQ(rival.Ask("unserve 100"), "22");
    EXPECT_EQ(rival.Ask("find s 100"), "0");
    EXPECT_EQ(rival.Ask("call s take me"), "0 remote"); // It is the other's.
    EXPECT_EQ(service.Ask("unserve 100"), "0");
    EXPECT_EQ(caller.Ask("find s 100"), "null");
    EXPECT_EQ(rival.Ask("serve 100"), "0");
    EXPECT_EQ(caller.Ask("find s 100"), "0");
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(rival.Ask("call x echo hello"), "0 hello");
}

TEST_F(AvailabilityTest, ThereIsNoManagerWhereTheBusCannotBeReached)
{
    busAddress_ = "unix:path=/nowhere/bus";
    EXPECT_EQ(Start().Ask("manager"), "null");
}

TEST_F(AvailabilityTest, WithoutABusAProcessHasItsOwnServices)
{
    busAddress_.clear();
    Helper& lone = Start({"watch 100", "serve 100", "watch 100 too", "find s 100"});
    EXPECT_EQ(lone.Event(), "up 100");
    EXPECT_EQ(lone.Event(), "up 100too");
    EXPECT_EQ(lone.Ask("call s take me"), "0 same");
    EXPECT_EQ(lone.Ask("call s who"), "0 " + lone.Ask("who"));
    EXPECT_EQ(lone.Ask("mourn s"), "refused");
    EXPECT_EQ(lone.Ask("unserve 100"), "0");
    EXPECT_EQ(lone.Event(), "down 100");
    EXPECT_EQ(lone.Event(), "down 100too");
    EXPECT_EQ(lone.Ask("find s 100"), "null");
}

} // namespace
