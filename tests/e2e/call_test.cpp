// SPDX-License-Identifier: Apache-2.0
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <filesystem>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

#include "bus_test.h"
#include "failing_new.h"
#include "peer.h"

namespace {

using namespace Peer;
using CallTest = BusTest;

std::string Identity(const Helper& helper)
{
    return std::to_string(helper.Pid()) + "/" + std::to_string(getuid());
}

// Leaves `room` descriptors free, and then `Restore` all. The limit itself is 64, or lower.
std::vector<int>& g_taken = *new std::vector<int>();

void Exhaust(size_t room, rlim_t limit)
{
    const rlimit most{64, 4096};
    setrlimit(RLIMIT_NOFILE, &most);
    for (int fd = 0; (fd = dup(STDIN_FILENO)) >= 0;) {
        g_taken.push_back(fd);
    }
    for (; room > 0; --room) {
        close(g_taken.back());
        g_taken.pop_back();
    }
    const rlimit lower{limit, 4096};
    setrlimit(RLIMIT_NOFILE, &lower);
}

void Restore()
{
    const rlimit most{4096, 4096};
    setrlimit(RLIMIT_NOFILE, &most);
    for (const int fd : std::exchange(g_taken, {})) {
        close(fd);
    }
}

TEST_F(CallTest, ACallBringsBackTheAnswerOrTheError)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100); });
    caller.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
    caller.Expect("0", [] { return CallWithSize("s", 204800); }); // A parcel at its first capacity.
    caller.Expect("90", [] { return CallWithSize("s", 1048576); });
    const std::string other = Identity(caller);
    caller.Expect("0 " + other + " 0 " + Identity(service) + " " + other, [] { return Call("s", CALL_BACK, "me"); });
    caller.Expect(other, Who); // Nobody is calling any more.
    service.Expect(Identity(service), Who);
    caller.Expect("7", [] { return Call("s", FAIL, "7"); });
    caller.Expect("-1", [] { return Call("s", FAIL, "-1"); });
    caller.Expect("0 5", [] { return Call("s", FAIL_WITH_REPLY, "5"); }); // As on a device.
    caller.Expect("305", [] { return Call("s", UNKNOWN); });
    caller.Expect("204", [] { return Call("s", static_cast<Code>(0x01000000)); });
    service.Expect("0", [] { return Unserve(100); });
    caller.Expect("111", [] { return Call("s", ECHO); });
}

TEST_F(CallTest, AnObjectIsOnePointerHoweverItCame)
{
    Helper& service = Start([] { Serve(100), Make("y"); });
    Helper& caller = Start([] { Find("s", 100), Find("me", 100), Make("x"); });
    caller.Expect("0 remote", [] { return Call("s", TAKE, "x"); });
    caller.Expect("0 same", [] { return Call("s", TAKE, "x"); });
    caller.Expect("0 same", [] { return Call("s", GIVE, "x"); }); // It comes home.
    caller.Expect("0 other", [] { return Call("s", GIVE, "y"); });
    caller.Expect("0 same", [] { return Call("s", GIVE, "y"); });
    caller.Expect("0 same", [] { return Call("s", TAKE, "y"); });
    caller.Expect("0 same", [] { return Call("s", GIVE, "me"); }); // The service itself, found and handed over.
    service.Expect("0 hello", [] { return Call("y", ECHO, "hello"); });
}

TEST_F(CallTest, AnObjectLivesAsLongAsAPeerHoldsIt)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), Make("kept"), Call("s", TAKE, "kept"); });
    const auto handOver = [&] {
        caller.Ask([] { Make("x"); });
        caller.Expect("0 remote", [] { return Call("s", TAKE, "x"); });
        caller.Expect("0 same", [] { return Call("s", TAKE, "x"); });
        caller.Ask([] { Drop("x"); });
        caller.Await("3", Alive); // With "kept", and "me", which the hammering needs.
    };
    caller.Expect("0 wrong, 0 failed", [] { return Hammer("s", 1, 1); });
    caller.Hears({"begun"});
    handOver();
    service.Ask([] { Drop("x"); });
    caller.Await("2", Alive);
    handOver();
    service.Expect("1 then 0", [] { return Send("x", 1); }); // Before its release.
    service.Ask([] { Drop("x"); });
    caller.Hears({"x 0"});
    caller.Await("2", Alive);
    handOver();
    service.Kill();
    caller.Await("2", Alive);
}

