// SPDX-License-Identifier: Apache-2.0
#include "hostile_peer.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <utility>

#include "bus_test.h"
#include "peer.h"

namespace {

using namespace Peer;
using Packet = HostilePeer::Packet;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

constexpr uint32_t CALL = 1;
constexpr uint32_t REPLY = 2;
constexpr uint32_t MAX_SIZE = 1 << 20;
const Packet TEXT{1, 'x'};

// Has the service know an object of the sender's, by the name of x.
constexpr const char* OFFER = "01000000 04000000 00000000 01000000 2a020100 00000000 20000000 01000000 "
                              "00000000 08000000 07000000 00000000 01000000 78000000 00000000 00000000 "
                              "00000000 00000000 00000000 00000000";

// Of how many times an attack consists: more with HOSTILE_FACTOR, as in `./dev soak`.
int Times(int count)
{
    const char* factor = std::getenv("HOSTILE_FACTOR");
    return count * (factor != nullptr ? std::atoi(factor) : 1) / (IS_SANITIZED ? 10 : 1);
}

// The handles of so many objects of the sender's, or (owner 1) of the receiver's, of which there are none.
Packet InventHandles(uint32_t count, uint32_t owner, uint32_t id, Packet& data)
{
    Packet handles;
    for (uint32_t i = 0; i < count; ++i) {
        handles.insert(handles.end(), {owner, static_cast<uint32_t>(data.size() * 4), id + i, 1});
        data.resize(data.size() + 6);
    }
    return handles;
}

/** A service, a caller that keeps it busy, and an attacker. In the end the service is as it was. */
class HostileTest : public BusTest {
protected:
    HostileTest()
    {
        Helper first(busAddress_);
        first.Ask([] { Find("s", 66090); });
        first.Expect("0 wrong, 0 failed", [] { return Hammer("s", 8, 50); }); // Warms up.
        first.Kill();
        std::ofstream("/proc/" + std::to_string(victim_.Pid()) + "/clear_refs") << 5; // VmHWM starts anew.
        memory_ = victim_.Status("VmRSS:");
        caller_.Ask([] { Find("s", 66090); });
        caller_.Begin([count = Times(400)] { return Hammer("s", 8, count); });
        caller_.Hears({"begun"});
    }

    /** `bound` in KiB. */
    void ExpectAllWell(size_t bound)
    {
        newcomer_.Ask([] { Find("s", 66090); });
        newcomer_.Expect("0", [] { return Call("s", CALL_BACK, "me").substr(0, 1); }); // Both sides connect.
        caller_.Hears({"done 0 wrong, 0 failed"});
        const size_t peak = victim_.Status("VmHWM:");
        std::printf("the service took %zu KiB more at most\n", peak - memory_);
        EXPECT_TRUE(IS_SANITIZED || peak < memory_ + bound) << peak << " KiB, from " << memory_;
        caller_.Kill();
        newcomer_.Kill();
    }

    void TearDown() override
    {
        attacker_ = nullptr;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(PATIENCE_S);
        while (victim_.Count("task") > threads_ || victim_.Count("fd") != descriptors_ || victim_.Ask(Alive) != "1") {
            ASSERT_LT(std::chrono::steady_clock::now(), deadline)
                << victim_.Count("fd") << " descriptors, not " << descriptors_;
        }
    }

    HostilePeer& Attacker()
    {
        attacker_ = attacker_ != nullptr ? std::move(attacker_) : std::make_unique<HostilePeer>(busAddress_);
        return *attacker_;
    }

    void Offer()
    {
        EXPECT_EQ(Attacker().Exchange(OFFER).substr(0, 17), "02000000 00000000");
    }

