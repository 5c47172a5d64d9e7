// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <utility>

#include "bus_test.h"

namespace {

using CallTest = BusTest;

std::string Identity(const Helper& helper)
{
    return std::to_string(helper.Pid()) + "/" + std::to_string(getuid());
}

std::string Times(size_t count, const std::string& event)
{
    std::string all = event;
    for (size_t i = 1; i < count; ++i) {
        all += ", " + event;
    }
    return all;
}

TEST_F(CallTest, ACallGoesThereAndBack)
{
    Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("size s 204800"), "0"); // A parcel at its first capacity.
    EXPECT_EQ(caller.Ask("size s 1048576"), "90");
    EXPECT_EQ(caller.Ask("call s echo again"), "0 again");
}

TEST_F(CallTest, EachSideSeesTheOtherDuringACallOnly)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    const std::string other = Identity(caller);
    EXPECT_EQ(caller.Ask("call s callback me"), "0 " + other + " 0 " + Identity(service) + " " + other);
    EXPECT_EQ(caller.Ask("who"), other);
    EXPECT_EQ(service.Ask("who"), Identity(service));
}

TEST_F(CallTest, TheTargetsErrorIsTheCallers)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("call s fail 7"), "7");
    EXPECT_EQ(caller.Ask("call s fail -1"), "-1");
    EXPECT_EQ(caller.Ask("call s unknown"), "305");
    EXPECT_EQ(service.Ask("unserve 100"), "0");
    EXPECT_EQ(caller.Ask("call s echo hello"), "111");
}

TEST_F(CallTest, AReplyThatComesTooLateIsNobodys)
{
    Helper& service = Start({"serve 100", "hold"});
    Helper& caller = Start({"find s 100", "patience 1"});
    EXPECT_EQ(caller.Ask("call s wait first"), "110");
    EXPECT_EQ(service.Event(), "waiting");
    EXPECT_EQ(service.Ask("release"), "0");
    EXPECT_EQ(caller.Ask("patience 8"), "0");
    EXPECT_EQ(caller.Ask("hammer s 2 100"), "0 wrong, 0 failed");
}

TEST_F(CallTest, ACallReturnsWhenThePeerIsKilled)
{
    Helper& service = Start({"serve 100", "hold"});
    Helper& caller = Start({"find s 100", "patience 600", "background call s wait long"});
    EXPECT_EQ(service.Event(), "waiting");
    service.Signal(SIGSTOP);
    Helper& other = Start({"find s 100", "patience 600", "background call s echo hello"}); // Connects in vain.
    EXPECT_EQ(other.Ask("find s 100"), "0");
    service.Kill();
    EXPECT_EQ(caller.Event(), "done 32");
    EXPECT_EQ(other.Event(), "done 32");
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
    EXPECT_EQ(service.Events(31), Times(31, "waiting"));
    EXPECT_EQ(service.Ask("release"), "0");
    EXPECT_EQ(caller.Events(40), Times(40, "done 0 long"));
}

