// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

namespace {

using AvailabilityTest = BusTest;

TEST_F(AvailabilityTest, EverySubscriberHearsOfEveryChange)
{
    Helper& early = Start({"watch 100", "watch 100 too"});
    Helper& service = Start({"watch 100"});
    service.Do({"serve 100"});
    Helper& late = Start({"watch 100"});
    const auto expect = [&](const std::string& change) {
        early.Hears({change, change + "too"});
        late.Hears({change});
    };
    expect("up 100");
    service.Hears({"up 100"});
    service.Do({"unserve 100"});
    expect("down 100");
    service.Hears({"down 100"});
    service.Do({"serve 100"});
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
    watcher.Hears({"up 100"}); // Is told, and not yet heard out.
    service.Kill();
    Start({"serve 100"});
    EXPECT_EQ(watcher.Ask("find s 100"), "null");
    EXPECT_EQ(Start().Ask("find s 100"), "0"); // Who does not watch has nothing to wait for.
    watcher.Do({"release"});
    watcher.Hears({"down 100", "up 100"});
    watcher.Do({"find s 100"});
}

TEST_F(AvailabilityTest, NothingIsToldAfterUnsubscribing)
{
    Helper& watcher = Start({"watch 100", "watch 100 once", "watch 200"});
    Helper& service = Start({"serve 100"});
    watcher.Hears({"up 100", "up 100once"}); // Unsubscribes in there.
    watcher.Do({"unwatch 100"});
    EXPECT_EQ(watcher.Ask("unwatch 100"), "22");
    service.Do({"unserve 100", "serve 100", "serve 200"});
    watcher.Hears({"up 200"});
    watcher.Do({"watch 100"}); // Told at once, though it knows.
    watcher.Hears({"up 100"});
    watcher.Do({"hold"});
    service.Do({"unserve 200"});
    watcher.Hears({"down 200"}); // Is being told, and not yet heard out.
    service.Do({"unserve 100"});
    EXPECT_EQ(watcher.Ask("find s 300"), "null");
    EXPECT_EQ(watcher.Ask("find s 300"), "null"); // By now the news of it waits to be told.
    watcher.Do({"unwatch 100", "watch 100", "release"});
    service.Do({"serve 200"});
    watcher.Hears({"up 200"});
}

TEST_F(AvailabilityTest, AServiceIsOfOneProcessAtATime)
{
    Helper& service = Start({"serve 100", "serve 100"});
    Helper& rival = Start();
    Helper& caller = Start({"find s 100", "make x"});
    EXPECT_EQ(rival.Ask("serve 100"), "111");
    EXPECT_EQ(rival.Ask("unserve 100"), "22");
    rival.Do({"find s 100"});
    EXPECT_EQ(rival.Ask("call s take me"), "0 remote"); // It is the other's.
    service.Do({"unserve 100"});
    EXPECT_EQ(caller.Ask("find s 100"), "null");
    rival.Do({"serve 100"});
    caller.Do({"find s 100"});
    EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
    EXPECT_EQ(rival.Ask("call x echo hello"), "0 hello");
}

TEST_F(AvailabilityTest, WithoutABusAProcessHasItsOwnServicesAndWithADeadOneNone)
{
    busAddress_.clear();
    Helper& lone = Start({"watch 100", "serve 100", "watch 100 too", "find s 100"});
    lone.Hears({"up 100", "up 100too"});
    EXPECT_EQ(lone.Ask("call s take me"), "0 same");
    EXPECT_EQ(lone.Ask("call s who"), "0 " + lone.Ask("who"));
    EXPECT_EQ(lone.Ask("mourn s"), "refused");
    lone.Do({"unserve 100"});
    lone.Hears({"down 100", "down 100too"});
    EXPECT_EQ(lone.Ask("find s 100"), "null");
    busAddress_ = "unix:path=/nowhere/bus";
    EXPECT_EQ(Start().Ask("find s 100"), "no manager");
}

} // namespace
