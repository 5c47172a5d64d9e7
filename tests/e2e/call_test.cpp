// SPDX-License-Identifier: Apache-2.0
#include <sys/resource.h>

#include <ctime>
#include <new>

#include "peer_test.h"

namespace {

// The allocation from now on that fails, whichever thread asks for it; 0 for none. Not in a sanitizer's build.
std::atomic<int> g_failingNew{0};

} // namespace

// A program's own definitions come before those of its libraries, for calls between these too. A sanitizer has its own.
// The compiler takes one that is inlined, and one that is not, for no pair.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

void* operator new(size_t size)
{
    void* const memory = g_failingNew > 0 && --g_failingNew == 0 ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }

[[gnu::noinline]] void operator delete(void* memory, size_t /* size */) noexcept { std::free(memory); }

#endif

namespace {

using CallTest = PeerTest;
using Clock = std::chrono::steady_clock;

std::string Identity(const Helper& helper) { return std::to_string(helper.Pid()) + "/" + std::to_string(getuid()); }

// With 3 this process opens no more descriptors, with 0 it cannot even poll two.
void LimitDescriptors(rlim_t limit)
{
    const rlimit limits{limit, 4096};
    setrlimit(RLIMIT_NOFILE, &limits);
}

TEST_F(CallTest, ACallBringsBackTheAnswerOrTheError)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100); });
    caller.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    for (const auto& [size, result] :
        {std::make_pair(size_t{204787}, "0 x"), {1048560, "90"}}) { // A parcel at first; too much.
        caller.Expect(result, [size = size] { return Call("s", REPEAT, std::string(size, 'x')).substr(0, 3); });
    }
    const std::string other = Identity(caller);
    caller.Expect("0 " + other + " 0 " + Identity(service) + " " + other, [] { return Call("s", CALL_BACK, "me"); });
    caller.Expect(other, Who); // Nobody is calling any more.
    caller.Expect("7", [] { return Call("s", FAIL, "7"); });
    caller.Expect("-1", [] { return Call("s", FAIL, "-1"); });
    caller.Expect("0 5", [] { return Call("s", FAIL_WITH_REPLY, "5"); }); // Contract: as on a device.
    caller.Expect("305", [] { return Call("s", 99); });
    caller.Expect("204", [] { return Call("s", 0x01000000); });
    service.Expect("0", [] { return Unserve(100); });
    caller.Expect("111", [] { return Call("s", REPEAT); });
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
    service.Expect("0 hello", [] { return Call("y", REPEAT, "hello"); });
}

TEST_F(CallTest, AnObjectLivesAsLongAsAPeerHoldsIt)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100); });
    const auto handOver = [&] {
        caller.Ask([] { Make("x"); });
        caller.Expect("0 remote", [] { return Call("s", TAKE, "x"); });
        caller.Expect("0 same", [] { return Call("s", TAKE, "x"); });
        caller.Ask([] { Drop("x"); });
        caller.Expect("1", Alive);
    };
    handOver();
    service.Ask([] { Drop("x"); });
    caller.Await("0", Alive);
    handOver();
    service.Expect("1 then 0", [] { return Send("x", 1); }); // Before its release.
    service.Ask([] { Drop("x"); });
    caller.Hears({"x 0"});
    caller.Await("0", Alive);
    handOver();
    service.Kill();
    caller.Await("0", Alive);
}

TEST_F(CallTest, AnObjectIsHandedOnByItsOwnerOnly)
{
    Start([] { Serve(100), Make("x"); });
    Helper& middle = Start([] { Serve(200), Find("s", 100), Call("s", GIVE, "x"); });
    Helper& caller = Start([] { Find("s", 100), Find("m", 200); });
    caller.Expect("125", [] { return Call("m", TAKE, "s"); });
    caller.Expect("125", [] { return Call("m", GIVE, "x"); });
    middle.Expect("0 hello", [] { return Call("x", REPEAT, "hello"); });
}

TEST_F(CallTest, ACallToAStoppedProcessEndsWithItsWaitOrWithTheProcess)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Find("s", 100), SetWait(2); });
    service.Signal(SIGSTOP);
    for (const bool isConnected : {false, true}) {
        const auto begin = Clock::now();
        caller.Expect("110", [] { return Call("s", REPEAT); });
        EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(1900)) << isConnected;
        EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(3900)) << isConnected; // Not twice its wait.
        service.Signal(SIGCONT);
        caller.Expect("0 0 wrong, 0 failed", [] { return "0 " + Hammer("s", 2, 100); }); // The late reply is nobody's.
        caller.Hears({"begun"});
        service.Signal(SIGSTOP);
    }
    caller.Ask([] { SetWait(600); });
    caller.Begin([] { return Call("s", REPEAT); });
    service.Kill();
    caller.Hears({"done 32"});
}

TEST_F(CallTest, CallsBeyondThePeersConnectionsWaitForOne)
{
    Helper& service = Start([] { Serve(100), Hold(); });
    Helper& caller = Start([] { Find("s", 100), SetWait(600); });
    for (int i = 0; i < 40; ++i) {
        caller.Begin([] { return Call("s", WAIT, "long"); });
    }
    EXPECT_EQ(service.Events(31), std::vector<std::string>(31, "waiting"));
    service.Ask(Release);
    EXPECT_EQ(caller.Events(40), std::vector<std::string>(40, "done 0 long"));
    // With objects in both directions, of which some are held nowhere but in the reply that brings them home.
    caller.Expect("0 wrong, 0 failed", [] { return Hammer("s", 100, 10); });
    caller.Await("1", Alive);
    service.Await("1", Alive);
}