    Helper& victim_ = Start([] { Serve(66090), Find("none", 1); });
    const size_t descriptors_ = victim_.Count("fd");
    const size_t threads_ = victim_.Count("task");
    size_t memory_ = 0;
    Helper& caller_ = Start();
    Helper& newcomer_ = Start();

private:
    std::unique_ptr<HostilePeer> attacker_; // Made when all helpers are.
};

TEST_F(HostileTest, AProcessGetsAsManyConnectionsAsAnyoneHoweverManyItAsksFor)
{
    EXPECT_EQ(Attacker().ConnectOften(Times(3000)), 32U);
    EXPECT_EQ(HostilePeer(busAddress_).ConnectOften(1), 0U); // It is the same process.
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, AUsersProcessesDoNotGetEveryPlace)
{
    std::list<Helper> attackers;
    int kept = 0;
    for (int i = 0; i < 17; ++i) {
        kept += std::stoi(attackers.emplace_back(busAddress_).Ask([] {
            static HostilePeer& peer = *new HostilePeer(getenv("OHOS_BUS_ADDRESS"));
            return static_cast<int>(peer.ConnectOften(32));
        }));
    }
    EXPECT_GE(kept, 15 * 32);
    EXPECT_LT(kept, 512);                      // The caller has some.
    caller_.Hears({"done 0 wrong, 0 failed"}); // Who has connected before is served.
    EXPECT_LT(victim_.Count("task"), threads_ + 520);
    attackers.clear();
    newcomer_.Await("0", [] { return Find("s", 66090), Call("s", ECHO).substr(0, 1); });
    caller_.Kill();
    newcomer_.Kill();
}

TEST_F(HostileTest, LargeMessagesAreBounded)
{
    victim_.Ask(Hold);
    std::vector<int> connections(32);
    for (int& fd : connections) {
        Packet data(MAX_SIZE / 4 - 8, 0);
        data[0] = MAX_SIZE - 40;
        fd = Attacker().Connect();
        HostilePeer::Send(fd, HostilePeer::Message(CALL, WAIT, 1, {}, data)); // Which the service copies.
    }
    EXPECT_EQ(victim_.Events(32), std::vector<std::string>(32, "waiting"));
    ExpectAllWell(144 << 10);
    victim_.Ask(Release);
}

TEST_F(HostileTest, GarbageEndsNoOtherConnection)
{
    std::minstd_rand random; // The same every time.
    const auto below = [&random](size_t end) { return static_cast<uint32_t>(random() % end); };
    int fd = Attacker().Connect();
    for (int i = 0; i < Times(20000); ++i) {
        Packet data = TEXT;
        const uint32_t kind = 1 + below(4);
        const Packet handles = InventHandles(below(8) == 0 ? below(1030) : below(2), below(2), below(UINT32_MAX), data);
        data.resize(data.size() + (below(16) == 0 ? below(MAX_SIZE / 4) : 0));
        Packet packet = HostilePeer::Message(kind, below(2), below(2), handles, data, below(2));
        for (uint32_t changes = below(3); changes > 0; --changes) {
            packet[below(std::min<size_t>(packet.size(), 16))] = below(2) == 0 ? below(256) : ~below(16);
        }
        packet[1] = packet[0] == CALL ? std::array{ECHO, WHO, GIVE, DROP}.at(below(4)) : packet[1];
        const size_t size = packet.size() * 4;
        if (!HostilePeer::Send(fd, packet, below(8) == 0 ? below(size) : size, below(16) == 0)) {
            close(fd);
            fd = Attacker().Connect();
        }
    }
    close(fd);
    ExpectAllWell(32 << 10);
}

TEST_F(HostileTest, InventedObjectsAreReleased)
{
    Packet data = TEXT;
    const Packet handles = InventHandles(1024, 0, 1, data);
    std::vector<int> connections(31);
    for (int& fd : connections) {
        fd = Attacker().Connect();
    }
    for (int i = 0; i < Times(50); ++i) {
        for (const int fd : connections) {
            HostilePeer::Send(fd, HostilePeer::Message(CALL, ECHO, 1, handles, data));
        }
        for (const int fd : connections) {
            std::array<uint32_t, 64> reply{};
            EXPECT_GT(recv(fd, reply.data(), sizeof(reply), 0), 0);
        }
    }
    ExpectAllWell(64 << 10);
}

TEST_F(HostileTest, AConnectionIsOfWhoMadeIt)
{
    const std::string none;
    for (const std::string& name : {std::string(":1.99999"), caller_.Ask([] { return Who(); }), std::string(300, ':'),
             std::string(":1.0',arg1='"), std::string("ohos.sa.SA66090")}) {
        const int fd = Attacker().Connect(name);
        HostilePeer::Send(fd, HostilePeer::Message(CALL, ECHO, 1, {}, TEXT));
        std::array<uint32_t, 16> reply{};
        if (recv(fd, reply.data(), sizeof(reply), 0) < 0) {
            recv(fd, reply.data(), sizeof(reply), 0);
        }
        EXPECT_NE(reply[1], 0U) << name; // Refused, if anything.
    }
    const HostilePeer other(busAddress_);
    const int fd = Attacker().Connect(other.Name()); // Another name of the same process is as good.
    HostilePeer::Send(fd, HostilePeer::Message(CALL, ECHO, 1, {}, TEXT));
    std::array<uint32_t, 16> reply{};
    EXPECT_EQ(recv(fd, reply.data(), sizeof(reply), 0), 40);
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, APeerThatIsCalledHarmsItsCallerOnly)
{
    Offer();
    victim_.Ask([] { SetWait(1); });
    Packet data = TEXT;
    const Packet forged = InventHandles(1, 1, 0x01000000, data);
    const auto reply = [](uint32_t number) { return HostilePeer::Message(REPLY, 0, number, {}, TEXT); };
    int fd = -1;
    const auto answer = [&](const std::string& result, const auto& how) {
        victim_.Begin([] { return Call("x", ECHO, "hello"); });
        fd = fd >= 0 ? fd : Attacker().Accept();
        Packet call(64);
        recv(fd, call.data(), call.size() * 4, 0);
        const bool isKept = how(call[7]);
        EXPECT_EQ(victim_.Event(), "done " + result);
        if (!isKept) {
            close(std::exchange(fd, -1));
        }
    };
    answer("0 x", [&](uint32_t n) { return HostilePeer::Send(fd, reply(n)); }); // As it should be.
    answer("0 x", [&](uint32_t n) { return HostilePeer::Send(fd, reply(n)) && HostilePeer::Send(fd, reply(n + 1)); });
    answer("0 x", [&](uint32_t) { return false; }); // Answered before it was sent.
    answer("32", [&](uint32_t) { return shutdown(fd, SHUT_RDWR) != 0; });
    answer("74", [&](uint32_t n) { return HostilePeer::Send(fd, reply(n + 1)) && false; });
    answer("74", [&](uint32_t n) { return HostilePeer::Send(fd, reply(n), 16) && false; });
    answer("74", [&](uint32_t n) { return HostilePeer::Send(fd, reply(n), 40, true) && false; });
    answer(
        "74", [&](uint32_t n) { return HostilePeer::Send(fd, HostilePeer::Message(CALL, 1, n, {}, TEXT)) && false; });
    answer("111", [&](uint32_t n) { // An object that there is not.
        return HostilePeer::Send(fd, HostilePeer::Message(REPLY, 0, n, forged, data)) && false;
    });
    answer("110", [&](uint32_t) { return false; });
    ExpectAllWell(16 << 10);
    victim_.Ask([] { Drop("x"); });
}

TEST_F(HostileTest, APeerThatDoesNotAcceptOrIsNotThereCostsACallItsWait)
{
    Offer();
    victim_.Ask([] { SetWait(1); });
    std::vector<std::string> timedOut(4, "done 110");
    for (size_t i = 0; i < timedOut.size(); ++i) { // More than its queue holds.
        victim_.Begin([] { return Call("x", ECHO); });
    }
    EXPECT_EQ(victim_.Events(timedOut.size()), timedOut);
    const std::string oneWay = victim_.Ask([] { return Send("x", 1); });
    EXPECT_TRUE(oneWay == "0 then 105" || oneWay == "1 then 0") << oneWay;
    Attacker().StopListening();
    victim_.Ask([] { SetWait(600); });
    victim_.Expect("32", [] { return Call("x", ECHO); });
    victim_.Expect("1", [] { return IsDead("x"); });
    victim_.Ask([] { Drop("x"); });
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, WhoHasTakenAnAddressGetsNothing)
{
    const std::string name = newcomer_.Ask([] {
        static HostilePeer& peer = *new HostilePeer(getenv("OHOS_BUS_ADDRESS"), false);
        EXPECT_NE(peer.Exchange(OFFER), "closed");
        return peer.Name();
    });
    const int taken = Attacker().Squat(name, newcomer_.Pid());
    victim_.Expect("111", [] { return Call("x", ECHO); });
    const int fd = accept(taken, nullptr, nullptr);
    char byte = 0;
    EXPECT_EQ(recv(fd, &byte, sizeof(byte), 0), 0); // Not even a name.
    close(fd);
    close(taken);
    newcomer_.Kill();
    victim_.Ask([] { Drop("x"); });
    caller_.Hears({"done 0 wrong, 0 failed"});
    caller_.Kill();
}

TEST_F(HostileTest, TheDaemonAloneSaysWhoOwnsANameAndCarriesNothingBetweenProcesses)
{
    victim_.Ask([] { Watch(66090); });
    victim_.Hears({"up 66090"});
    Attacker().Forge("ohos.sa.SA66090");
    const std::string denied = "org.freedesktop.DBus.Error.AccessDenied";
    EXPECT_EQ(Attacker().CallBus("ohos.sa.SA66090", "ohos.ipc.Peer", "Connect"), denied);
    EXPECT_EQ(Attacker().CallBus("", "org.freedesktop.DBus", "ReloadConfig"), denied);
    EXPECT_EQ(Attacker().CallBus("", "org.freedesktop.DBus.Debug.Stats", "GetStats"), denied);
    EXPECT_EQ(Attacker().CallBus("", "org.freedesktop.DBus.Monitoring", "BecomeMonitor"), denied);
    EXPECT_EQ(Attacker().Claim("ohos.sa.SA66090"), EEXIST);
    victim_.Expect("null", [] { return Find("none", 100); }); // What was sent to it so far has come.
    victim_.Ask([] { Watch(66090, "b"); });
    victim_.Hears({"up 66090b"});
    victim_.Ask([] { Unwatch(66090), Unwatch(66090, "b"); });
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, AProcessThatStandsStillMissesNothingThoughOthersComeAndGo)
{
    victim_.Ask([] { Serve(100); });
    newcomer_.Ask([] { Watch(100); });
    newcomer_.Hears({"up 100"});
    newcomer_.Signal(SIGSTOP);
    for (int i = 0; i < Times(1000); ++i) {
        const HostilePeer passer(busAddress_, false);
    }
    victim_.Ask([] { Unserve(100), Serve(100); });
    newcomer_.Signal(SIGCONT);
    newcomer_.Hears({"down 100", "up 100"});
    ExpectAllWell(16 << 10);
}

TEST_F(HostileTest, HalfOpenConnectionsToTheDaemonShutNobodyOut)
{
    std::vector<int> halfOpen(500);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder_ + "/bus").copy(address.sun_path, sizeof(address.sun_path) - 1);
    for (int& fd : halfOpen) {
        fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    }
    ExpectAllWell(16 << 10);
    std::for_each(halfOpen.begin(), halfOpen.end(), close);
}

