// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <filesystem>
#include <numeric>
#include <utility>

#include "bus_test.h"

namespace {

using CallTest = BusTest;

std::string Identity(const Helper& helper)
{
    return std::to_string(helper.Pid()) + "/" + std::to_string(getuid());
}

TEST_F(CallTest, ACallBringsBackTheAnswerOrTheError)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    caller.Do({"size s 204800"}); // A parcel at its first capacity.
    EXPECT_EQ(caller.Ask("size s 1048576"), "90");
    const std::string other = Identity(caller);
    EXPECT_EQ(caller.Ask("call s callback me"), "0 " + other + " 0 " + Identity(service) + " " + other);
    EXPECT_EQ(caller.Ask("who"), other); // Nobody is calling any more.
    EXPECT_EQ(service.Ask("who"), Identity(service));
    EXPECT_EQ(caller.Ask("call s fail 7"), "7");
    EXPECT_EQ(caller.Ask("call s fail -1"), "-1");
    EXPECT_EQ(caller.Ask("call s unknown"), "305");
    service.Do({"unserve 100"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "111");
}

TEST_F(CallTest, AnObjectIsOnePointerHoweverItCame)
{
    Helper& service = Start({"serve 100", "make y"});
    Helper& caller = Start({"find s 100", "find me 100", "make x"});
    for (const auto& [command, answer] : std::initializer_list<std::pair<std::string, std::string>>{
             {"take x", "0 remote"}, {"take x", "0 same"}, {"give x", "0 same"}, // It comes home.
             {"give y", "0 other"}, {"give y", "0 same"}, {"take y", "0 same"},
             {"give me", "0 same"}}) { // The service itself, found and handed over.
        EXPECT_EQ(caller.Ask("call s " + command), answer) << command;
    }
    EXPECT_EQ(service.Ask("call y echo hello"), "0 hello");
}

TEST_F(CallTest, AnObjectLivesAsLongAsAPeerHoldsIt)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    const auto handOver = [&] {
        caller.Do({"make x"});
        EXPECT_EQ(caller.Ask("call s take x"), "0 remote");
        EXPECT_EQ(caller.Ask("call s take x"), "0 same");
        caller.Do({"drop x"});
        EXPECT_EQ(caller.Ask("alive"), "2");
    };
    handOver();
    service.Do({"drop x"}); // Told by the bus.
    caller.AskUntil("1", "alive");
    handOver();
    EXPECT_EQ(service.Ask("send x 1"), "1 then 0"); // Behind which its release is told.
    service.Do({"drop x"});
    caller.Hears({"x 0"});
    caller.AskUntil("1", "alive");
    handOver();
    service.Kill();
    caller.AskUntil("1", "alive");
}

TEST_F(CallTest, AnObjectIsHandedOnByItsOwnerOnly)
{
    Start({"serve 100", "make x"});
    Helper& middle = Start({"serve 200", "find s 100"});
    Helper& caller = Start({"find s 100", "find m 200"});
    EXPECT_EQ(middle.Ask("call s give x"), "0 other");
    EXPECT_EQ(caller.Ask("call m take s"), "125");
    EXPECT_EQ(caller.Ask("call m give x"), "22"); // It could not be written into the reply.
    EXPECT_EQ(middle.Ask("call x echo hello"), "0 hello");
}

TEST_F(CallTest, ACallReturnsWhenThePeerIsKilledBeforeItConnects)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100", "patience 600"});
    service.Signal(SIGSTOP);
    caller.Do({"background call s echo hello", "find s 100"});
    service.Kill();
    caller.Hears({"done 32"});
}

TEST_F(CallTest, ManyThreadsShareOneProxyAndHandObjectsOver)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("hammer s 100 2"), "0 wrong, 0 failed"); // All connect at once.
    EXPECT_EQ(caller.Ask("hammer s 48 20"), "0 wrong, 0 failed");
    caller.AskUntil("1", "alive");
    EXPECT_EQ(service.Ask("alive"), "1");
}

TEST_F(CallTest, CallsBeyondThePeersConnectionsWaitForOne)
{
    Helper& service = Start({"serve 100", "hold"});
    Helper& caller = Start({"find s 100"});
    for (int i = 0; i < 40; ++i) {
        ASSERT_EQ(caller.Ask("background call s wait long"), "0");
    }
    EXPECT_EQ(service.Events(31), std::vector<std::string>(31, "waiting"));
    service.Do({"release"});
    EXPECT_EQ(caller.Events(40), std::vector<std::string>(40, "done 0 long"));
}