// What comes home in a reply is held nowhere else, as its last proxy there went while the reply was on its way.
TEST_F(CallTest, AnObjectComesHomeThoughItIsReleasedMeanwhile)
{
    Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), Make("x"); });
    for (int i = 0; i < 300; ++i) {
        caller.Expect("0 remote", [] { return Call("s", TAKE, "x"); });
        caller.Begin([] { return Call("s", GIVE, "x"); });
        caller.Expect("0", [] { return Call("s", DROP, "x"); });
        const std::string given = caller.Event();
        ASSERT_TRUE(given == "done 0 same" || given == "done 22") << given;
    }
}

TEST_F(CallTest, AnObjectIsHandedOnByItsOwnerOnly)
{
    Start([] { Serve(100), Make("x"); });
    Helper& middle = Start([] { Serve(200), Find("s", 100), Call("s", GIVE, "x"); });
    Helper& caller = Start([] { Find("s", 100), Find("m", 200); });
    caller.Expect("125", [] { return Call("m", TAKE, "s"); });
    caller.Expect("125", [] { return Call("m", GIVE, "x"); });
    middle.Expect("0 hello", [] { return Call("x", ECHO, "hello"); });
}

TEST_F(CallTest, ACallReturnsWhenThePeerIsKilledBeforeItKnowsOfIt)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), SetWait(600); });
    service.Signal(SIGSTOP);
    caller.Begin([] { return Call("s", ECHO); });
    caller.Ask([] { Find("s", 100); });
    service.Kill();
    caller.Hears({"done 32"});
}

TEST_F(CallTest, ManyThreadsShareOneProxyAndHandObjectsOver)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100); });
    caller.Expect("0 wrong, 0 failed", [] { return Hammer("s", 100, 2); }); // All connect at once.
    caller.Expect("0 wrong, 0 failed", [] { return Hammer("s", 48, 20); });
    caller.Await("1", Alive);
    service.Await("1", Alive);
}

TEST_F(CallTest, CallsBeyondThePeersConnectionsWaitForOne)
{
    Helper& service = Start([] { Serve(100), Hold(); });
    Helper& caller = Start([] { Find("s", 100); });
    for (int i = 0; i < 40; ++i) {
        caller.Begin([] { return Call("s", WAIT, "long"); });
    }
    EXPECT_EQ(service.Events(31), std::vector<std::string>(31, "waiting"));
    service.Ask(Release);
    EXPECT_EQ(caller.Events(40), std::vector<std::string>(40, "done 0 long"));
}

TEST_F(CallTest, ASlowReceiverHoldsNobodyUpAndGetsInOrderWhatWasTaken)
{
    Helper& service = Start([] { Serve(100), Make("x"); });
    Helper& caller = Start([] { Find("s", 100), Call("s", GIVE, "x"); });
    service.Ask([] { Drop("x"); });
    std::vector<int> taken;
    for (const bool isHeld : {true, true, true, true, false, true, false, false, true, true}) {
        service.Ask([isHeld] { isHeld ? Hold() : Release(); });
        const std::string sent = caller.Ask([] { return Send("s", 1000); }); // Each is taken, or refused for good.
        EXPECT_TRUE(sent == "1000 then 0" || sent.substr(sent.find(' ')) == " then 105") << sent;
        taken.push_back(std::stoi(sent));
    }
    EXPECT_LT(std::accumulate(taken.begin(), taken.end(), 0), 10000); // Some were too many.
    caller.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
    caller.Ask([] { Drop("x"); }); // Its release has to wait.
    service.Ask(Release);
    for (const int count : taken) {
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(service.Event(), "me " + std::to_string(i));
        }
    }
    caller.Expect("1 then 0", [] { return Send("s", 1); });
    service.Hears({"me 0"});
    service.Await("1", Alive);
}

TEST_F(CallTest, NothingWorksInTheChildOfAForkAndAllGoesOnInTheParent)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Serve(200), Find("s", 100), Mourn("s"); });
    service.Ask([] { Find("c", 200), Call("c", ECHO); });
    caller.Ask([] { Call("s", ECHO); });
    service.Ask([] {
        if (fork() == 0) {
            Tell("child: " + Find("c", 200) + ", " + Call("c", ECHO) + ", " + Send("c", 1));
            pollfd wait{STDIN_FILENO, 0, 0}; // Stays as long as there is somebody to stay for.
            poll(&wait, 1, -1);
            _exit(0);
        }
    });
    service.Hears({"child: no manager, 32, 0 then 32"});
    service.Expect("0", [] { return Call("c", ECHO).substr(0, 1); });
    caller.Expect("0", [] { return Call("s", ECHO).substr(0, 1); });
    service.Kill(); // The child lives on.
    caller.Hears({"dead s"});
    caller.Expect("32", [] { return Call("s", ECHO); });
}