using WireTest = BusTest;

TEST_F(WireTest, AMessageIsWhatItIsAndABadOneEndsItsConnectionOnly)
{
    Start([] { Serve(66090), Make("x"); });
    Helper& caller = Start([] { Find("s", 66090); });
    Helper& late = Start();
    HostilePeer stranger(busAddress_);
    // Kind, code, flags, number of handles; object, size of the data, number; the data.
    EXPECT_EQ(stranger.Exchange("01000000 01000000 00000000 00000000 2a020100 00000000 0c000000 03000000 "
                                "05000000 68656c6c 6f000000"),
        "02000000 00000000 00000000 00000000 00000000 00000000 0c000000 03000000 05000000 68656c6c 6f000000");
    // An object is a handle (owner, position, id) and 24 bytes of data.
    EXPECT_EQ(stranger.Exchange("01000000 05000000 00000000 00000000 2a020100 00000000 08000000 01000000 "
                                "01000000 78000000"),
        "02000000 00000000 00000000 01000000 00000000 00000000 20000000 01000000 "
        "00000000 08000000 00000001 00000000 "
        "01000000 78000000 00000000 00000000 00000000 00000000 00000000 00000000");
    // An object that there is not, called or carried.
    const std::string refused = "02000000 6f000000 00000000 00000000 00000000 00000000 00000000 01000000";
    EXPECT_EQ(stranger.Exchange("01000000 01000000 00000000 00000000 2b020100 00000000 00000000 01000000"), refused);
    EXPECT_EQ(stranger.Exchange("01000000 01000000 00000000 01000000 2a020100 00000000 18000000 01000000 "
                                "01000000 00000000 01000001 00000000 "
                                "00000000 00000000 00000000 00000000 00000000 00000000"),
        refused);
    for (const char* packet : {"01000000 01000000 00000000 00000000 2a020100 00000000 00000000 010000", // Cut.
             "02000000 00000000 00000000 00000000 00000000 00000000 00000000 01000000",          // A reply to nothing.
             "01000000 01000000 00000000 00000000 2a020100 00000000 00000000 01000000 00000000", // Too long.
             "01000000 01000000 00000000 ffffffff 2a020100 00000000 10000000 01000000",          // Overflowing.
             "01000000 01000000 00000000 00000000 2a020100 00000000 00000000 00000000",          // No number.
             "01000000 01000000 00000000 00000000 2a020100 00000000 00000000 01000000 fd",       // A descriptor.
             "01000000 01000000 00000000 01000000 2a020100 00000000 18000000 01000000 "          // Nobody's object.
             "02000000 00000000 00000001 00000000 00000000 00000000 00000000 00000000 00000000 00000000"}) {
        EXPECT_EQ(stranger.Exchange(packet), "closed") << packet;
        caller.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
    }
    // A release (how many, of which) and a receipt have no answer.
    EXPECT_EQ(stranger.Exchange("03000000 00000000 00000000 01000000 00000000 00000000 00000000 00000000 "
                                "01000000 01000000 00000001 00000000 fd"),
        "closed");
    for (int i = 0; i < 600; ++i) { // Each of these connections has given its place back.
        ASSERT_EQ(stranger.Exchange("01000000"), "closed");
    }
    late.Ask([] { Find("s", 66090); });
    late.Expect("0 hello", [] { return Call("s", ECHO, "hello"); });
}

struct RightlessTest : BusTest {
    RightlessTest() : BusTest("nobody") {}
};

TEST_F(RightlessTest, NobodyIsAServiceWithoutTheRight)
{
    Helper& other = Start();
    other.Expect("1", [] { return Serve(66090); });
    other.Expect("null", [] { return Find("s", 66090); });
    EXPECT_EQ(HostilePeer(busAddress_).Claim("ohos.sa.SA66090"), EACCES);
}

} // namespace
