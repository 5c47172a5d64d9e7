// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>

#include <ctime>
#include <new>

#include "peer_test.h"

// The allocation from now on that fails, whichever thread asks for it; 0 for none. Not in a sanitizer's build.
static std::atomic<int> g_failingNew{0};

// A program's own definition comes before those of its libraries, for calls between these too. A sanitizer has its own.
// The compiler takes one that is inlined, and a delete that is not, for no pair.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
[[gnu::noinline]] void* operator new(size_t size)
{
    void* const memory = g_failingNew > 0 && --g_failingNew == 0 ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
#endif

namespace {

using CallTest = PairTest;

std::string Identity(const Helper& helper) { return std::to_string(helper.Pid()) + "/" + std::to_string(getuid()); }

// With 3 this process opens no more descriptors, with 0 it cannot even poll two.
void LimitDescriptors(rlim_t limit)
{
    const rlimit limits{limit, 4096};
    setrlimit(RLIMIT_NOFILE, &limits);
}

TEST_F(CallTest, ACallBringsBackTheAnswerOrTheError)
{
    caller_.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    caller_.Expect("0 x", [] { return Call("s", REPEAT, std::string(204787, 'x')).substr(0, 3); });
    caller_.Expect("90", [] { return Call("s", REPEAT, std::string(1048560, 'x')); });
    const std::string other = Identity(caller_);
    caller_.Expect("0 " + other + " 0 " + Identity(service_) + " " + other, [] { return Call("s", CALL_BACK, "me"); });
    caller_.Expect(other, Who);                                 // Nobody is calling any more.
    caller_.Expect("0 5", [] { return Call("s", FAIL, "5"); }); // Contract: as on a device.
    caller_.Expect("305", [] { return Call("s", 99); });
    caller_.Expect("204", [] { return Call("s", 0x01000000); });
    service_.Expect("0", [] { return Unserve(100); });
    caller_.Expect("111", [] { return Call("s", REPEAT); });
}

TEST_F(CallTest, AnObjectIsOnePointerHoweverItCameAndLivesAsLongAsAPeerHoldsIt)
{
    service_.Ask([] { Make("y"); });
    caller_.Ask([] { Serve(200), Find("me", 100), Make("x"); });
    caller_.Expect("0 remote", [] { return Call("s", TAKE, "x"); });
    caller_.Expect("0 same", [] { return Call("s", TAKE, "x"); });
    caller_.Expect("0 same", [] { return Call("s", GIVE, "x"); }); // It comes home.
    caller_.Expect("0 other", [] { return Call("s", GIVE, "y"); });
    caller_.Expect("0 same", [] { return Call("s", GIVE, "y"); });
    caller_.Expect("0 same", [] { return Call("s", TAKE, "y"); });
    caller_.Expect("0 same", [] { return Call("s", GIVE, "me"); }); // The service itself, found and handed over.
    service_.Expect("0 hello", [] { return Call("y", REPEAT, "hello"); });
    Helper& third = Start([] { Find("c", 200); });
    third.Expect("125", [] { return Call("c", GIVE, "y"); });
    caller_.Ask([] { Drop("x"); });
    caller_.Expect("2", Alive);                               // It, and what the caller serves.
    service_.Expect("1 then 0", [] { return Send("x", 1); }); // Before its release.
    service_.Ask([] { Drop("x"); });
    caller_.ExpectEvents({"x 0"});
    caller_.Await("1", Alive);
}

TEST_F(CallTest, ACallToAStoppedProcessEndsWithItsWaitOrWithTheProcess)
{
    caller_.Ask([] { SetWait(2); });
    service_.Signal(SIGSTOP);
    for (const bool isConnected : {false, true}) {
        const auto begin = Clock::now();
        caller_.Expect("110", [] { return Call("s", REPEAT); });
        EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(1900)) << isConnected;
        EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(3900)) << isConnected; // Not twice its wait.
        service_.Signal(SIGCONT);
        caller_.Expect("0", [] { return Hammer("s", 2, 100); }); // The late reply is nobody's.
        caller_.ExpectEvents({"begun"});
        service_.Signal(SIGSTOP);
    }
    caller_.Ask([] { SetWait(600); });
    caller_.Begin([] { return Call("s", REPEAT); });
    service_.Kill();
    caller_.ExpectEvents({"done 32"});
}

TEST_F(CallTest, CallsBeyondThePeersConnectionsWaitForOne)
{
    caller_.Ask([] { SetWait(600); });
    // With objects in both directions, of which some are held nowhere but in the reply that brings them home.
    caller_.Expect("0", [] { return Hammer("s", 100, 10); });
    caller_.Await("1", Alive);
    service_.Await("1", Alive);
}