TEST_F(CallTest, WithoutADescriptorAConnectionFailsAndNothingElse)
{
    Helper& service = Start([] { Serve(100); });
    Start([] { Serve(200); });
    Helper& caller = Start([] { Find("s", 100), Find("other", 200), Call("other", ECHO), Exhaust(0, 64); });
    caller.Expect("24", [] { return Call("s", ECHO); });
    caller.Expect("0 then 24", [] { return Send("s", 1); });
    caller.Expect("0", [] { return Find("s", 100); }); // The bus needs none.
    caller.Expect("0 hello", [] { return Call("other", ECHO, "hello"); });
    caller.Ask(Restore);
    caller.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
    service.Ask([] { Exhaust(0, 0); }); // Below what it uses, even for one poll.
    Helper& late = Start([] { Find("s", 100), SetWait(600); });
    const auto before = service.Ask([] { return static_cast<long>(std::clock()); });
    late.Begin([] { return Call("s", ECHO, "late"); });
    caller.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
    service.Ask([] { usleep(500'000); }); // Meanwhile nothing spins.
    const auto after = service.Ask([] { return static_cast<long>(std::clock()); });
    EXPECT_LT(std::stol(after) - std::stol(before), CLOCKS_PER_SEC / 4);
    service.Ask(Restore);
    late.Hears({"done 0 late"});
    service.Expect("0", [] { return Find("s", 100); });
}

TEST_F(CallTest, AFailedAllocationEndsTheProcessOrLeavesEverythingWorking)
{
    Start([] { Serve(100); });
    for (int nth = 1; nth <= 24; ++nth) {
        Helper caller(busAddress_);
        caller.Ask([] { Make("x"), close(STDERR_FILENO); });
        caller.Begin([nth] {
            g_failingNew = nth;
            try {
                Find("s", 100);
                Call("s", TAKE, "x");
            } catch (const std::bad_alloc&) { // The caller's own affair.
            }
            g_failingNew = 0;
            Find("s", 100);
            return Call("s", ECHO, "hello");
        });
        caller.EndInput();
        const int end = caller.AwaitEnd();
        if (end == 0) {
            EXPECT_EQ(caller.Event(), "done 0 hello") << nth;
        }
        EXPECT_TRUE(end == 0 || end == -1) << nth << ": " << end;
    }
}

TEST_F(CallTest, StandardErrorStaysFreeWhereItIsClosed)
{
    Helper& service = Start([] { close(STDERR_FILENO), Serve(100); });
    Start([] { Find("s", 100); }).Expect("0", [] { return Call("s", CALL_BACK, "me").substr(0, 1); });
    EXPECT_FALSE(std::filesystem::exists("/proc/" + std::to_string(service.Pid()) + "/fd/2")); // Logs go there.
}

TEST_F(CallTest, AReplyThatComesTooLateIsNobodys)
{
    Helper& service = Start([] { Serve(100), Hold(); });
    Helper& caller = Start([] { Find("s", 100), SetWait(1); });
    caller.Expect("110", [] { return Call("s", WAIT, "first"); });
    service.Hears({"waiting"});
    service.Ask(Release);
    caller.Ask([] { SetWait(8); });
    caller.Expect("0 wrong, 0 failed", [] { return Hammer("s", 2, 100); });
}

TEST_F(CallTest, AnExitIsCleanWhoeverHasLoadedTheLibrary)
{
    Helper& caller = Start();
    for (int i = 0; i < 5; ++i) {
        Helper loader({LOADER, LOADED_MODULE}, busAddress_);
        caller.Await("0", [] { return Find("s", 100); });
        caller.Begin([] { // Until the very end.
            while (Call("s", EVENT) == "0") {
            }
            return "";
        });
        caller.Await("0", [] { return Call("s", EVENT); });
        loader.EndInput();
        EXPECT_EQ(loader.AwaitEnd(), 0);
        caller.Hears({"done "});
    }
}

TEST_F(CallTest, ACrashInAHandlerIsForTheProgramsOwnHandler)
{
    Helper& service = Start([] {
        std::signal(SIGSEGV, [](int) { _exit(7); });
        Serve(100);
    });
    Start([] { Find("s", 100); }).Expect("32", [] { return Call("s", CRASH); });
    EXPECT_EQ(service.AwaitEnd(), 7);
}

} // namespace