TEST_F(CallTest, ASlowReceiverHoldsNobodyUpAndGetsInOrderWhatWasTaken)
{
    Helper& service = Start({"serve 100", "make x"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("call s give x"), "0 other");
    service.Do({"drop x"});
    std::vector<int> taken;
    for (const char* reader :
        {"hold", "hold", "hold", "hold", "release", "hold", "release", "release", "hold", "hold"}) {
        service.Do({reader});
        const std::string sent = caller.Ask("send s 1000"); // Each is taken, or refused and not sent again.
        EXPECT_TRUE(sent == "1000 then 0" || sent.substr(sent.find(' ')) == " then 105") << sent;
        taken.push_back(std::stoi(sent));
    }
    EXPECT_LT(std::accumulate(taken.begin(), taken.end(), 0), 10000); // Some were too many.
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    caller.Do({"drop x"}); // Its release has to wait.
    service.Do({"release"});
    for (const int count : taken) {
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(service.Event(), "me " + std::to_string(i));
        }
    }
    service.AskUntil("1", "alive");
    EXPECT_EQ(caller.Ask("send s 1"), "1 then 0");
    service.Hears({"me 0"});
}

TEST_F(CallTest, NothingWorksInTheChildOfAForkAndAllGoesOnInTheParent)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"serve 200", "find s 100", "mourn s"});
    service.Do({"find c 200"});
    EXPECT_EQ(service.Ask("call c echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    service.Do({"fork c"});
    service.Hears({"child: no manager, 32, 32"});
    EXPECT_EQ(service.Ask("call c echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    service.Kill(); // The child lives on.
    caller.Hears({"dead s"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "32");
}

TEST_F(CallTest, WithoutADescriptorAConnectionFailsAndNothingElse)
{
    Helper& service = Start({"serve 100"});
    Start({"serve 200"});
    Helper& caller = Start({"find s 100", "find other 200"});
    EXPECT_EQ(caller.Ask("call other echo hello"), "0 hello");
    caller.Do({"exhaust"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "24");
    EXPECT_EQ(caller.Ask("send s 1"), "0 then 24");
    caller.Do({"find s 100", "restore"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    caller.Do({"exhaust"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello"); // There is a connection now.
    caller.Do({"restore"});
    service.Do({"exhaust"});
    Helper& stranger = Start({"find s 100"});
    EXPECT_EQ(stranger.Ask("call s echo hello"), "111");
    service.Do({"restore"});
    EXPECT_EQ(stranger.Ask("call s echo hello"), "0 hello");
}

TEST_F(CallTest, StandardErrorStaysFreeWhereItIsClosed)
{
    launcher_ = {"sh", "-c", R"(exec env "$0" "$@" 2>&-)", launcher_.at(1)};
    Helper& service = Start({"serve 100"});
    EXPECT_EQ(Start({"find s 100"}).Ask("call s callback me").substr(0, 2), "0 ");
    EXPECT_FALSE(std::filesystem::exists("/proc/" + std::to_string(service.Pid()) + "/fd/2")); // Logs go there.
}

TEST_F(CallTest, AReplyThatComesTooLateIsNobodys)
{
    Helper& service = Start({"serve 100", "hold"});
    Helper& caller = Start({"find s 100", "patience 1"});
    EXPECT_EQ(caller.Ask("call s wait first"), "110");
    service.Hears({"waiting"});
    service.Do({"release"});
    caller.Do({"patience 8"});
    EXPECT_EQ(caller.Ask("hammer s 2 100"), "0 wrong, 0 failed");
}

TEST_F(CallTest, AConnectionThatComesTooLateAndFindsNoDescriptorDoesNoHarm)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100", "patience 1", "watch 100"});
    caller.Hears({"up 100"});
    service.Signal(SIGSTOP);
    EXPECT_EQ(caller.Ask("call s echo hello"), "110");
    caller.Do({"exhaust"});
    service.Signal(SIGCONT);
    service.Do({"unserve 100"});
    caller.Hears({"down 100"});
    service.Do({"serve 100"});
    caller.Hears({"up 100"}); // The bus is still there.
    caller.Do({"restore"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
}

} // namespace
