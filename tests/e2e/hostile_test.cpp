// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "bus_test.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

// QNL_HOSTILE_FACTOR in the environment makes the attacks that much longer.
std::string Times(int count)
{
    const char* factor = getenv("QNL_HOSTILE_FACTOR");
    return std::to_string(count * (factor != nullptr ? std::stoi(factor) : 1) / (IS_SANITIZED ? 10 : 1));
}

/** A service, a caller that keeps it busy, and an attacker. In the end the service is as it was. */
class HostileTest : public BusTest {
protected:
    HostileTest()
    {
        threads_ = Status("Threads:");
        Helper& first = Start({"find s 66090"});
        EXPECT_EQ(first.Ask("hammer s 8 50"), "0 wrong, 0 failed"); // Warms up.
        first.Kill();
        std::ofstream(Folder() + "clear_refs") << 5; // VmHWM starts anew.
        memory_ = Status("VmRSS:");
        EXPECT_EQ(caller_.Ask("background hammer s 8 " + Times(400)), "0");
        EXPECT_EQ(caller_.Event(), "begun");
    }

    /** `bound` in KiB. */
    void ExpectAllWell(size_t bound)
    {
        Helper& newcomer = Start({"find s 66090"});
        EXPECT_EQ(newcomer.Ask("call s callback me").substr(0, 2), "0 "); // Both sides connect.
        EXPECT_EQ(caller_.Event(), "done 0 wrong, 0 failed");
        const size_t peak = Status("VmHWM:");
        RecordProperty("KiB", static_cast<int>(peak - memory_));
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

    size_t Descriptors() const
    {
        const std::filesystem::directory_iterator all(Folder() + "fd");
        return static_cast<size_t>(std::distance(begin(all), end(all)));
    }

    std::string Folder() const
    {
        return "/proc/" + std::to_string(victim_.Pid()) + "/";
    }

    void TearDown() override
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (Status("Threads:") > threads_ + 1 || Descriptors() != descriptors_) { // Notices have one thread.
            ASSERT_LT(std::chrono::steady_clock::now(), deadline) << Descriptors() << " descriptors";
            victim_.Ask("who");
        }
        EXPECT_EQ(victim_.Ask("alive"), "1");
    }

    Helper& victim_ = Start({"serve 66090"});
    const size_t descriptors_ = Descriptors();
    size_t threads_ = 0;
    size_t memory_ = 0;
    Helper& caller_ = Start({"find s 66090"});
    Helper& attacker_ = Start({}, "hostile_process");
};

TEST_F(HostileTest, APeerGetsAsManyConnectionsAsAnyoneHoweverManyItAsksFor)
{
    EXPECT_EQ(attacker_.Ask("connect " + Times(10000)), "32");
    EXPECT_EQ(victim_.Ask("hold"), "0");
    EXPECT_EQ(attacker_.Ask("call wait 1 0"), "0"); // 1 MiB on each, which the service copies.
    for (int i = 0; i < 32; ++i) {
        EXPECT_EQ(victim_.Event(), "waiting");
    }
    ExpectAllWell(80 << 10);
    EXPECT_EQ(victim_.Ask("release"), "0");
}

TEST_F(HostileTest, GarbageEndsNoOtherConnection)
{
    EXPECT_EQ(attacker_.Ask("garbage " + Times(20000)), "0");
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
    for (const auto& [member, count] : std::initializer_list<std::pair<std::string, int>>{
             {"Ping", 10000}, {"Unheard", 10000}, {"Connect", 10000}, {"Release", 300}}) {
        EXPECT_EQ(attacker_.Ask("flood " + member + " " + Times(count)), "0");
        EXPECT_EQ(attacker_.Ask("join"), "0"); // Never reads again what comes for it so far.
    }
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, APeerThatIsCalledHarmsItsCallerOnly)
{
    EXPECT_EQ(attacker_.Ask("offer x"), "0");
    EXPECT_EQ(victim_.Ask("patience 1"), "0");
    for (const auto& [how, result] : std::initializer_list<std::pair<std::string, std::string>>{{"none", "111"},
             {"event", "111"}, {"stream", "111"}, {"end", "32"}, {"half", "74"}, {"kind", "74"}, {"forged", "74"},
             {"descriptor", "74"}, {"good", "0 x"}, {"twice", "0 x"}}) {
        EXPECT_EQ(victim_.Ask("background call x echo hello"), "0");
        EXPECT_EQ(attacker_.Ask("answer " + how), "0");
        EXPECT_EQ(victim_.Event(), "done " + result) << how;
    }
    EXPECT_EQ(victim_.Ask("background call x echo hello"), "0");
    EXPECT_EQ(victim_.Ask("background call x echo hello"), "0");
    EXPECT_EQ(attacker_.Ask("answer shared"), "0"); // The two calls have one socket between them.
    EXPECT_EQ(victim_.Events(2).substr(0, 6), "done 0");
    EXPECT_EQ(attacker_.Ask("join"), "0"); // Has no connections yet.
    EXPECT_EQ(attacker_.Ask("offer x"), "0");
    EXPECT_EQ(victim_.Ask("background call x echo hello"), "0");
    EXPECT_EQ(attacker_.Ask("answer alone"), "0"); // A socket that is not connected, and once more.
    EXPECT_EQ(victim_.Event(), "done 32");
    EXPECT_EQ(victim_.Ask("drop x"), "0");
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, WhoDoesNotConnectHoldsItsCallerUpOnce)
{
    EXPECT_EQ(attacker_.Ask("offer x"), "0");
    EXPECT_EQ(victim_.Ask("patience 1"), "0");
    EXPECT_EQ(victim_.Ask("send x 1"), "0 then 110");
    EXPECT_EQ(victim_.Ask("patience 600"), "0");
    EXPECT_EQ(victim_.Ask("send x 1"), "0 then 110"); // At once.
    EXPECT_EQ(attacker_.Ask("background answer good"), "0");
    victim_.AskUntil("1 then 0", "send x 1"); // It has thought better of it.
    EXPECT_EQ(attacker_.Event(), "done 0");
    EXPECT_EQ(victim_.Ask("drop x"), "0");
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, TheDaemonAloneSaysWhoOwnsAName)
{
    EXPECT_EQ(victim_.Ask("watch 66090"), "0");
    EXPECT_EQ(victim_.Event(), "up 66090");
    EXPECT_EQ(attacker_.Ask("forge ohos.sa.SA66090"), "0");
    EXPECT_EQ(attacker_.Ask("claim ohos.sa.SA66090"), std::to_string(EEXIST));
    EXPECT_EQ(victim_.Ask("find none 100"), "null"); // What was sent to it so far has come.
    EXPECT_EQ(victim_.Ask("watch 66090 b"), "0");
    EXPECT_EQ(victim_.Event(), "up 66090b");
    EXPECT_EQ(victim_.Ask("unwatch 66090"), "0");
    ExpectAllWell(16 << 10);
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