TEST_F(CallTest, AReceiverThatDoesNotReadHoldsNobodyUpAndLosesNothing)
{
    Helper& service = Start({"serve 100", "make x"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("call s give x"), "0 other");
    EXPECT_EQ(service.Ask("drop x"), "0");
    EXPECT_EQ(caller.Ask("send s 1"), "1 then 0");
    EXPECT_EQ(service.Event(), "me 0");
    service.Signal(SIGSTOP);
    const std::string sent = caller.Ask("send s 100000");
    EXPECT_EQ(sent.substr(sent.find(' ')), " then 105");
    EXPECT_EQ(caller.Ask("drop x"), "0"); // Its release has to wait.
    service.Signal(SIGCONT);
    for (int i = 0; i < std::stoi(sent); ++i) {
        ASSERT_EQ(service.Event(), "me " + std::to_string(i));
    }
    service.AskUntil("1", "alive");
    EXPECT_EQ(caller.Ask("send s 1"), "1 then 0");
    EXPECT_EQ(service.Event(), "me 0");
}

TEST_F(CallTest, AProcessEndsWellWithCallsStillComingIn)
{
    Helper& service = Start({"serve 100"});
    Helper* callers[] = {&Start(), &Start(), &Start()};
    for (Helper* caller : callers) {
        EXPECT_EQ(caller->Ask("find s 100"), "0");
        EXPECT_EQ(caller->Ask("background hammer s 8 100000000"), "0");
        EXPECT_EQ(caller->Event(), "begun");
    }
    service.EndInput();
    EXPECT_EQ(service.AwaitEnd(), 0);
    for (Helper* caller : callers) {
        EXPECT_EQ(caller->Event(), "done 0 wrong, 8 failed");
    }
}

TEST_F(CallTest, NothingWorksInTheChildOfAForkAndAllGoesOnInTheParent)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"serve 200", "find s 100", "mourn s"});
    EXPECT_EQ(service.Ask("find c 200"), "0");
    EXPECT_EQ(service.Ask("call c echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    EXPECT_EQ(service.Ask("fork c"), "0");
    EXPECT_EQ(service.Event(), "child: no manager, 32, 32");
    EXPECT_EQ(service.Ask("call c echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    service.Kill(); // The child lives on.
    EXPECT_EQ(caller.Event(), "dead s");
    EXPECT_EQ(caller.Ask("call s echo hello"), "32");
}

TEST_F(CallTest, WithoutADescriptorAConnectionFailsAndNothingElse)
{
    Helper& service = Start({"serve 100"});
    Start({"serve 200"});
    Helper& caller = Start({"find s 100", "find other 200"});
    EXPECT_EQ(caller.Ask("call other echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("exhaust"), "0");
    EXPECT_EQ(caller.Ask("call s echo hello"), "24");
    EXPECT_EQ(caller.Ask("send s 1"), "0 then 24");
    EXPECT_EQ(caller.Ask("find s 100"), "0");
    EXPECT_EQ(caller.Ask("restore"), "0");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    EXPECT_EQ(caller.Ask("exhaust"), "0");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello"); // There is a connection now.
    EXPECT_EQ(caller.Ask("restore"), "0");
    EXPECT_EQ(service.Ask("exhaust"), "0");
    Helper& stranger = Start({"find s 100"});
    EXPECT_EQ(stranger.Ask("call s echo hello"), "111");
    EXPECT_EQ(service.Ask("restore"), "0");
    EXPECT_EQ(stranger.Ask("call s echo hello"), "0 hello");
}

TEST_F(CallTest, AConnectionThatComesTooLateAndFindsNoDescriptorDoesNoHarm)
{
    Helper& service = Start({"serve 100"});
    Helper& caller = Start({"find s 100", "patience 1", "watch 100"});
    EXPECT_EQ(caller.Event(), "up 100");
    service.Signal(SIGSTOP);
    EXPECT_EQ(caller.Ask("call s echo hello"), "110");
    EXPECT_EQ(caller.Ask("exhaust"), "0");
    service.Signal(SIGCONT);
    EXPECT_EQ(service.Ask("unserve 100"), "0");
    EXPECT_EQ(caller.Event(), "down 100");
    EXPECT_EQ(service.Ask("serve 100"), "0");
    EXPECT_EQ(caller.Event(), "up 100"); // The bus is still there.
    EXPECT_EQ(caller.Ask("restore"), "0");
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
}

TEST_F(CallTest, AMessageIsWhatItIsOnTheWire)
{
    Start({"serve 100", "make x"});
    Helper& caller = Start({"find s 100"});
    EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello"); // Connects.
    // Kind, code, flags, number of handles; object, size of the data, 0; the data.
    EXPECT_EQ(caller.Ask("raw 01000000 01000000 00000000 00000000 64000000 00000000 0c000000 00000000 "
                         "05000000 68656c6c 6f000000"),
        "02000000 00000000 00000000 00000000 00000000 00000000 0c000000 00000000 05000000 68656c6c 6f000000");
    // An object is a handle (owner, position, id) and 24 bytes of data.
    EXPECT_EQ(caller.Ask("raw 01000000 05000000 00000000 00000000 64000000 00000000 08000000 00000000 "
                         "01000000 78000000"),
        "02000000 00000000 00000000 01000000 00000000 00000000 20000000 00000000 "
        "00000000 08000000 00000001 00000000 "
        "01000000 78000000 00000000 00000000 00000000 00000000 00000000 00000000");
    // An object that there is not, called or carried.
    const std::string refused = "02000000 6f000000 00000000 00000000 00000000 00000000 00000000 00000000";
    EXPECT_EQ(caller.Ask("raw 01000000 01000000 00000000 00000000 65000000 00000000 00000000 00000000"), refused);
    EXPECT_EQ(caller.Ask("raw 01000000 01000000 00000000 01000000 64000000 00000000 18000000 00000000 "
                         "01000000000000000100000100000000 000000000000000000000000000000000000000000000000"),
        refused);
}

TEST_F(CallTest, ABadMessageEndsItsConnectionOnly)
{
    Start({"serve 100"});
    Helper& caller = Start({"find s 100"});
    const auto expectEnd = [&](const std::string& packet) {
        EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello"); // Connects anew.
        EXPECT_EQ(caller.Ask("raw " + packet), "closed") << packet;
    };
    for (const char* packet : {
             "01000000 01000000 00000000 00000000 64000000 00000000 00000000 000000",            // Cut.
             "00000000 01000000 00000000 00000000 64000000 00000000 00000000 00000000",          // No kind.
             "04000000 01000000 00000000 00000000 64000000 00000000 00000000 00000000",          // Nor this.
             "02000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000",          // A reply to nothing.
             "01000000 01000000 02000000 00000000 64000000 00000000 00000000 00000000",          // No flag.
             "01000000 01000000 00000000 00000000 64000000 00000000 00000000 01000000",          // Not 0.
             "01000000 01000000 00000000 00000000 64000000 00000000 04000000 00000000",          // Less than it says.
             "01000000 01000000 00000000 00000000 64000000 00000000 00000000 00000000 00000000", // And more.
             "01000000 01000000 00000000 ffffffff 64000000 00000000 10000000 00000000",          // Sizes that overflow.
             "01000000 01000000 00000000 00000000 64000000 00000000 00000000 00000000 fd",       // A descriptor.
         }) {
        expectEnd(packet);
    }
    const std::string data(96, '0');
    for (const auto& [count, handles] : std::initializer_list<std::pair<const char*, const char*>>{
             {"01000000", "02000000 00000000 00000001 00000000"}, // Nobody's.
             {"01000000", "00000000 1c000000 00000001 00000000"}, // Beyond the data.
             {"01000000", "00000000 02000000 00000001 00000000"}, // Between items.
             {"02000000", "00000000 00000000 00000001 00000000 00000000 14000000 00000001 00000000"}, // Overlapping.
         }) {
        const char* object = " 64000000 00000000 30000000 00000000 ";
        expectEnd(std::string("01000000 01000000 00000000 ").append(count).append(object).append(handles).append(data));
    }
}

} // namespace