TEST_F(CallTest, ASlowReceiverHoldsNobodyUpAndGetsInOrderWhatWasTaken)
{
    std::vector<int> taken;
    for (const bool isHeld : {true, true, true, false, true, false, true, true}) {
        service_.Ask([isHeld] { isHeld ? Hold() : Release(); });
        const std::string sent = caller_.Ask([] { return Send("s", 1000); }); // Each is taken, or refused for good.
        EXPECT_TRUE(sent == "1000 then 0" || sent.substr(sent.find(' ')) == " then 105") << sent;
        taken.push_back(std::stoi(sent));
    }
    EXPECT_LT(taken[2], 1000);
    caller_.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    service_.Ask(Release);
    for (const int count : taken) {
        ASSERT_NO_FATAL_FAILURE(ExpectEvents(service_, "me", count));
    }
}

TEST_F(CallTest, NothingWorksInTheChildOfAForkAndAllGoesOnInTheParent)
{
    caller_.Ask([] { Serve(200), Mourn("s"), Call("s", REPEAT); });
    service_.Ask([] {
        Find("c", 200), Call("c", REPEAT);
        if (fork() == 0) {
            Helper::Report("child: " + Find("c", 200) + ", " + Call("c", REPEAT) + ", " + Send("c", 1));
            pollfd wait{STDIN_FILENO, 0, 0}; // Stays as long as there is somebody to stay for.
            poll(&wait, 1, -1);
            _exit(0);
        }
    });
    service_.ExpectEvents({"child: no manager, 32, 0 then 32"});
    service_.Expect("0", [] { return Call("c", REPEAT); });
    caller_.Expect("0", [] { return Call("s", REPEAT); });
    service_.Kill(); // The child lives on.
    caller_.ExpectEvents({"dead s"});
    caller_.Expect("32", [] { return Call("s", REPEAT); });
}

TEST_F(CallTest, WithoutADescriptorAConnectionFailsAndNothingElse)
{
    Start([] { Serve(200); });
    caller_.Ask([] { Find("other", 200), Call("other", REPEAT), LimitDescriptors(3); });
    caller_.Expect("24", [] { return Call("s", REPEAT); });
    caller_.Expect("0 then 24", [] { return Send("s", 1); });
    caller_.Expect("0", [] { return Find("s", 100); }); // The bus needs none.
    caller_.Expect("0 hello", [] { return Call("other", REPEAT, "hello"); });
    caller_.Ask([] { LimitDescriptors(4096); });
    caller_.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    Helper& passing = Start([] { Find("s", 100), Make("x"), Call("s", TAKE, "x"); });
    service_.Ask([] { Mourn("x"), LimitDescriptors(0); });
    passing.Kill();
    service_.ExpectEvents({"dead x"}); // Notices still come.
    Helper& late = Start([] { Find("s", 100), SetWait(600); });
    late.Begin([] { return Call("s", REPEAT, "late"); });
    caller_.Expect("0 hello", [] { return Call("s", REPEAT, "hello"); });
    service_.Expect("0", [] { // Of half a second, which no thread spins through.
        const std::clock_t before = std::clock();
        usleep(500'000);
        return std::clock() - before > CLOCKS_PER_SEC / 4;
    });
    service_.Ask([] { LimitDescriptors(4096); });
    late.ExpectEvents({"done 0 late"});
    service_.Expect("0", [] { return Find("s", 100); });
}

TEST_F(CallTest, AFailedAllocationEndsTheProcessOrLeavesEverythingWorking)
{
    for (int nth = 1; nth <= 24; ++nth) {
        Helper caller({}, busAddress_);
        caller.Ask([] { Make("x"), close(STDERR_FILENO); });
        caller.Begin([nth] {
            g_failingNew = nth;
            try {
                Find("s", 100), Call("s", TAKE, "x");
            } catch (const std::bad_alloc&) { // The caller's own affair.
            }
            g_failingNew = 0;
            Find("s", 100);
            const std::string end = Call("s", CALL_BACK, "x").substr(0, 1); // Both sides connect.
            return fcntl(STDERR_FILENO, F_GETFD) < 0 ? end : "no socket may be where logs go";
        });
        caller.EndInput();
        const int end = caller.AwaitEnd();
        EXPECT_TRUE(end == -SIGABRT || (end == 0 && caller.Event() == "done 0")) << nth << ": " << end;
    }
}

TEST_F(CallTest, AnExitIsCleanWhoeverHasLoadedTheLibrary)
{
    for (int i = 0; i < 5; ++i) {
        Helper loader({LOADER, LOADED_MODULE}, busAddress_);
        caller_.Await("0", [] { return Find("loader", 200); });
        caller_.Begin([] { // Until the very end.
            while (Call("loader", EVENT) == "0") {
            }
        });
        caller_.Await("0", [] { return Call("loader", EVENT); });
        loader.EndInput();
        EXPECT_EQ(loader.AwaitEnd(), 0);
        caller_.ExpectEvents({"done "});
    }
}

TEST_F(CallTest, ACrashInAHandlerIsForTheProgramsOwnHandler)
{
    for (const int crash : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
        Helper crashing({}, busAddress_);
        crashing.Ask([crash] { std::signal(crash, [](int number) { _exit(number); }), Serve(200); });
        caller_.Await("0", [] { return Find("c", 200); });
        caller_.Expect("32", [crash] { return Call("c", CRASH, std::to_string(crash)); });
        EXPECT_EQ(crashing.AwaitEnd(), crash);
    }
}

} // namespace
