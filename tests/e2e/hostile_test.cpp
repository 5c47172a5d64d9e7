// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "bus_test.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

// Of how many times an attack consists: more with HOSTILE_FACTOR, as in `./dev soak`.
std::string Times(int count)
{
    const char* factor = std::getenv("HOSTILE_FACTOR");
    return std::to_string(count * (factor != nullptr ? std::atoi(factor) : 1) / (IS_SANITIZED ? 10 : 1));
}

// Gives service 66090 an object of the sender's, by the name of x.
const std::string& OFFER =
    *new std::string("raw 01000000 04000000 00000000 01000000 2a020100 00000000 20000000 00000000 "
                     "00000000 08000000 07000000 00000000 01000000 78000000 " +
                     std::string(48, '0'));
constexpr const char* TAKEN = "02000000 00000000 00000000 00000000 00000000 00000000 0c000000 00000000 "
                              "06000000 72656d6f 74650000";

/** A service, a caller that keeps it busy, and an attacker. In the end the service is as it was. */
class HostileTest : public BusTest {
protected:
    HostileTest()
    {
        Helper& first = Start({"find s 66090"});
        EXPECT_EQ(first.Ask("hammer s 8 50"), "0 wrong, 0 failed"); // Warms up.
        first.Kill();
        std::ofstream(Folder() + "clear_refs") << 5; // VmHWM starts anew.
        memory_ = Status("VmRSS:");
        caller_.Do({"background hammer s 8 " + Times(400)});
        caller_.Hears({"begun"});
    }

    /** `bound` in KiB. */
    void ExpectAllWell(size_t bound)
    {
        Helper& newcomer = Start({"find s 66090"});
        EXPECT_EQ(newcomer.Ask("call s callback me").substr(0, 2), "0 "); // Both sides connect.
        caller_.Hears({"done 0 wrong, 0 failed"});
        const size_t peak = Status("VmHWM:");
        std::printf("the service took %zu KiB more at most\n", peak - memory_);
        EXPECT_TRUE(IS_SANITIZED || peak < memory_ + bound) << peak << " KiB, from " << memory_;
        for (Helper* peer : {&caller_, &attacker_, &newcomer}) {
            peer->Kill();
        }
    }

    size_t Status(const std::string& key) const
    {
        std::ifstream file(Folder() + "status");
        std::string line;
        while (std::getline(file, line) && line.rfind(key, 0) != 0) {
        }
        return std::stoul(line.substr(key.size()));
    }

    // The most of several times: the bus thread goes without its spare one while it reads.
    size_t CountDescriptors()
    {
        size_t most = 0;
        for (int i = 0; i < 20; ++i) {
            victim_.Ask("alive");
            most = std::max(most, victim_.Count("fd"));
        }
        return most;
    }

    std::string Folder() const
    {
        return "/proc/" + std::to_string(victim_.Pid()) + "/";
    }

    void TearDown() override
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (victim_.Count("task") > threads_ + 1 || // Notices have a thread.
               victim_.Count("fd") != descriptors_ || victim_.Ask("alive") != "1") {
            ASSERT_LT(std::chrono::steady_clock::now(), deadline)
                << victim_.Count("fd") << " descriptors, not " << descriptors_;
        }
    }

    Helper& victim_ = Start({"serve 66090"});
    const size_t descriptors_ = CountDescriptors();
    const size_t threads_ = victim_.Count("task");
    size_t memory_ = 0;
    Helper& caller_ = Start({"find s 66090"});
    Helper& attacker_ = Start({}, "hostile_process");
};

TEST_F(HostileTest, APeerGetsAsManyConnectionsAsAnyoneHoweverManyItAsksFor)
{
    EXPECT_EQ(attacker_.Ask("connect " + Times(10000)), "32");
    attacker_.Do({"join"});
    EXPECT_EQ(attacker_.Ask("connect 1"), "0"); // It is the same process.
    victim_.Do({"hold"});
    attacker_.Do({"call wait 1 0"}); // 1 MiB on each, which the service copies.
    EXPECT_EQ(victim_.Events(32), std::vector<std::string>(32, "waiting"));
    ExpectAllWell(80 << 10);
    victim_.Do({"release"});
}