TEST_F(CallTest, ASlowReceiverHoldsNobodyUpAndGetsInOrderWhatWasTaken)
{
    Helper& service = Start([] { Serve(100), Make("x"); });
    Helper& caller = Start([] { Find("s", 100), Call("s", GIVE, "x"); });
    service.Ask([] { Drop("x"); });
    std::vector<int> taken;
    for (const bool isHeld : {true, true, true, false, true, false, true, true}) {
        service.Ask([isHeld] { isHeld ? Hold() : Release(); });
        const std::string sent = caller.Ask([] { return Send("s", 1000); }); // Each is taken, or refused for good.
        EXPECT_TRUE(sent == "1000 then 0" || sent.substr(sent.find(' ')) == " then 105") << sent;
        taken.push_back(std::stoi(sent));
    }
    EXPECT_LT(taken[2], 1000);
    caller.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    caller.Ask([] { Drop("x"); }); // Its release has to wait.
    service.Ask(Release);
    for (const int count : taken) {
        ASSERT_NO_FATAL_FAILURE(ExpectEvents(service, "me", count));
    }
    caller.Expect("1 then 0", [] { return Send("s", 1); });
    service.Hears({"me 0"});
    service.Await("1", Alive);
}

TEST_F(CallTest, NothingWorksInTheChildOfAForkAndAllGoesOnInTheParent)
{
    Helper& service = Start([] { Serve(100); });
    Helper& caller = Start([] { Serve(200), Find("s", 100), Mourn("s"); });
    service.Ask([] { Find("c", 200), Call("c", REPEAT); });
    caller.Ask([] { Call("s", REPEAT); });
    service.Ask([] {
        if (fork() == 0) {
            Helper::Tell("child: " + Find("c", 200) + ", " + Call("c", REPEAT) + ", " + Send("c", 1));
            pollfd wait{STDIN_FILENO, 0, 0}; // Stays as long as there is somebody to stay for.
            poll(&wait, 1, -1);
            _exit(0);
        }
    });
    service.Hears({"child: no manager, 32, 0 then 32"});
    service.Expect("0", [] { return Call("c", REPEAT); });
    caller.Expect("0", [] { return Call("s", REPEAT); });
    service.Kill(); // The child lives on.
    caller.Hears({"dead s"});
    caller.Expect("32", [] { return Call("s", REPEAT); });
}

TEST_F(CallTest, WithoutADescriptorAConnectionFailsAndNothingElse)
{
    Helper& service = Start([] { Serve(100); });
    Start([] { Serve(200); });
    Helper& caller = Start([] { Find("s", 100), Find("other", 200), Call("other", REPEAT), LimitDescriptors(3); });
    caller.Expect("24", [] { return Call("s", REPEAT); });
    caller.Expect("0 then 24", [] { return Send("s", 1); });
    caller.Expect("0", [] { return Find("s", 100); }); // The bus needs none.
    caller.Expect("0 hello", [] { return Call("other", REPEAT, "hello"); });
    caller.Ask([] { LimitDescriptors(4096); });
    caller.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    Helper& passing = Start([] { Find("s", 100), Make("x"), Call("s", TAKE, "x"); });
    service.Ask([] { Mourn("x"), LimitDescriptors(0); });
    passing.Kill();
    service.Hears({"dead x"}); // News still comes.
    Helper& late = Start([] { Find("s", 100), SetWait(600); });
    late.Begin([] { return Call("s", REPEAT, "late"); });
    caller.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    service.Expect("0", [] { // Of half a second, which no thread spins through.
        const std::clock_t before = std::clock();
        usleep(500'000);
        return std::clock() - before > CLOCKS_PER_SEC / 4;
    });
    service.Ask([] { LimitDescriptors(4096); });
    late.Hears({"done 0 late"});
    service.Expect("0", [] { return Find("s", 100); });
}

TEST_F(CallTest, AFailedAllocationEndsTheProcessOrLeavesEverythingWorking)
{
    Start([] { Serve(100); });
    for (int nth = 1; nth <= 24; ++nth) {
        Helper caller({}, busAddress_);
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
            return Call("s", REPEAT, "hello");
        });
        caller.EndInput();
        const int end = caller.AwaitEnd();
        EXPECT_TRUE(end == -SIGABRT || (end == 0 && caller.Event() == "done 0 hello")) << nth << ": " << end;
    }
}

TEST_F(CallTest, StandardErrorStaysFreeWhereItIsClosed)
{
    Helper& service = Start([] { close(STDERR_FILENO), Serve(100); });
    Start([] { Find("s", 100); }).Expect("0", [] { return Call("s", CALL_BACK, "me").substr(0, 1); });
    EXPECT_FALSE(std::filesystem::exists("/proc/" + std::to_string(service.Pid()) + "/fd/2")); // Logs go there.
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
    Helper& caller = Start();
    for (const int crash : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
        Helper service({}, busAddress_);
        service.Ask([crash] { std::signal(crash, [](int number) { _exit(number); }), Serve(100); });
        caller.Await("0", [] { return Find("s", 100); });
        caller.Expect("32", [crash] { return Call("s", CRASH, std::to_string(crash)); });
        EXPECT_EQ(service.AwaitEnd(), crash);
    }
}

} // namespace
