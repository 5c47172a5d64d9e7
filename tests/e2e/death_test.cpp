// SPDX-License-Identifier: Apache-2.0
#include "peer_test.h"

namespace {

/** The caller watches the service, which has its object "x". */
struct DeathTest : PairTest {
    DeathTest()
    {
        caller_.Ask([] { Watch(100), Make("x"), Call("s", TAKE, "x"); });
        caller_.ExpectEvents({"up 100"});
    }
};

TEST_F(DeathTest, EveryRecipientIsCalledAsOftenAsItWasAdded)
{
    service_.Ask([] { Make("y"), Hold(); });
    caller_.Ask([] { Mourn("s"), Mourn("s"), Mourn("s"), Unmourn("s"), Call("s", GIVE, "y"); });
    caller_.Expect("1", [] { return Mourn("y"); });
    caller_.Expect("1", [] { return Unmourn("y"); });
    caller_.Expect("0", [] { return Unmourn("y"); });
    caller_.Expect("1", [] { return Mourn("y"); });
    caller_.Expect("0", [] { return IsDead("s"); });
    caller_.Begin([] { return Call("s", EVENT, "waits"); });
    service_.ExpectEvents({"me waits"});
    service_.Kill();
    EXPECT_EQ(caller_.Events(5), (std::vector<std::string>{"dead s", "dead s", "dead y", "done 32", "down 100"}));
    caller_.Expect("0", [] { return Mourn("s"); });
    caller_.Expect("0", [] { return Unmourn("s"); });
    caller_.Expect("0 then 32", [] { return Send("s", 1); });
    caller_.Expect("null", [] { return Find("s", 100); });
}

TEST_F(DeathTest, LastEventsComeBeforeTheNewsOfAnEndAndOfASuccessor)
{
    const auto sendLate = [this](void (*end)()) {
        caller_.Ask(Hold);
        service_.Expect("50 then 0", [] { return Send("x", 50); });
        end == nullptr ? service_.Kill() : static_cast<void>(service_.Ask(end));
    };
    for (int i = 0; i < 5; ++i) { // The process lives on, and its connections with it.
        sendLate([] { Unserve(100), Serve(100); });
        caller_.Ask(Release);
        ExpectEvents(caller_, "x", 50);
        caller_.ExpectEvents({"down 100", "up 100"});
    }
    caller_.Await("0", [] { return Find("s", 100); });
    caller_.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    Helper& successor = Start();
    caller_.Ask([] { Mourn("s"); });
    sendLate(nullptr);
    caller_.Await("1", [] { return IsDead("s"); });
    caller_.Expect("32", [] { return Call("s", REPEAT); }); // Calls do not wait for that.
    successor.Await("0", [] { return Serve(100); });
    caller_.Ask(Release);
    ExpectEvents(caller_, "x", 50);
    caller_.ExpectEvents({"dead s", "down 100", "up 100"});
}

TEST_F(DeathTest, LastEventsOfAProcessThatNobodyKnewComeBeforeTheNewsOfItsEnd)
{
    service_.Ask([] { Watch(200); });
    for (int i = 0; i < 30; ++i) {
        Start([] { Find("s", 100), Serve(200), Send("s", 1), Unserve(200); });
        EXPECT_EQ(service_.Events(2), (std::vector<std::string>{"me 0", "up 200"}));
        service_.ExpectEvents({"down 200"});
    }
}

TEST_F(DeathTest, TheNewsOfAnEndDoesNotWaitForeverForAReaderOfLastEvents)
{
    const auto sendLate = [this](Helper& service) {
        caller_.Ask(Hold);
        service.Expect("2 then 0", [] { return Send("x", 2); });
    };
    sendLate(service_);
    service_.Expect("0", [] { return Unserve(100); });
    caller_.ExpectEvents({"x 0", "down 100"});
    caller_.Ask(Release); // The other event is dropped.
    service_.Ask([] { Serve(100); });
    caller_.ExpectEvents({"up 100"});
    caller_.Ask([] { Mourn("s"); });
    sendLate(service_); // On a new connection.
    service_.Kill();
    caller_.ExpectEvents({"x 0", "dead s", "down 100"});
    caller_.Ask([] { Drop("x"), Release(); });
    caller_.Await("0", Alive);
}

} // namespace