TEST_F(HostileTest, GarbageEndsNoOtherConnection)
{
    attacker_.Do({"garbage " + Times(20000)});
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, InventedObjectsAreLetGoOf)
{
    EXPECT_EQ(attacker_.Ask("connect 32"), "32");
    const std::string rounds = Times(50);
    EXPECT_EQ(attacker_.Ask("call echo " + rounds + " 1024"), std::to_string(std::stoi(rounds) * 32));
    ExpectAllWell(64 << 10);
}

TEST_F(HostileTest, AnswersThatNobodyReadsHoldNobodyUp)
{
    EXPECT_EQ(attacker_.Ask("guess Ping 60"), "133"); // Answers, of some 256 bytes each, and its own question.
    EXPECT_EQ(attacker_.Ask("guess Connect 60"), "129");
    for (const auto& [member, count] : std::initializer_list<std::pair<std::string, int>>{
             {"Ping", 10000}, {"Unheard", 10000}, {"Connect", 10000}, {"Release", 300}}) {
        attacker_.Do({"flood " + member + " " + Times(count) + " 1"});
    }
    for (int i = 0; i < std::min(10, std::stoi(Times(10))); ++i) {
        attacker_.Do({"flood Connect 200 10"});
    }
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, APeerThatIsCalledHarmsItsCallerOnly)
{
    EXPECT_EQ(attacker_.Ask(OFFER), TAKEN);
    victim_.Do({"patience 1"});
    for (const auto& [how, result] :
        std::initializer_list<std::pair<std::string, std::string>>{{"none", "111"}, {"stream", "111"}, {"end", "32"},
            {"half", "74"}, {"kind", "74"}, {"forged", "74"}, {"descriptor", "74"}, {"twice", "0 x"}}) {
        victim_.Do({"background call x echo hello"});
        attacker_.Do({"answer " + how});
        EXPECT_EQ(victim_.Event(), "done " + result) << how;
    }
    victim_.Do({"background call x echo hello", "background call x echo hello"});
    attacker_.Do({"answer shared"}); // The two calls have one socket between them.
    EXPECT_EQ(victim_.Events(2)[0].substr(0, 6), "done 0");
    attacker_.Do({"join"}); // Has no connections yet.
    EXPECT_EQ(attacker_.Ask(OFFER), TAKEN);
    victim_.Do({"background call x echo hello"});
    attacker_.Do({"answer alone"}); // A socket that is not connected, and once more.
    victim_.Hears({"done 32"});
    victim_.Do({"drop x"});
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, WhoDoesNotConnectHoldsItsCallerUpOnce)
{
    EXPECT_EQ(attacker_.Ask(OFFER), TAKEN);
    victim_.Do({"patience 1"});
    EXPECT_EQ(victim_.Ask("send x 1"), "0 then 110");
    victim_.Do({"patience 600"});
    EXPECT_EQ(victim_.Ask("send x 1"), "0 then 110"); // At once.
    attacker_.Do({"background answer none"});
    victim_.AskUntil("0 then 111", "send x 1");
    attacker_.Hears({"done 0"});
    EXPECT_EQ(victim_.Ask("send x 1"), "0 then 110"); // Still at once.
    attacker_.Do({"background answer end"});
    victim_.AskUntil("1 then 0", "send x 1"); // It has thought better of it.
    attacker_.Hears({"done 0"});
    victim_.Do({"drop x"});
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, TheDaemonAloneSaysWhoOwnsAName)
{
    victim_.Do({"watch 66090"});
    victim_.Hears({"up 66090"});
    attacker_.Do({"forge ohos.sa.SA66090"});
    EXPECT_EQ(attacker_.Ask("claim ohos.sa.SA66090"), std::to_string(EEXIST));
    EXPECT_EQ(victim_.Ask("find none 100"), "null"); // What was sent to it so far has come.
    victim_.Do({"watch 66090 b"});
    victim_.Hears({"up 66090b"});
    victim_.Do({"unwatch 66090"});
    ExpectAllWell(16 << 10);
}

using WireTest = BusTest;

TEST_F(WireTest, AMessageIsWhatItIsAndABadOneEndsItsConnectionOnly)
{
    Start({"serve 66090", "make x"});
    Helper& caller = Start({"find s 66090"});
    Helper& stranger = Start({}, "hostile_process");
    // Kind, code, flags, number of handles; object, size of the data, 0; the data.
    EXPECT_EQ(stranger.Ask("raw 01000000 01000000 00000000 00000000 2a020100 00000000 0c000000 00000000 "
                           "05000000 68656c6c 6f000000"),
        "02000000 00000000 00000000 00000000 00000000 00000000 0c000000 00000000 05000000 68656c6c 6f000000");
    // An object is a handle (owner, position, id) and 24 bytes of data.
    EXPECT_EQ(stranger.Ask("raw 01000000 05000000 00000000 00000000 2a020100 00000000 08000000 00000000 "
                           "01000000 78000000"),
        "02000000 00000000 00000000 01000000 00000000 00000000 20000000 00000000 "
        "00000000 08000000 00000001 00000000 "
        "01000000 78000000 00000000 00000000 00000000 00000000 00000000 00000000");
    // An object that there is not, called or carried.
    const std::string refused = "02000000 6f000000 00000000 00000000 00000000 00000000 00000000 00000000";
    EXPECT_EQ(stranger.Ask("raw 01000000 01000000 00000000 00000000 2b020100 00000000 00000000 00000000"), refused);
    EXPECT_EQ(stranger.Ask("raw 01000000 01000000 00000000 01000000 2a020100 00000000 18000000 00000000 "
                           "01000000000000000100000100000000 000000000000000000000000000000000000000000000000"),
        refused);
    const char* const nobodysObject =
        "01000000 01000000 00000000 01000000 2a020100 00000000 18000000 00000000 "
        "02000000 00000000 00000001 00000000 000000000000000000000000000000000000000000000000";
    for (const char* packet : {"01000000 01000000 00000000 00000000 2a020100 00000000 00000000 000000", // Cut.
             "02000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000",          // A reply to nothing.
             "01000000 01000000 00000000 00000000 2a020100 00000000 00000000 00000000 00000000", // Too long.
             "01000000 01000000 00000000 ffffffff 2a020100 00000000 10000000 00000000",          // Overflowing.
             "01000000 01000000 00000000 00000000 2a020100 00000000 00000000 00000000 fd",       // A descriptor.
             nobodysObject}) {
        EXPECT_EQ(stranger.Ask(std::string("raw ") + packet), "closed") << packet;
        EXPECT_EQ(caller.Ask("call s echo hello"), "0 hello");
    }
    for (int i = 0; i < 1100; ++i) { // Each of these connections has given its place back.
        ASSERT_EQ(stranger.Ask("raw 01000000"), "closed");
    }
    EXPECT_EQ(Start({"find s 66090"}).Ask("call s echo hello"), "0 hello");
}

TEST_F(WireTest, AnAnswerWithADescriptorFindsRoomInAFullTable)
{
    Helper& service = Start({"serve 66090", "exhaust"});
    EXPECT_EQ(Start({}, "hostile_process").Ask("bait 100"), "0");
    EXPECT_EQ(service.Ask("find none 100"), "null"); // The bus is still there.
    service.Do({"restore"});
}

struct RightlessTest : BusTest {
    RightlessTest() : BusTest("nobody") {}
};

TEST_F(RightlessTest, NobodyIsAServiceWithoutTheRight)
{
    EXPECT_EQ(Start({}, "hostile_process").Ask("claim ohos.sa.SA66090"), std::to_string(EACCES));
    Helper& other = Start();
    EXPECT_EQ(other.Ask("serve 66090"), "111");
    EXPECT_EQ(other.Ask("find s 66090"), "null");
}

} // namespace
